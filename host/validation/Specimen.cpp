#include "host/validation/Specimen.h"
#include "frame/Query.h"
#include "frame/TMCString.h"
#include "host/parameters/FieldValue.h"
#include "host/validation/Inspection.h"
#include "host/validation/Statements.h"
#include <cstring>
#include <fmt/format.h>

namespace fernwick::validation {

namespace {

/// Such as "Key (379752D6-C5EB-4173-B3E4-FF727769483A)".
std::string NameOf(const GUID& classID)
{
    for (const ParameterTable& table : AllClasses())
        for (const GUID& own : table.fClassIDs)
            if (SameGuid(own, classID))
                return fmt::format("{} ({})", table.fName, GuidText(classID));
    return GuidText(classID);
}

} // namespace

Specimen::Specimen(const Library& library, const GUID& classID)
{
    void* face = nullptr;
    const MCErr status = library.CreateInstance(classID, nullptr, IID_I3DExShader, &face);
    if (status != MC_S_OK || face == nullptr)
        throw LibraryError(
            fmt::format("making {}: expected {}, came {}", NameOf(classID), kMade, AnswerText(status, face)));
    *fShader.Address() = static_cast<I3DExShader*>(face);
    if (Query(*fShader, IID_IExDataExchanger, fExchanger) != MC_S_OK)
        throw LibraryError(
            fmt::format("IExDataExchanger of {}: expected a face, came none", NameOf(classID)));
}

FieldPlace PlaceOf(const Field& field)
{
    if (field.fType != FieldType::kString)
        return {field.fOffset, LayoutOf(field.fType).fSize};
    constexpr size_t kHead = sizeof(void*);
    constexpr size_t kCounts = 3 * sizeof(uint32_t);
    constexpr size_t kText = 256;
    static_assert(kHead + kCounts + kText <= sizeof(TMCString255));
    return {field.fOffset + kHead, kCounts + kText};
}

std::vector<const Field*> SlotsOf(const ParameterTable& table)
{
    std::vector<const Field*> slots;
    for (const Field& field : table.fFields)
        if (field.fType == FieldType::kShader)
            slots.push_back(&field);
    return slots;
}

std::string DifferenceOf(const ParameterTable& table, const void* left, const void* right)
{
    for (const Field& field : table.fFields) {
        const std::string leftText = ValueText(field, ReadField(field, left));
        const std::string rightText = ValueText(field, ReadField(field, right));
        if (leftText != rightText)
            return fmt::format("{} is {} and {}", field.fName, leftText, rightText);
    }
    return "";
}

std::string RecordCopy::Change(bool derived, std::string_view written) const
{
    const char* const record = fObject.Record();
    if (std::memcmp(fBytes.data(), record, fBytes.size()) == 0)
        return "";
    for (const Field& field : fTable.fFields) {
        const FieldPlace place = PlaceOf(field);
        if (std::memcmp(fBytes.data() + place.start, record + place.start, place.size) == 0
            || (derived && field.fDerived) || Names(written, field.fName))
            continue;
        return fmt::format("{}: expected {}, came {}", field.fName,
            ValueText(field, ReadField(field, fBytes.data())), ValueText(field, ReadField(field, record)));
    }
    return "";
}

Specimen Subject::MakeIn(uint8_t byte, const GUID& classID) const
{
    Memory().FillWith(byte);
    return {library, classID};
}

std::string Subject::Remains(const std::string& when) const
{
    if (library.HasLiveComponents())
        return when + ": expected no live component, came some";
    if (Memory().LiveBlocks() != 0)
        return fmt::format("{}: expected no block of memory, came {} of {} bytes", when,
            Memory().LiveBlocks(), Memory().LiveBytes());
    if (Memory().DamagedBlocks() != 0)
        return fmt::format(
            "{}: expected no block written beyond its end, came {}", when, Memory().DamagedBlocks());
    return "";
}

} // namespace fernwick::validation
