#pragma once
#include "frame/Guid.h"
#include <array>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick {

/// What a field of a record holds. The last two occur in the host's own sources only.
enum class FieldType {
    kFloat,
    kInt32,
    kBool,
    kCode, ///< a four-character code in an int32
    kVector2,
    kVector3,
    kRGB,
    kRGBA,
    kString, ///< text of at most 255 bytes
    kShader, ///< a slot for a plugged shader
    kFile,   ///< `std::filesystem::path`
    kColors, ///< `std::vector<TMCColorRGBA>`
};

/// The short name of a type, such as "float" or "vector2".
std::string_view TypeName(FieldType type);

/// How a type is called in texts for users, such as "a number" or "three numbers".
std::string_view TypeText(FieldType type);

struct FieldLayout {
    size_t fSize;
    size_t fAlignment;
};

/// The room that a field of a type takes in a record, in bytes.
FieldLayout LayoutOf(FieldType type);

/// One of the settled values of a field, with its name for users.
struct Choice {
    int32_t fValue;
    std::string fLabel;

    Choice(const char (&code)[5], std::string label);
    Choice(int32_t value, std::string label) : fValue(value), fLabel(std::move(label)) { }
};

/// What an integer field must hold for another one to count.
struct Condition {
    std::string fField;
    int32_t fValue;

    std::string ValueText() const; ///< as documents write it, such as `15` or `"FREE"`
};

/// The four characters of a code, first the high byte.
std::string CodeText(int32_t code);

/// One value of a record that has a name of its own. Elements of arrays and of nested records are fields too.
struct Field {
    std::string fName; ///< as documents address it, such as `fMode`, `fRange[3]` or `fBands[2].fCenter`
    FieldType fType = FieldType::kFloat;
    size_t fOffset = 0;             ///< in bytes
    std::string fLabel;             ///< short name for users
    std::string fHelp;              ///< what it does
    std::string fUnit;              ///< such as "%" or "nm"; empty for none
    std::optional<double> fMinimum; ///< documents with a value outside are refused, unless the range is loose
    std::optional<double> fMaximum;
    bool fIsLoose = false; ///< the shader takes values outside the range too, in its own way
    std::vector<Choice> fChoices;
    bool fDerived = false;               ///< written by the shader; not for documents to set
    std::optional<Condition> fCondition; ///< without it the shader doesn't read what documents set
};

/// Whether a number lies in a field's range, ends included; any does where the field has none.
bool IsInRange(const Field& field, double number);

/// The range with its unit, such as "380 to 825 nm" or "1 or more"; for a field that has one.
std::string RangeText(const Field& field);

/// One line of a table as it is written: a field, an array of fields, or nested records.
struct Row {
    Field fField;                ///< of an array, the first element
    std::vector<size_t> fCounts; ///< of an array, outer dimension first; empty for a single field
    size_t fStride = 0;          ///< of an array, bytes from element to element
    std::vector<Row> fRows;      ///< of a nested record, its fields; offsets are counted from its start
    std::vector<std::string> fLabels;
    size_t fFirstOnlyWith = 0; ///< of an array, the first element that the condition is for

    Row& Named(std::string name); ///< a name in documents other than the member's
    Row& Unit(std::string unit);
    Row& Range(double minimum, double maximum);
    Row& AtLeast(double minimum);
    /// Of a range: a document may hold a value outside, and is told of it.
    Row& Loose();
    /// Of a field that counts only where the integer `field`, which isn't so by default, holds `value`.
    /// @param first  of an array, the first element of which that is so
    Row& OnlyWith(std::string field, int32_t value, size_t first = 0);
    /// Makes an int32 a code when the choices are codes.
    Row& Choices(std::initializer_list<Choice> choices);
    Row& Derived();
    /// Names each element of an array by itself. Without this, each `#` in the label and in the help stands for
    /// the element's number, counted from 1, outer dimension first.
    Row& Labels(std::initializer_list<std::string> labels);
};

/// What the host knows of one class of shaders, or of one of its own sources: identity, outputs and the layout
/// of the record. Defaults aren't here: they are read from a freshly made object.
struct ParameterTable {
    /// @param classIDs  none for a class without a route
    ParameterTable(std::string name, std::initializer_list<GUID> classIDs, int32_t outputKinds,
        size_t recordSize, std::string purpose, std::vector<Row> rows);

    std::string fName;
    std::vector<GUID> fClassIDs;
    int32_t fOutputKinds;
    size_t fRecordSize;
    std::string fPurpose;
    std::vector<Row> fRows;          ///< as written
    std::vector<Field> fFields;      ///< all of them, in the order of the record
    const void* fStandard = nullptr; ///< the record of a new object, where the table knows it

    /// The field of exactly this name; null when there is none.
    const Field* Find(std::string_view name) const;

    /// Whether an address goes on with the separator, `[` of an array or `.` of a nested record.
    bool HasFieldsUnder(std::string_view address, char separator) const;
    /// How many elements the array at an address has; 0 when it is none.
    size_t CountElements(std::string_view address) const;
    /// What documents give at an address: "a number" of a field, "an array of 2, each an object" of an array of
    /// nested records; empty where nothing is.
    std::string AddressText(std::string_view address) const;
};

/// All classes of the pack that have a table, in the order of their routes, those without a route last.
std::span<const ParameterTable> AllClasses();

/// The class of exactly this name; null when there is none.
const ParameterTable* FindClass(std::string_view name);

/// The identifier in the notation 379752D6-C5EB-4173-B3E4-FF727769483A.
std::string GuidText(const GUID& id);

} // namespace fernwick
