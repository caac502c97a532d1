#include "host/documents/SceneReader.h"
#include "host/geometry/Mesh.h"
#include "host/geometry/Primitives.h"
#include "host/json/Nearest.h"
#include "host/scene/Placement.h"
#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <unordered_map>

namespace fernwick {

namespace {

float ReadLength(const JsonNode& node)
{
    const float length = node.Float("a length above 0");
    if (!(length > 0))
        node.Refuse("a length above 0");
    return length;
}

float LengthOr(const JsonNode& node, const std::string& key, float standard)
{
    const auto found = node.Find(key);
    return found ? ReadLength(*found) : standard;
}

/// Two numbers, the second not below the first.
TVector2 ReadSpan(const JsonNode& node)
{
    if (!node.IsArray() || node.Count() != 2)
        node.Refuse("two numbers");
    const TVector2 span = {node.Element(0).Float(), node.Element(1).Float()};
    if (!(span[0] >= 0 && span[0] <= span[1]))
        node.Refuse("two numbers from 0, in ascending order");
    return span;
}

TMCColorRGB ReadColor(const JsonNode& node)
{
    const TVector3 color = node.Vector3();
    return {color[0], color[1], color[2]};
}

/// One of the named choices.
template <class Choice>
Choice ReadChoice(const JsonNode& node, std::string_view what,
    std::initializer_list<std::pair<const char*, Choice>> choices)
{
    const std::string name = node.Name();
    std::vector<std::string> known;
    for (const auto& [label, choice] : choices) {
        if (name == label)
            return choice;
        known.emplace_back(label);
    }
    node.Fail(fmt::format(
        "there is no {} \"{}\", only {}{}", what, name, fmt::join(known, ", "), NearestHint(name, known)));
}

JsonNode Required(const JsonNode& node, const std::string& key)
{
    const auto found = node.Find(key);
    if (!found)
        node.Fail(fmt::format("it needs a \"{}\"", key));
    return *found;
}

using Shape = std::shared_ptr<const Geometry>;

Shape ReadSphere(const JsonNode& node)
{
    node.RequireKeys({"kind", "radius"});
    return MakeSphere(LengthOr(node, "radius", 1));
}

Shape ReadTorus(const JsonNode& node)
{
    node.RequireKeys({"kind", "radius", "tube"});
    const float ringRadius = LengthOr(node, "radius", 1);
    const float tubeRadius = LengthOr(node, "tube", ringRadius / 4);
    if (!(ringRadius > tubeRadius))
        node.Fail("the radius of the ring must be larger than that of its tube");
    return MakeTorus(ringRadius, tubeRadius);
}

Shape ReadSaddle(const JsonNode& node)
{
    node.RequireKeys({"kind", "size", "height"});
    const auto height = node.Find("height");
    return MakeSaddle(LengthOr(node, "size", 2), height ? height->Float() : 0.5f);
}

Shape ReadPlane(const JsonNode& node)
{
    node.RequireKeys({"kind", "size"});
    const auto size = node.Find("size");
    if (size && (!size->IsArray() || size->Count() != 2))
        size->Refuse("two lengths");
    return size ? MakePlane(ReadLength(size->Element(0)), ReadLength(size->Element(1))) : MakePlane(2, 2);
}

Shape ReadBox(const JsonNode& node)
{
    node.RequireKeys({"kind", "size"});
    const auto size = node.Find("size");
    if (!size)
        return MakeBox({2, 2, 2});
    size->Vector3();
    return MakeBox(
        {ReadLength(size->Element(0)), ReadLength(size->Element(1)), ReadLength(size->Element(2))});
}

using ReadShape = Shape (*)(const JsonNode&);

/// How a shape is read; null for a model.
ReadShape FindShape(const JsonNode& node)
{
    return ReadChoice<ReadShape>(Required(node, "kind"), "shape",
        {{"sphere", &ReadSphere}, {"torus", &ReadTorus}, {"saddle", &ReadSaddle}, {"plane", &ReadPlane},
            {"box", &ReadBox}, {"model", nullptr}});
}

/// What an object says of a file beside its name.
void ReadLengths(const JsonNode& node, SceneFileOptions& options)
{
    if (const auto up = node.Find("up"))
        options.fZUp = ReadChoice<bool>(*up, "axis", {{"Y", false}, {"Z", true}});
    options.fScale = LengthOr(node, "scale", 1);
}

LightDescription ReadLight(const JsonNode& node)
{
    node.RequireKeys({"kind", "color", "brightness", "range", "cone"});
    LightDescription light;
    if (const auto kind = node.Find("kind"))
        light.fKind = ReadChoice<LightKind>(*kind, "light",
            {{"point", LightKind::kPoint}, {"spot", LightKind::kSpot}, {"distant", LightKind::kDistant}});
    if (const auto color = node.Find("color"))
        light.fColor = ReadColor(*color);
    if (const auto brightness = node.Find("brightness"))
        light.fBrightness = brightness->Float();
    if (const auto range = node.Find("range")) {
        if (light.fKind == LightKind::kDistant)
            range->Fail("a distant light has no range");
        const TVector2 span = ReadSpan(*range);
        light.fNearRange = span[0];
        light.fFarRange = span[1];
    }
    if (const auto cone = node.Find("cone")) {
        if (light.fKind != LightKind::kSpot)
            cone->Fail("only a spot has a cone");
        const TVector2 span = ReadSpan(*cone);
        light.fInnerAngle = span[0];
        light.fOuterAngle = span[1];
    }
    return light;
}

CameraDescription ReadCamera(const JsonNode& node)
{
    node.RequireKeys({"fieldOfView"});
    CameraDescription camera;
    if (const auto angle = node.Find("fieldOfView")) {
        camera.fFieldOfView = angle->Float();
        if (!(camera.fFieldOfView >= 1 && camera.fFieldOfView <= 170))
            angle->Refuse("1 to 170 degrees");
    }
    return camera;
}

void CollectNames(const std::vector<ElementDescription>& elements, std::vector<std::string>& names)
{
    for (const ElementDescription& element : elements) {
        names.push_back(element.fName);
        CollectNames(element.fChildren, names);
    }
}

/// Reads scenes, with what they refer to at hand.
class Reader {
public:
    Reader(const ShaderNames& names, const std::filesystem::path& folder, DocumentFiles& files)
        : fNames(names), fFolder(folder), fFiles(files)
    { }

