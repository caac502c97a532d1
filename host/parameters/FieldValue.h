#pragma once
#include "frame/Colors.h"
#include "frame/Vectors.h"
#include "host/parameters/ParameterTable.h"
#include <filesystem>
#include <variant>

namespace fernwick {

/// What a document plugs into a slot: a shader by its place in the document, or nothing.
struct PluggedShader {
    std::optional<size_t> fIndex;
};

/// The value of one field. Codes are int32.
using FieldValue = std::variant<float, int32_t, bool, TVector2, TVector3, TMCColorRGB, TMCColorRGBA,
    std::string, PluggedShader, std::filesystem::path, std::vector<TMCColorRGBA>>;

struct FieldSetting {
    const Field* fField; ///< of a table, which outlives everything
    FieldValue fValue;
};

/// The value in a record. A slot reads as empty, whatever is plugged in.
FieldValue ReadField(const Field& field, const void* record);

/// Stores a value of the field's type into a record. A slot isn't touched: only who has the objects can plug.
void WriteField(const FieldSetting& setting, void* record);

/// A value in the notation of documents, such as `[0, 1]`, `"KEYM"` or `true`; numbers as short as they read
/// back the same.
std::string ValueText(const Field& field, const FieldValue& value);

/// The choices of a field with their labels, such as `one of "KEYM" (Mask), "KEYA" (Cut-out)`.
std::string ChoicesText(const Field& field);

} // namespace fernwick
