#pragma once
#include "host/json/JsonNode.h"
#include "host/parameters/FieldValue.h"
#include <map>

namespace fernwick {

/// The shaders of a document by name, with their places.
using ShaderNames = std::map<std::string, size_t>;

/// The place of the shader that a node names. Throws `GraphError` when there is none of that name.
size_t FindShader(const JsonNode& node, const ShaderNames& names);

/// Reads the members of one shader's object into values of the fields of a record.
class FieldReader {
public:
    /// @param folder  where relative file names start
    FieldReader(const ParameterTable& table, const ShaderNames& names, const std::filesystem::path& folder)
        : fTable(table), fNames(names), fFolder(folder)
    { }

    /// Reads one member: a field, or a group of fields, by its address such as `fRange` or `fBands[2]`. The
    /// values are added to `settings`. Throws `GraphError`.
    void Read(const std::string& address, const JsonNode& node, std::vector<FieldSetting>& settings) const;

private:
    const ParameterTable& fTable;
    const ShaderNames& fNames;
    const std::filesystem::path& fFolder;

    void ReadArray(
        const std::string& address, const JsonNode& node, std::vector<FieldSetting>& settings) const;
    void ReadRecord(
        const std::string& address, const JsonNode& node, std::vector<FieldSetting>& settings) const;
    [[noreturn]] void FailUnknown(const std::string& address, const JsonNode& node) const;

    FieldValue ReadValue(const Field& field, const JsonNode& node) const;
    PluggedShader ReadSlot(const JsonNode& node) const;
    std::filesystem::path ReadFile(const JsonNode& node) const;
};

} // namespace fernwick
