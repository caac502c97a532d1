#include "host/documents/ModelScene.h"
#include "host/json/Nearest.h"
#include "host/json/Printable.h"
#include <algorithm>
#include <fmt/format.h>
#include <functional>
#include <system_error>

namespace fernwick {

namespace {

/// Calls `visit` with each element, parents before what lies below them.
template <class Elements, class Visit> void ForEachElement(Elements& elements, const Visit& visit)
{
    for (auto& element : elements) {
        visit(element);
        ForEachElement(element.fChildren, visit);
    }
}

ElementDescription* Named(std::vector<ElementDescription>& elements, const std::string& name)
{
    ElementDescription* found = nullptr;
    ForEachElement(elements, [&](ElementDescription& element) {
        if (found == nullptr && element.fName == name)
            found = &element;
    });
    return found;
}

bool IsMesh(const ElementDescription& element)
{
    return element.fGeometry != nullptr && element.fGeometry->Mesh() != nullptr;
}

/// What a model brings into a scene that has others.
class Placer {
public:
    explicit Placer(SceneDescription& scene) : fScene(scene) { }

    /// Adds the model's nodes, and marks what has their shapes.
    void Add(std::vector<ElementDescription> nodes)
    {
        GiveShapes(nodes);
        for (ElementDescription& node : nodes)
            fScene.fElements.push_back(std::move(node));
    }

    const std::vector<std::shared_ptr<const Geometry>>& Shapes() const { return fShapes; }

private:
    SceneDescription& fScene;
    std::vector<std::shared_ptr<const Geometry>> fShapes; // of the model

    void GiveShapes(std::vector<ElementDescription>& nodes)
    {
        for (ElementDescription& node : nodes) {
            GiveShapes(node.fChildren);
            if (node.fGeometry == nullptr)
                continue;
            fShapes.push_back(node.fGeometry);
            ElementDescription* const own = Named(fScene.fElements, node.fName);
            if (own == nullptr || std::find(fShapes.begin(), fShapes.end(), own->fGeometry) != fShapes.end())
                continue;
            own->fGeometry = std::exchange(node.fGeometry, nullptr);
            own->fScale = node.fScale;
            node.fName.clear(); // it is another element now
        }
        std::erase_if(nodes, [](const ElementDescription& node) {
            return node.fName.empty() && node.fGeometry == nullptr && node.fChildren.empty();
        });
    }
};

/// Lamp, target and camera around a model, as they are around the shapes of the one-shader command.
void AddSurroundings(SceneDescription& scene)
{
    TBBox3D box;
    MakeCounted<Scene>(scene, Scene::Shaded::kNone)->Root().GetBoundingBox(box, 0, false);
    TVector3 middle = box.fMin + box.fMax;
    middle *= 0.5f;
    const TVector3 sides = box.fMax - box.fMin;
    const float widest = std::max({sides[0], sides[1], sides[2]});
    const float size = widest > 0 ? widest : 1;
    bool hasCamera = false;
    ForEachElement(scene.fElements,
        [&hasCamera](const ElementDescription& element) { hasCamera = hasCamera || element.fCamera; });
    const auto add = [&](ElementDescription element, float x, float y, float z) {
        if (Named(scene.fElements, element.fName) != nullptr)
            return;
        TVector3 away(x, y, z);
        away *= size;
        element.fPlace.fTranslation = middle + away;
        scene.fElements.push_back(std::move(element));
    };
    LightDescription light;
    light.fNearRange = 0.8f * size;
    light.fFarRange = 2.5f * size;
    add({.fName = "Lamp", .fLight = light}, -0.8f, 0.8f, 0.8f);
    add({.fName = "Target"}, 0.5f, 0.5f, 0.3f);
    if (!hasCamera)
        add({.fName = "Camera", .fCamera = CameraDescription{.fFieldOfView = 38}}, 0, 0, 2);
}

/// Walks a scene in the order of its shapes and picks those to bake onto.
class TargetFinder {
public:
    /// @param isOfModel  of an element at the top of the scene or below it, with its place at the top
    using IsOfModel = std::function<bool(const ElementDescription& element, size_t top)>;

