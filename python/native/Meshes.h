#pragma once
#include "host/geometry/Mesh.h"

/// A mesh that a program gives. Never changes.
struct PyMesh {
    std::shared_ptr<const fernwick::Geometry> fGeometry;

    const fernwick::MeshDescription& Description() const { return *fGeometry->Mesh(); }
};
