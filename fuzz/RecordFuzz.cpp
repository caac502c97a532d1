// Bytes are a class, a parameter record, what is plugged into it, and samples.
#include "host/validation/FuzzCase.h"
#include "module/UnroutedClassIDs.h"
#include <cstdio>
#include <cstdlib>

using namespace fernwick;
using namespace fernwick::validation;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const Subject routed(FERNWICK_MODULE);
    static const Subject unrouted(FERNWICK_UNROUTED);
    if (size == 0)
        return 0;
    const ParameterTable& table = AllClasses()[data[0] % AllClasses().size()];
    const GUID* const unroutedID = UnroutedClassID(table.fName);
    FuzzCase fuzz(table, Random(std::span(data, size).subspan(1)));
    const std::string fault = fuzz.Try(unroutedID != nullptr ? unrouted : routed,
        unroutedID != nullptr ? *unroutedID : table.fClassIDs.front(),
        std::vector<bool>(fuzz.FieldCount(), true));
    if (fault.empty())
        return 0;
    std::fprintf(stderr, "%s: %s\n", table.fName.c_str(), fault.c_str());
    std::abort();
}