    SceneDescription Read(const JsonNode& node)
    {
        node.RequireKeys({"file", "materials", "elements", "nodes", "shaded", "camera", "background"});
        SceneDescription scene;
        if (const auto file = node.Find("file"))
            ReadFile(*file, node.Find("materials"), scene);
        else if (const auto materials = node.Find("materials"))
            materials->Fail("only a \"file\" has materials");
        if (const auto elements = node.Find("elements"))
            for (ElementDescription& element : ReadElements(*elements))
                scene.fElements.push_back(std::move(element));
        if (const auto nodes = node.Find("nodes"))
            ReadNodes(*nodes, scene.fElements);
        if (const auto shaded = node.Find("shaded")) {
            shaded->RequireKeys({"name", "position", "rotation", "lookAt", "hotPoint"});
            if (const auto name = shaded->Find("name"))
                scene.fShaded.fName = name->Name();
            ReadPlace(*shaded, scene.fShaded);
        }
        if (const auto camera = node.Find("camera"))
            scene.fCamera = ReadCameraName(*camera, scene);
        if (const auto background = node.Find("background")) {
            const TMCColorRGB color = ReadColor(*background);
            scene.fBackground = {color.fRed, color.fGreen, color.fBlue, 1};
        }
        scene.fNotices.insert(scene.fNotices.end(), fNotices.begin(), fNotices.end());
        return scene;
    }

private:
    const ShaderNames& fNames;
    const std::filesystem::path& fFolder;
    DocumentFiles& fFiles;
    std::vector<std::string> fNotices; // of the models of elements

