#include "host/validation/Specimen.h"
#include "frame/Query.h"
#include "host/parameters/FieldValue.h"
#include <fmt/format.h>

namespace fernwick::validation {

Specimen::Specimen(const Library& library, const GUID& classID)
{
    void* face = nullptr;
    const MCErr status = library.CreateInstance(classID, nullptr, IID_I3DExShader, &face);
    if (status != MC_S_OK || face == nullptr)
        throw LibraryError(fmt::format("{} isn't made: {:#010x}", GuidText(classID), status));
    *fShader.Address() = static_cast<I3DExShader*>(face);
    if (Query(*fShader, IID_IExDataExchanger, fExchanger) != MC_S_OK)
        throw LibraryError(fmt::format("{} has no IExDataExchanger", GuidText(classID)));
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

Specimen Subject::MakeIn(uint8_t byte, const GUID& classID) const
{
    Memory().FillWith(byte);
    return {library, classID};
}

std::string Subject::Remains() const
{
    if (library.HasLiveComponents())
        return "components are still alive";
    if (Memory().LiveBlocks() != 0)
        return fmt::format(
            "{} blocks of {} bytes are not freed", Memory().LiveBlocks(), Memory().LiveBytes());
    if (Memory().DamagedBlocks() != 0)
        return "memory beside a block was written";
    return "";
}

} // namespace fernwick::validation
