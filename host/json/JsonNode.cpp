#include "host/json/JsonNode.h"
#include "host/json/Nearest.h"
#include "host/json/Printable.h"
#include <algorithm>
#include <fmt/format.h>
#include <limits>

namespace fernwick {

namespace {

constexpr size_t kTextRoom = 255;

/// Whether an array is told of by its numbers.
bool IsShortList(const Json& array)
{
    constexpr size_t kMost = 4;
    return !array.empty() && array.size() <= kMost
        && std::all_of(array.begin(), array.end(), [](const Json& member) { return member.is_number(); });
}

/// What a document holds at some place, briefly.
std::string Shown(const Json& json)
{
    if (json.is_object())
        return "an object";
    if (!json.is_array() || IsShortList(json))
        if (std::string text = json.dump(); text.size() <= kShownBytes)
            return text;
    if (json.is_array())
        return json.empty() ? "an empty array" : fmt::format("an array of {}", json.size());
    return json.is_string() ? fmt::format("a text of {} bytes", json.get_ref<const std::string&>().size())
                            : "a long number";
}

} // namespace

void JsonNode::Fail(std::string_view text) const
{
    throw GraphError(Printable(fWhere.empty() ? std::string(text) : fmt::format("{}: {}", fWhere, text)));
}

void JsonNode::Refuse(std::string_view expected, std::string_view hint) const
{
    Fail(fmt::format("expected {}, got {}{}", expected, Shown(fJson), hint));
}

float JsonNode::Float(std::string_view expected) const
{
    if (!fJson.is_number())
        Refuse(expected);
    const double number = fJson.get<double>();
    if (std::fabs(number) > std::numeric_limits<float>::max())
        Refuse("a number that a float can hold");
    return static_cast<float>(number);
}

int32_t JsonNode::Int32(std::string_view expected) const
{
    if (!IsInteger())
        Refuse(expected);
    const bool fits = fJson.is_number_unsigned()
        ? fJson.get<uint64_t>() <= INT32_MAX
        : fJson.get<int64_t>() >= INT32_MIN && fJson.get<int64_t>() < 0;
    if (!fits)
        Refuse("an integer of 32 bits");
    return fJson.get<int32_t>();
}

bool JsonNode::Bool() const
{
    if (!fJson.is_boolean())
        Refuse("true or false");
    return fJson.get<bool>();
}

std::string JsonNode::Text(std::string_view expected) const
{
    if (!IsText())
        Refuse(expected);
    std::string text = fJson.get<std::string>();
    if (text.size() > kTextRoom)
        Fail(fmt::format("expected a text of at most {} bytes, got {}", kTextRoom, text.size()));
    if (text.find('\0') != std::string::npos)
        Fail("a text can't hold a zero byte");
    return text;
}

std::string JsonNode::Name() const
{
    std::string name = Text("a name");
    if (name.empty())
        Refuse("a name");
    return name;
}

TVector3 JsonNode::Vector3() const
{
    if (!IsArray() || Count() != 3)
        Refuse("three numbers");
    return {Element(0).Float(), Element(1).Float(), Element(2).Float()};
}

JsonNode JsonNode::Element(size_t index) const
{
    return {fJson[index], fmt::format("{}[{}]", fWhere, index)};
}

std::optional<JsonNode> JsonNode::Find(const std::string& key) const
{
    if (!IsObject())
        Refuse("an object");
    const auto found = fJson.find(key);
    if (found == fJson.end())
        return std::nullopt;
    return Member(key, *found);
}

std::vector<std::pair<std::string, JsonNode>> JsonNode::Members() const
{
    if (!IsObject())
        Refuse("an object");
    std::vector<std::pair<std::string, JsonNode>> members;
    for (const auto& [key, value] : fJson.items())
        members.emplace_back(key, Member(key, value));
    return members;
}

void JsonNode::RequireKeys(const std::vector<std::string>& keys) const
{
    for (const auto& [key, member] : Members())
        if (std::find(keys.begin(), keys.end(), key) == keys.end())
            member.Fail("there is no such key" + NearestHint(key, keys));
}

JsonNode JsonNode::Member(const std::string& key, const Json& json) const
{
    return {json, fWhere.empty() ? key : fWhere + "." + key};
}

} // namespace fernwick