    void ReadFile(
        const JsonNode& node, const std::optional<JsonNode>& materials, SceneDescription& scene) const
    {
        SceneFileOptions options;
        if (node.IsObject()) {
            node.RequireKeys({"path", "up", "scale", "position", "rotation"});
            ReadLengths(node, options);
            ElementDescription holder;
            ReadPlace(node, holder);
            options.fPlace = holder.fPlace;
        }
        if (materials)
            for (const auto& [name, shader] : materials->Members()) {
                FindShader(shader, fNames);
                options.fShaders[name] = shader.Name();
            }
        const JsonNode path = node.IsObject() ? Required(node, "path") : node;
        try {
            scene.fFile = fFolder / std::filesystem::path(path.Name());
            SceneFile file = fFiles.ReadScene(scene.fFile, options);
            if (materials)
                RequireKnown(*materials, file.fMaterials);
            scene.fElements = std::move(file.fElements);
            scene.fFileElements = scene.fElements.size();
            scene.fNotices = std::move(file.fNotices);
        } catch (const SceneFileError& error) {
            path.Fail(error.what());
        }
    }

    static void RequireKnown(const JsonNode& materials, const std::vector<std::string>& known)
    {
        for (const auto& [name, shader] : materials.Members())
            if (std::find(known.begin(), known.end(), name) == known.end())
                shader.Fail(fmt::format("there is no material \"{}\"{}", name, NearestHint(name, known)));
    }

    Shape ReadModel(const JsonNode& node)
    {
        node.RequireKeys({"kind", "file", "up", "scale", "radius"});
        SceneFileOptions options;
        ReadLengths(node, options);
        const auto radius = node.Find("radius");
        if (radius && node.Find("scale"))
            radius->Fail("a model has either a \"scale\" or a \"radius\"");
        const JsonNode file = Required(node, "file");
        try {
            const ModelShape shape = fFiles.ReadShape(fFolder / std::filesystem::path(file.Name()), options,
                radius ? std::optional(ReadLength(*radius)) : std::nullopt);
            fNotices.insert(fNotices.end(), shape.fNotices.begin(), shape.fNotices.end());
            return shape.fGeometry;
        } catch (const SceneFileError& error) {
            file.Fail(error.what());
        }
    }

    static void ReadPlace(const JsonNode& node, ElementDescription& element)
    {
        if (const auto rotation = node.Find("rotation"))
            element.fPlace = RotatedBy(rotation->Vector3());
        if (const auto position = node.Find("position"))
            element.fPlace.fTranslation = position->Vector3();
        if (const auto target = node.Find("lookAt")) {
            if (node.Find("rotation"))
                target->Fail("an element has either a \"rotation\" or a \"lookAt\"");
            const TVector3 position = element.fPlace.fTranslation;
            const TVector3 direction = target->Vector3() - position;
            if (direction == TVector3())
                target->Fail("it is where the element lies, and no direction; move it or the \"position\"");
            element.fPlace = FacingTo(direction);
            element.fPlace.fTranslation = position;
        }
        if (const auto hotPoint = node.Find("hotPoint"))
            element.fHotPoint = hotPoint->Vector3();
    }

    void ReadLook(const JsonNode& node, LookDescription& look) const
    {
        if (const auto shader = node.Find("shader")) {
            FindShader(*shader, fNames);
            look.fShader = shader->Name();
        }
        if (const auto shading = node.Find("shading"))
            look.fLit = ReadChoice<bool>(*shading, "shading", {{"plain", false}, {"lit", true}});
    }

