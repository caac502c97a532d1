#include "host/documents/SceneSummary.h"
#include "host/geometry/Mesh.h"
#include <algorithm>

namespace fernwick {

namespace {

UVRange RangeOf(const std::vector<TVector2>& uvs)
{
    UVRange range = {uvs.front(), uvs.front()};
    for (const TVector2& uv : uvs)
        for (uint32_t axis = 0; axis < 2; ++axis) {
            range.fMin[axis] = std::min(range.fMin[axis], uv[axis]);
            range.fMax[axis] = std::max(range.fMax[axis], uv[axis]);
        }
    return range;
}

bool HasShape(const ElementDescription& element)
{
    return element.fGeometry != nullptr
        || std::any_of(element.fChildren.begin(), element.fChildren.end(), &HasShape);
}

std::optional<TBBox3D> BoxOf(SceneElement& element)
{
    TBBox3D box;
    element.GetBoundingBox(box, 0, false);
    return box;
}

void AddMesh(const ElementDescription& element, ElementSummary& summary)
{
    const MeshDescription* const mesh = element.fGeometry != nullptr ? element.fGeometry->Mesh() : nullptr;
    if (mesh == nullptr)
        return;
    summary.fTriangles = mesh->fTriangles.size();
    summary.fVertices = mesh->fPoints.size();
    for (size_t set = 0; set < element.fUVSets; ++set)
        summary.fUVSets.push_back(RangeOf(mesh->UVSet(set)));
}

/// Adds elements and what is below them, with the live ones in the same order.
void Add(const std::vector<ElementDescription>& elements, size_t depth, const Scene& scene,
    std::vector<ElementSummary>& summaries)
{
    for (const ElementDescription& element : elements) {
        SceneElement& live = *scene.Elements()[summaries.size() + 1]; // behind the root
        ElementSummary& summary = summaries.emplace_back();
        summary.fElement = &element;
        summary.fDepth = depth;
        summary.fPosition = live.Transform().fTranslation;
        if (HasShape(element))
            summary.fBox = BoxOf(live);
        AddMesh(element, summary);
        Add(element.fChildren, depth + 1, scene, summaries);
    }
}

} // namespace

SceneSummary Summarize(const SceneDescription& scene)
{
    const auto live = MakeCounted<Scene>(scene, Scene::Shaded::kNone);
    SceneSummary summary;
    Add(scene.fElements, 0, *live, summary.fElements);
    if (std::any_of(scene.fElements.begin(), scene.fElements.end(), &HasShape))
        summary.fBox = BoxOf(live->Root());
    return summary;
}

} // namespace fernwick
