#include "host/shading/Description.h"
#include "host/parameters/FieldValue.h"
#include "host/parameters/Kinds.h"
#include "host/shading/MakeShader.h"
#include "host/sources/Sources.h"

namespace fernwick {

namespace {

/// A text in the notation of documents as a value; null where it is none, such as a slot's.
Json JsonOf(const std::string& text)
{
    const Json value = Json::parse(text, nullptr, false);
    return value.is_discarded() ? Json() : value;
}

Json ChoicesOf(const Field& field)
{
    Json choices = Json::array();
    for (const Choice& choice : field.fChoices)
        choices.push_back({{"value", JsonOf(ValueText(field, choice.fValue))}, {"label", choice.fLabel}});
    return choices;
}

} // namespace

MCCountedPtr<ShaderWrapper> MakeSpecimen(const Library& library, const ParameterTable& table)
{
    try {
        auto shader = MakeShader(library, table);
        if (!shader)
            throw LibraryError(library.Path().string() + ": doesn't make the class " + table.fName);
        return shader;
    } catch (const LibraryError&) {
        if (!table.fClassIDs.empty())
            throw;
        return {};
    }
}

Json EntryOf(const ParameterTable& table, bool isSource)
{
    Json entry
        = {{"name", table.fName}, {"purpose", table.fPurpose}, {"outputs", KindNames(table.fOutputKinds)}};
    if (isSource)
        return entry;
    entry["identifiers"] = Json::array();
    for (const GUID& classID : table.fClassIDs)
        entry["identifiers"].push_back(GuidText(classID));
    return entry;
}

Json EntryOf(const Field& field, const void* record)
{
    Json entry = {{"name", field.fName}, {"type", TypeName(field.fType)}, {"label", field.fLabel},
        {"help", field.fHelp}};
    if (record != nullptr)
        entry["default"] = JsonOf(ValueText(field, ReadField(field, record)));
    if (!field.fUnit.empty())
        entry["unit"] = field.fUnit;
    if (field.fMinimum)
        entry["minimum"] = *field.fMinimum;
    if (field.fMaximum)
        entry["maximum"] = *field.fMaximum;
    if (field.fIsLoose)
        entry["loose"] = true;
    if (field.fCondition)
        entry["onlyWith"]
            = {{"field", field.fCondition->fField}, {"value", JsonOf(field.fCondition->ValueText())}};
    if (!field.fChoices.empty())
        entry["choices"] = ChoicesOf(field);
    if (field.fDerived)
        entry["derived"] = true;
    return entry;
}

Json DescriptionOf(const ParameterTable& table, ShaderWrapper* specimen)
{
    const SourceKind* const source = FindSource(table.fName);
    const bool isSource = source != nullptr && &source->fTable == &table;
    Json description = EntryOf(table, isSource);
    const void* record = isSource ? source->fDefaults : nullptr;
    if (specimen != nullptr) {
        ShadingFlags flags;
        specimen->GetShadingFlags(flags);
        description["needs"] = NeedNames(flags);
        record = specimen->Exchanger().GetExtensionDataBuffer();
    }
    if (!isSource)
        description["recordSize"] = table.fRecordSize;
    description["fields"] = Json::array();
    for (const Field& field : table.fFields)
        description["fields"].push_back(EntryOf(field, record));
    return description;
}

} // namespace fernwick
