#pragma once
#include "frame/Vectors.h"
#include "host/json/GraphError.h"
#include "host/json/ParseJson.h"
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick {

/// One value of a document and its place there. Every reading operation throws a `GraphError` that names the
/// place, what was expected and what is there.
class JsonNode {
public:
    JsonNode(const Json& json, std::string where) : fJson(json), fWhere(std::move(where)) { }

    /// The same value under another name in texts.
    JsonNode At(std::string where) const { return {fJson, std::move(where)}; }
    [[noreturn]] void Fail(std::string_view text) const; ///< "where: text"
    /// "where: expected ..., got ...", and behind it the hint as it is.
    [[noreturn]] void Refuse(std::string_view expected, std::string_view hint = "") const;

    bool IsNull() const { return fJson.is_null(); }
    bool IsText() const { return fJson.is_string(); }
    bool IsInteger() const { return fJson.is_number_integer(); }
    bool IsObject() const { return fJson.is_object(); }
    bool IsArray() const { return fJson.is_array(); }
    size_t Count() const { return fJson.size(); }

    float Float(std::string_view expected = "a number") const;
    int32_t Int32(std::string_view expected = "an integer") const;
    bool Bool() const;
    /// Of at most 255 bytes, none of them zero: what a record has room for.
    std::string Text(std::string_view expected = "a text") const;
    std::string Name() const; ///< a text that isn't empty
    TVector3 Vector3() const;

    JsonNode Element(size_t index) const;
    /// A member of an object; nothing when it has no such key.
    std::optional<JsonNode> Find(const std::string& key) const;
    /// The members in the order of the document.
    std::vector<std::pair<std::string, JsonNode>> Members() const;
    /// Refuses anything but an object with no other keys than these.
    void RequireKeys(const std::vector<std::string>& keys) const;

private:
    const Json& fJson;
    std::string fWhere;

    JsonNode Member(const std::string& key, const Json& json) const;
};

} // namespace fernwick
