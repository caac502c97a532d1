#include "host/documents/Keys.h"
#include "host/json/Nearest.h"
#include "host/sources/Sources.h"
#include <algorithm>
#include <fmt/format.h>

namespace fernwick {

namespace {

/// What a scene's parts are; it stays the same for all frames.
constexpr std::string_view kFixed[] = {"name", "kind", "file"};

bool IsKeyed(const Json& json) { return json.is_object() && json.contains("keys"); }

/// Whether a value holds no object.
bool IsPlain(const Json& value)
{
    return !value.is_object() && (!value.is_array() || std::all_of(value.begin(), value.end(), &IsPlain));
}

bool IsNumbers(const Json& value)
{
    return value.is_array() ? std::all_of(value.begin(), value.end(), &IsNumbers) : value.is_number();
}

/// Whether two values made of numbers have as many of them at the same places.
bool HaveSameForm(const Json& left, const Json& right)
{
    if (!left.is_array() || !right.is_array())
        return left.is_array() == right.is_array();
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), &HaveSameForm);
}

Json Mixed(const Json& left, const Json& right, double share)
{
    if (!left.is_array())
        return left.get<double>() + (right.get<double>() - left.get<double>()) * share;
    Json mixed = Json::array();
    for (size_t i = 0; i < left.size(); ++i)
        mixed.push_back(Mixed(left[i], right[i], share));
    return mixed;
}

Between ReadBetween(const JsonNode& node)
{
    const std::string name = node.Name();
    const std::vector<std::string> names = {"linear", "smooth", "step"};
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end())
        node.Fail(fmt::format(
            "there is no \"{}\", only {}{}", name, fmt::join(names, ", "), NearestHint(name, names)));
    return static_cast<Between>(found - names.begin());
}

} // namespace

/// Walks through a document.
class Keys::Finder {
public:
    explicit Finder(std::vector<Curve>& curves) : fCurves(curves) { }

    void FindInShader(Json& shader, const std::string& name)
    {
        if (!shader.is_object())
            return;
        fTable = TableOf(shader);
        fAddressStart = name.size() + 1;
        for (const auto& [address, value] : shader.items())
            if (value.is_structured() && address != "class" && address != "source")
                Find(value, name + '.' + address);
    }

    void FindInScene(Json& scene)
    {
        if (!scene.is_object())
            return;
        fTable = nullptr;
        for (const auto& [key, value] : scene.items())
            if ((key == "nodes" || key == "materials") && value.is_object()) // a name may be "keys"
                for (const auto& [name, look] : value.items())
                    Find(look, fmt::format("scene.{}.{}", key, name));
            else
                FindInMember(value, key, "scene");
    }

private:
    std::vector<Curve>& fCurves;
    const ParameterTable* fTable = nullptr; // of the shader; null in the scene
    size_t fAddressStart = 0;               // of the field's address in a place

    void FindInMember(Json& value, const std::string& key, const std::string& where)
    {
        const bool isFixed
            = fTable == nullptr && std::find(std::begin(kFixed), std::end(kFixed), key) != std::end(kFixed);
        if (value.is_structured() && !isFixed)
            Find(value, where + '.' + key);
    }

    void Find(Json& json, const std::string& where)
    {
        if (IsKeyed(json)) {
            fCurves.push_back(ReadCurve(json, where));
        } else if (json.is_object()) {
            for (const auto& [key, value] : json.items())
                FindInMember(value, key, where);
        } else if (json.is_array()) {
            for (size_t i = 0; i < json.size(); ++i)
                if (json[i].is_structured())
                    Find(json[i], fmt::format("{}[{}]", where, i));
        }
    }

