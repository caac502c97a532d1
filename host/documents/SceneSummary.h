#pragma once
#include "host/scene/Scene.h"

namespace fernwick {

/// The part of the UV plane that a set of a mesh takes.
struct UVRange {
    TVector2 fMin;
    TVector2 fMax;
};

struct ElementSummary {
    const ElementDescription* fElement = nullptr;
    size_t fDepth = 0;           ///< 0 for an element of no other
    TVector3 fPosition;          ///< of its origin, in world space
    std::optional<TBBox3D> fBox; ///< of its shape and all below it, in world space; none without any
    size_t fTriangles = 0;       ///< of its own mesh; 0 where it has none
    size_t fVertices = 0;        ///< of its own mesh; one place counts as often as normals or UV differ there
    std::vector<UVRange> fUVSets; ///< that the file has
};

/// What a scene is made of.
struct SceneSummary {
    std::vector<ElementSummary> fElements; ///< in tree order, without the shaded object
    std::optional<TBBox3D> fBox;           ///< of all shapes
};

/// @param scene  outlives the summary
SceneSummary Summarize(const SceneDescription& scene);

} // namespace fernwick
