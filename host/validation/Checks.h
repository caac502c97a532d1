#pragma once

namespace fernwick {

struct ParameterTable;

namespace validation {

class Inspection;

void CheckExports(Inspection& inspection);
void CheckLifeCycle(Inspection& inspection);
void CheckCleanUpTwice(Inspection& inspection);
void CheckWithheldServices(Inspection& inspection);
void CheckRefusals(Inspection& inspection);

void CheckRoutes(Inspection& inspection, const ParameterTable& table);
void CheckBufferSizes(Inspection& inspection, const ParameterTable& table);
void CheckDefaultValues(Inspection& inspection, const ParameterTable& table);
void CheckDefaults(Inspection& inspection, const ParameterTable& table);
void CheckComponentLaws(Inspection& inspection, const ParameterTable& table);
void CheckAggregation(Inspection& inspection, const ParameterTable& table);
void CheckStatedAnswers(Inspection& inspection, const ParameterTable& table);
void CheckReservedSlots(Inspection& inspection, const ParameterTable& table);
void CheckAbsentKinds(Inspection& inspection, const ParameterTable& table);
void CheckSlots(Inspection& inspection, const ParameterTable& table);
void CheckEmptiedSlots(Inspection& inspection, const ParameterTable& table);
void CheckSameParameters(Inspection& inspection, const ParameterTable& table);
void CheckHosts(Inspection& inspection, const ParameterTable& table);
void CheckRefusedMemory(Inspection& inspection, const ParameterTable& table);
void CheckInterleaved(Inspection& inspection, const ParameterTable& table);
void CheckTwoThreads(Inspection& inspection, const ParameterTable& table);
void CheckStaticData(Inspection& inspection, const ParameterTable& table);
void CheckProcessorState(Inspection& inspection, const ParameterTable& table);
void CheckSilence(Inspection& inspection, const ParameterTable& table);
void CheckStack(Inspection& inspection, const ParameterTable& table);
void CheckNoAllocation(Inspection& inspection, const ParameterTable& table);
void CheckLeaks(Inspection& inspection, const ParameterTable& table);
void CheckParameterFuzz(Inspection& inspection, const ParameterTable& table);

} // namespace validation

} // namespace fernwick