    Curve ReadCurve(Json& json, const std::string& where) const
    {
        const JsonNode node(json, where);
        node.RequireKeys({"keys", "between"});
        Curve curve = {&json, ReadKeys(*node.Find("keys"), json["keys"]), Between::kStep};
        const bool isNumbers = std::all_of(
            curve.keys.begin(), curve.keys.end(), [](const Key& key) { return IsNumbers(key.value); });
        const Field* const field
            = fTable != nullptr ? FieldNear(*fTable, where.substr(fAddressStart)) : nullptr;
        const bool isStepped = !isNumbers || (field != nullptr && ChangesInSteps(field->fType));
        const auto between = node.Find("between");
        curve.between = between ? ReadBetween(*between) : isStepped ? Between::kStep : Between::kLinear;
        if (curve.between == Between::kStep)
            return curve;
        if (isStepped)
            between->Fail(fmt::format("{} changes all at once; expected \"step\"",
                isNumbers ? TypeText(field->fType) : "what isn't made of numbers"));
        for (size_t i = 1; i < curve.keys.size(); ++i)
            if (!HaveSameForm(curve.keys[0].value, curve.keys[i].value))
                node.Find("keys")->Element(i).Element(1).Fail(
                    "it has more or fewer numbers than the value of the first key");
        return curve;
    }

    static std::vector<Key> ReadKeys(const JsonNode& node, const Json& json)
    {
        if (!node.IsArray() || node.Count() == 0)
            node.Refuse("keys, each a frame and a value");
        std::vector<Key> keys;
        for (size_t i = 0; i < json.size(); ++i) {
            const JsonNode key = node.Element(i);
            if (!key.IsArray() || key.Count() != 2 || !json[i][0].is_number())
                key.Refuse("a frame and a value, such as [24, 0.5]");
            if (!IsPlain(json[i][1]))
                key.Element(1).Refuse("a value without further keys or fields");
            keys.push_back({json[i][0].get<double>(), json[i][1]});
            if (i > 0 && !(keys[i - 1].frame < keys[i].frame))
                key.Fail(
                    fmt::format("frame {} doesn't come behind frame {}", keys[i].frame, keys[i - 1].frame));
        }
        return keys;
    }
};

const ParameterTable* TableOf(const Json& shader)
{
    if (const auto name = shader.find("class"); name != shader.end() && name->is_string())
        return FindClass(name->get_ref<const std::string&>());
    if (const auto name = shader.find("source"); name != shader.end() && name->is_string())
        if (const SourceKind* const kind = FindSource(name->get_ref<const std::string&>()))
            return &kind->fTable;
    return nullptr;
}

const Field* FieldNear(const ParameterTable& table, const std::string& address)
{
    for (size_t end = address.size(); end != std::string::npos; end = address.find_last_of("[.", end - 1))
        if (const Field* const field = table.Find(std::string_view(address).substr(0, end)))
            return field;
    for (const Field& field : table.fFields)
        if (field.fName.starts_with(address + '[')
            && field.fName.find('.', address.size()) == std::string::npos)
            return &field;
    return nullptr;
}

bool ChangesInSteps(FieldType type)
{
    switch (type) {
    case FieldType::kInt32:
    case FieldType::kBool:
    case FieldType::kCode:
    case FieldType::kString:
    case FieldType::kShader:
    case FieldType::kFile:
        return true;
    default:
        return false;
    }
}

Keys::Keys(Json& document)
{
    if (!document.is_object())
        return;
    Finder finder(fCurves);
    if (const auto shaders = document.find("shaders"); shaders != document.end() && shaders->is_object())
        for (const auto& [name, shader] : shaders->items())
            finder.FindInShader(shader, name);
    if (const auto scene = document.find("scene"); scene != document.end())
        finder.FindInScene(*scene);
}

double Keys::FirstFrame() const
{
    double first = fCurves.front().keys.front().frame;
    for (const Curve& curve : fCurves)
        first = std::min(first, curve.keys.front().frame);
    return first;
}

double Keys::LastFrame() const
{
    double last = fCurves.front().keys.back().frame;
    for (const Curve& curve : fCurves)
        last = std::max(last, curve.keys.back().frame);
    return last;
}

void Keys::Store(double frame) const
{
    for (const Curve& curve : fCurves)
        *curve.place = curve.At(frame);
}

Json Keys::Curve::At(double frame) const
{
    const auto next
        = std::find_if(keys.begin(), keys.end(), [frame](const Key& key) { return frame < key.frame; });
    if (next == keys.begin())
        return next->value;
    const Key& last = *(next - 1);
    if (next == keys.end() || between == Between::kStep || frame == last.frame)
        return last.value;
    const double share = (frame - last.frame) / (next->frame - last.frame);
    return Mixed(
        last.value, next->value, between == Between::kSmooth ? share * share * (3 - 2 * share) : share);
}

} // namespace fernwick
