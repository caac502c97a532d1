#include "host/documents/StandInLight.h"
#include "host/json/Printable.h"
#include "host/scene/Placement.h"
#include <algorithm>
#include <fmt/format.h>

namespace fernwick {

namespace {

const TVector3 kToLight(-0.5f, 0.7f, 1); // as a camera sees it

template <class Is> bool AnyOf(const std::vector<ElementDescription>& elements, const Is& is)
{
    return std::any_of(elements.begin(), elements.end(),
        [&is](const ElementDescription& element) { return is(element) || AnyOf(element.fChildren, is); });
}

/// The place of the camera of a name, or of the first without one, in world space.
std::optional<TTransform3D> FindCamera(
    const std::vector<ElementDescription>& elements, const TTransform3D& parent, const std::string& name)
{
    for (const ElementDescription& element : elements) {
        const TTransform3D place = Composed(parent, element.fPlace);
        if (element.fCamera && (name.empty() || element.fName == name))
            return place;
        if (const auto below = FindCamera(element.fChildren, place, name))
            return below;
    }
    return std::nullopt;
}

} // namespace

void AddStandInLights(const std::vector<std::string>& names, SceneDescription& scene)
{
    const std::vector<ElementDescription>& elements = scene.fElements;
    if (AnyOf(elements, [](const ElementDescription& element) { return element.fLight.has_value(); })
        || !AnyOf(elements, [](const ElementDescription& element) { return element.fGeometry != nullptr; }))
        return;
    const auto camera = FindCamera(elements, {}, scene.fCamera);
    if (!camera)
        return;
    for (const std::string& name : names) {
        const auto hasName = [&name](const ElementDescription& element) { return element.fName == name; };
        if (name.empty() || hasName(scene.fShaded) || AnyOf(elements, hasName))
            continue;
        ElementDescription light;
        light.fName = name;
        light.fPlace = FacingTo(-Turned(*camera, kToLight));
        light.fPlace.fTranslation = camera->fTranslation;
        light.fLight = LightDescription{.fKind = LightKind::kDistant};
        scene.fElements.push_back(std::move(light));
        scene.fNotices.push_back(
            Printable(fmt::format("the scene has no light; \"{}\" shines from beside the camera", name)));
    }
}

} // namespace fernwick