    TargetFinder(const SceneDescription& scene, const std::string& node, IsOfModel isOfModel)
        : fNode(node), fIsOfModel(std::move(isOfModel))
    {
        for (size_t top = 0; top < scene.fElements.size(); ++top)
            Walk(scene.fElements[top], top, node.empty());
        if (fTargets.empty())
            Fail();
    }

    const std::vector<size_t>& Targets() const { return fTargets; }

private:
    const std::string& fNode;
    IsOfModel fIsOfModel;
    size_t fShapes = 0;
    bool fIsThere = false;           // an element of the name
    std::vector<std::string> fNames; // of meshes
    std::vector<size_t> fTargets;

    void Walk(const ElementDescription& element, size_t top, bool isWanted)
    {
        isWanted = isWanted || element.fName == fNode;
        fIsThere = fIsThere || (isWanted && !fNode.empty());
        if (IsMesh(element) && fIsOfModel(element, top)) {
            fNames.push_back(element.fName);
            if (isWanted)
                fTargets.push_back(fShapes);
        }
        fShapes += element.fGeometry != nullptr ? 1 : 0;
        for (const ElementDescription& child : element.fChildren)
            Walk(child, top, isWanted);
    }

    [[noreturn]] void Fail() const
    {
        if (fNode.empty())
            throw GraphError("the model has no triangles to bake onto");
        if (fIsThere)
            throw GraphError(Printable(fmt::format(
                "\"{}\" has no triangles; a bake goes onto a mesh, which is a box or out of a file", fNode)));
        throw GraphError(Printable(
            fmt::format("there is no element \"{}\" with a mesh{}", fNode, NearestHint(fNode, fNames))));
    }
};

} // namespace

std::vector<GltfMesh> GltfMeshesOf(const OntoModel& onto, size_t set)
{
    const auto scene = MakeCounted<Scene>(*onto.fDocument.Scene(), Scene::Shaded::kNone);
    std::vector<GltfMesh> meshes;
    for (const size_t target : onto.fTargets) {
        const SceneElement& element = *scene->Shapes()[target];
        meshes.push_back({element.Name(), element.Transform(), {element.Shape()->Shape().Mesh(), set}});
    }
    return meshes;
}

OntoModel PutOnto(const GraphDocument& document, DocumentFiles& files, const std::filesystem::path& model,
    const std::string& node)
{
    const bool hadScene = document.Scene().has_value();
    if (model.empty() && !hadScene)
        throw GraphError(
            "the graph has no \"scene\" with an element to bake onto; name a model before the #");
    SceneDescription scene = document.Scene().value_or(SceneDescription());
    std::error_code ignored;
    const bool isItsFile = !model.empty() && !scene.fFile.empty()
        && (model == scene.fFile || std::filesystem::equivalent(model, scene.fFile, ignored));
    std::vector<std::shared_ptr<const Geometry>> shapes;
    if (!model.empty() && !isItsFile) {
        SceneFile file = files.ReadScene(model);
        scene.fNotices.insert(scene.fNotices.end(), file.fNotices.begin(), file.fNotices.end());
        Placer placer(scene);
        placer.Add(std::move(file.fElements));
        shapes = placer.Shapes();
    }
    if (!hadScene)
        AddSurroundings(scene);
    const TargetFinder finder(scene, node, [&](const ElementDescription& element, size_t top) {
        if (model.empty())
            return true;
        if (isItsFile)
            return top < scene.fFileElements;
        return std::find(shapes.begin(), shapes.end(), element.fGeometry) != shapes.end();
    });
    return {document.In(std::move(scene)), finder.Targets()};
}

} // namespace fernwick
