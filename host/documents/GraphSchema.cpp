#include "host/documents/GraphSchema.h"
#include "host/documents/Keys.h"
#include "host/documents/SceneSchema.h"
#include "host/sources/Sources.h"
#include <algorithm>
#include <fmt/format.h>

namespace fernwick {

namespace {

/// A value, or keys for it.
Json WithKeys(Json value, FieldType type)
{
    const Json keys = {{"$ref", ChangesInSteps(type) ? "#/$defs/stepKeys" : "#/$defs/keys"}};
    if (!value.contains("anyOf"))
        return {{"anyOf", {std::move(value), keys}}};
    value["anyOf"].push_back(keys);
    return value;
}

Json Numbers(const Json& number, size_t least, size_t most)
{
    return {{"type", "array"}, {"items", WithKeys(number, FieldType::kFloat)}, {"minItems", least},
        {"maxItems", most}};
}

/// A choice by its label, or a code by its four characters; else by its number.
Json ChoiceSchema(const Field& field)
{
    Json names = Json::array();
    Json values = Json::array();
    for (const Choice& choice : field.fChoices) {
        if (field.fType == FieldType::kCode)
            names.push_back(CodeText(choice.fValue));
        values.push_back(choice.fValue);
    }
    for (const Choice& choice : field.fChoices)
        names.push_back(choice.fLabel);
    const Json number = field.fType == FieldType::kCode ? Json{{"type", "integer"}} : Json{{"enum", values}};
    return {{"anyOf", {{{"enum", names}}, number}}};
}

Json ValueSchema(const Field& field)
{
    if (field.fType == FieldType::kCode || !field.fChoices.empty())
        return ChoiceSchema(field);
    Json number = {{"type", field.fType == FieldType::kInt32 ? "integer" : "number"}};
    if (field.fMinimum && !field.fIsLoose)
        number["minimum"] = *field.fMinimum;
    if (field.fMaximum && !field.fIsLoose)
        number["maximum"] = *field.fMaximum;
    switch (field.fType) {
    case FieldType::kFloat:
    case FieldType::kInt32:
    case FieldType::kCode:
        return number;
    case FieldType::kBool:
        return {{"type", "boolean"}};
    case FieldType::kVector2:
        return Numbers(number, 2, 2);
    case FieldType::kVector3:
    case FieldType::kRGB:
        return Numbers(number, 3, 3);
    case FieldType::kRGBA:
        return Numbers(number, 3, 4);
    case FieldType::kString:
    case FieldType::kFile:
        return {{"type", "string"}, {"maxLength", 255}};
    case FieldType::kShader:
        return {{"type", {"string", "null"}}};
    case FieldType::kColors:
        return {{"type", "array"}, {"items", WithKeys(Numbers(number, 3, 4), FieldType::kRGBA)}};
    }
    return true;
}

/// What is told of a value. Nothing about the items of an array: their texts are those of one element.
enum class Texts { kNone, kAll };

Json FieldSchema(const Field& field, Texts texts)
{
    const Json value = WithKeys(ValueSchema(field), field.fType);
    if (texts == Texts::kNone)
        return value;
    Json schema = {{"title", field.fLabel}};
    std::string description = field.fUnit.empty() ? field.fHelp : field.fHelp + " In " + field.fUnit + '.';
    if (field.fIsLoose)
        description += " Expected: " + RangeText(field) + '.';
    schema["description"] = description;
    schema.update(value);
    return schema;
}

/// The schemas of a record's addresses: of its fields, and of the groups around them.
class AddressSchemas {
public:
    explicit AddressSchemas(const ParameterTable& table) : fTable(table)
    {
        for (const Field& field : table.fFields)
            if (!field.fDerived)
                AddAddresses(field.fName);
    }

    /// All addresses that go on from `start`, by their ends.
    Json Properties(const std::string& start, Texts texts) const
    {
        Json properties = Json::object();
        for (const std::string& address : fAddresses)
            if (address.starts_with(start))
                properties[address.substr(start.size())] = SchemaOf(address, texts);
        return properties;
    }

private:
    const ParameterTable& fTable;
    std::vector<std::string> fAddresses; // in the order of the record, groups before what is in them