    std::vector<ElementDescription> ReadElements(const JsonNode& node)
    {
        if (!node.IsArray())
            node.Refuse("an array of elements");
        std::vector<ElementDescription> elements;
        for (size_t i = 0; i < node.Count(); ++i) {
            const JsonNode child = node.Element(i);
            child.RequireKeys({"name", "position", "rotation", "lookAt", "hotPoint", "shape", "light",
                "camera", "shader", "shading", "children"});
            const auto name = child.Find("name");
            if (!name)
                child.Fail("an element needs a \"name\"");
            ElementDescription& element = elements.emplace_back();
            element.fName = name->Name();
            ReadPlace(child, element);
            if (const auto shape = child.Find("shape")) {
                const ReadShape read = FindShape(*shape);
                element.fGeometry = read != nullptr ? read(*shape) : ReadModel(*shape);
            }
            if (const auto light = child.Find("light"))
                element.fLight = ReadLight(*light);
            if (const auto camera = child.Find("camera"))
                element.fCamera = fernwick::ReadCamera(*camera);
            ReadLook(child, element.fLook);
            if (const auto children = child.Find("children"))
                element.fChildren = ReadElements(*children);
        }
        return elements;
    }

    void ReadNodes(const JsonNode& node, std::vector<ElementDescription>& elements) const
    {
        std::unordered_multimap<std::string, ElementDescription*> named;
        CollectElements(elements, named);
        for (const auto& [name, member] : node.Members()) {
            const auto [first, last] = named.equal_range(name);
            if (first == last)
                FailUnknown(member, name, elements);
            ElementDescription given;
            if (member.IsText()) {
                FindShader(member, fNames);
                given.fLook.fShader = member.Name();
            } else {
                member.RequireKeys({"shader", "shading", "hotPoint"});
                ReadLook(member, given.fLook);
                ReadPlace(member, given);
            }
            const bool hasHotPoint = !member.IsText() && member.Find("hotPoint");
            for (auto entry = first; entry != last; ++entry) {
                ElementDescription& element = *entry->second;
                if (given.fLook.fShader)
                    element.fLook.fShader = given.fLook.fShader;
                if (given.fLook.fLit)
                    element.fLook.fLit = given.fLook.fLit;
                if (hasHotPoint)
                    element.fHotPoint = given.fHotPoint;
            }
        }
    }

    static void CollectElements(std::vector<ElementDescription>& elements,
        std::unordered_multimap<std::string, ElementDescription*>& named)
    {
        for (ElementDescription& element : elements) {
            named.emplace(element.fName, &element);
            CollectElements(element.fChildren, named);
        }
    }

    [[noreturn]] static void FailUnknown(
        const JsonNode& node, const std::string& name, const std::vector<ElementDescription>& elements)
    {
        std::vector<std::string> names;
        CollectNames(elements, names);
        node.Fail(fmt::format("there is no element \"{}\"{}", name, NearestHint(name, names)));
    }

    static std::string ReadCameraName(const JsonNode& node, const SceneDescription& scene)
    {
        std::vector<std::string> names{scene.fShaded.fName};
        CollectNames(scene.fElements, names);
        const std::string camera = node.Name();
        if (std::find(names.begin(), names.end(), camera) == names.end())
            node.Fail(fmt::format("there is no element \"{}\"{}", camera, NearestHint(camera, names)));
        return camera;
    }
};

} // namespace

SceneDescription ReadScene(
    const JsonNode& node, const ShaderNames& names, const std::filesystem::path& folder, DocumentFiles& files)
{
    return Reader(names, folder, files).Read(node);
}

std::vector<std::string> FindSharedNames(const SceneDescription& scene)
{
    constexpr size_t kMost = 8;
    std::vector<std::string> names = {"Scene"}; // in tree order
    CollectNames(scene.fElements, names);
    names.push_back(scene.fShaded.fName);
    std::map<std::string_view, size_t> counts;
    std::vector<std::string> shared;
    for (const std::string& name : names)
        if (!name.empty() && ++counts[name] == 2 && shared.size() < kMost)
            shared.push_back(name);
    std::vector<std::string> texts;
    for (const std::string& name : shared)
        texts.push_back(
            fmt::format("scene: {} elements are named \"{}\"{}; what looks for the name finds the first",
                counts[name], name, name == names.front() ? ", as the root is" : ""));
    return texts;
}

} // namespace fernwick
