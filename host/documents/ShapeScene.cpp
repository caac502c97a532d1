#include "host/documents/ShapeScene.h"
#include <algorithm>

namespace fernwick {

const NamedShape* FindShadeShape(std::string_view name)
{
    const auto* const found = std::find_if(std::begin(kShadeShapes), std::end(kShadeShapes),
        [name](const NamedShape& row) { return row.name == name; });
    return found != std::end(kShadeShapes) ? found : nullptr;
}

Json ShapeScene(Json shape, bool isSquare, bool isLit)
{
    const double scale = isSquare ? 1 : 4;
    const double middle = isSquare ? 0.5 : 0;
    const auto element = [&](Json description, const char* name, double x, double y, double z) {
        description["name"] = name;
        description["position"] = {middle + scale * x, middle + scale * y, scale * z};
        return description;
    };
    const Json light = {{"kind", "point"}, {"range", {0.8 * scale, 2.5 * scale}}};
    Json elements = Json::array({element({{"light", light}}, "Lamp", -0.8, 0.8, 0.8),
        element(Json::object(), "Target", 0.5, 0.5, 0.3),
        element({{"camera", {{"fieldOfView", 38}}}}, "Camera", 0, 0, 2),
        element(std::move(shape), "Shape", 0, 0, 0)});
    elements.back()["shading"] = isLit ? "lit" : "plain";
    return {{"elements", elements}, {"camera", "Camera"}, {"background", {0.05, 0.06, 0.08}}};
}

} // namespace fernwick
