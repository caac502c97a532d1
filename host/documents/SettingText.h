#pragma once
#include "host/json/JsonNode.h"
#include "host/parameters/ParameterTable.h"
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

// What `FIELD=VALUE` and `FIELD=SOURCE` mean, which the options `--set` and `--plug` take. All of it throws
// `SettingError`.

namespace fernwick {

/// A setting that can't be read, or that the field doesn't take. The text starts with the option or the field.
class SettingError : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
};

/// Is told what is taken as it is and may yet be a slip.
using TellSlip = std::function<void(std::string_view)>;

/// A text with a sign of equality in it.
struct Assignment {
    std::string field;
    std::string value;
};

/// @param example  of what the option takes, for texts
Assignment Split(const std::string& text, const char* option, const char* example);

/// A value as JSON, else the text as it is: `true`, `[0, 1]`, `KEYM`. What a label of a choice or a text looks like,
/// such as `12`, is a text for a field of those; `#ff8800` is a colour.
/// @param shader  what texts call the shader whose field is set
Json ValueOf(const ParameterTable& table, const Assignment& set, const std::string& shader);

/// The source that a text such as `checker`, `ramp:v` or `color:#ff8800` describes.
/// @param shader  what texts call it
Json SourceOf(const std::string& text, const char* option, const std::string& shader);

/// Puts a member behind all others: of settings of the same field, the later one counts.
void Put(Json& object, const std::string& key, Json value);

/// Tells of fields that are given more than once, of each one time.
class Repetitions {
public:
    explicit Repetitions(TellSlip tell) : fTell(std::move(tell)) { }

    /// @param field  with the name of its shader before it
    void Add(const char* option, const std::string& field);

private:
    TellSlip fTell;
    std::map<std::string, int> fCounts; // by field
};

/// How many slots an array of this name has; 0 when there is none.
size_t CountSlots(const ParameterTable& table, const std::string& name);

/// Sends what `--set` and `--plug` take for each other to the right one. Unknown fields pass.
/// @param shader  what texts call the shader of the table
void RequireOption(
    const ParameterTable& table, const std::string& name, bool isPlug, const std::string& shader);

} // namespace fernwick