    void AddAddresses(const std::string& name)
    {
        for (size_t end = 0; end != std::string::npos;) {
            end = name.find_first_of("[.", end + 1);
            const std::string address = name.substr(0, end);
            if (!IsKnown(address))
                fAddresses.push_back(address);
        }
    }

    bool IsKnown(const std::string& address) const
    {
        return std::find(fAddresses.begin(), fAddresses.end(), address) != fAddresses.end();
    }

    Json SchemaOf(const std::string& address, Texts texts) const
    {
        if (const Field* const field = fTable.Find(address); field != nullptr)
            return FieldSchema(*field, texts);
        size_t count = 0;
        while (IsKnown(fmt::format("{}[{}]", address, count)))
            ++count;
        if (count > 0) {
            const Json items = SchemaOf(address + "[0]", Texts::kNone);
            const Json all = {{"type", "array"}, {"items", items}, {"minItems", count}, {"maxItems", count}};
            const Field* const first = FieldNear(fTable, address);
            return first != nullptr ? WithKeys(all, first->fType) : all; // nothing of records
        }
        return {{"type", "object"}, {"properties", Properties(address + ".", texts)},
            {"additionalProperties", false}};
    }
};

/// The tables of one sort of shaders, and the key by which documents choose one.
struct Sort {
    std::string key;
    std::string description;
    std::vector<const ParameterTable*> tables;

    std::string Definition(const ParameterTable& table) const { return key + '.' + table.fName; }
};

std::vector<Sort> AllSorts()
{
    Sort classes = {"class", "A class of the library.", {}};
    for (const ParameterTable& table : AllClasses())
        classes.tables.push_back(&table);
    Sort sources = {"source", "A source of the host.", {}};
    for (const SourceKind& kind : AllSources())
        sources.tables.push_back(&kind.fTable);
    return {classes, sources};
}

Json RecordSchema(const Sort& sort, const ParameterTable& table)
{
    Json properties = {{sort.key, {{"const", table.fName}}}};
    properties.update(AddressSchemas(table).Properties("", Texts::kAll));
    return {{"description", table.fPurpose}, {"properties", properties}, {"additionalProperties", false}};
}

/// One shader of a document. What else it may hold depends on its class or source.
Json ShaderSchema(const std::vector<Sort>& sorts)
{
    Json properties = Json::object();
    Json alternatives = Json::array();
    Json conditions = Json::array();
    for (const Sort& sort : sorts) {
        Json names = Json::array();
        for (const ParameterTable* const table : sort.tables) {
            names.push_back(table->fName);
            const Json isOne = {{"required", Json::array({sort.key})},
                {"properties", {{sort.key, {{"const", table->fName}}}}}};
            conditions.push_back({{"if", isOne}, {"then", {{"$ref", "#/$defs/" + sort.Definition(*table)}}}});
        }
        properties[sort.key] = {{"description", sort.description}, {"enum", names}};
        alternatives.push_back({{"required", Json::array({sort.key})}});
    }
    return {{"type", "object"}, {"properties", properties}, {"oneOf", alternatives}, {"allOf", conditions}};
}

} // namespace

Json GraphSchema()
{
    const std::vector<Sort> sorts = AllSorts();
    Json definitions = {{"shader", ShaderSchema(sorts)}};
    definitions.update(SceneDefinitions());
    for (const Sort& sort : sorts)
        for (const ParameterTable* const table : sort.tables)
            definitions[sort.Definition(*table)] = RecordSchema(sort, *table);

    Json properties
        = {{"$schema", {{"description", "Where this schema is, for editors."}, {"type", "string"}}}};
    properties["shaders"] = {{"description", "All shaders by their names."}, {"type", "object"},
        {"propertyNames", {{"minLength", 1}}}, {"additionalProperties", {{"$ref", "#/$defs/shader"}}}};
    properties["output"] = {{"description", "The name of the shader that is shaded."}, {"type", "string"}};
    properties["scene"] = SceneSchema();
    return {{"$schema", "https://json-schema.org/draft/2020-12/schema"},
        {"title", "A graph of Fernwick shaders"}, {"type", "object"}, {"required", {"shaders", "output"}},
        {"properties", properties}, {"additionalProperties", false}, {"$defs", definitions}};
}

} // namespace fernwick
