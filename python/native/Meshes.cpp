#include "python/native/Meshes.h"
#include "host/documents/ModelShape.h"
#include "host/documents/SceneFile.h"
#include "python/native/Arrays.h"
#include "python/native/Rooms.h"
#include "python/native/Serve.h"
#include <cmath>
#include <fmt/format.h>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace {

using fernwick::MeshDescription;
using Corners = py::array_t<unsigned, py::array::c_style>;

/// The rows of an array as vectors; every number must be finite.
/// @param count  of rows that there have to be; none for any
template <class Vector>
std::vector<Vector> VectorsOf(const Floats& array, const std::string& name, std::optional<size_t> count = {})
{
    constexpr py::ssize_t kSize = sizeof(Vector) / sizeof(float);
    if (array.ndim() != 2 || array.shape(1) != kSize)
        throw py::value_error(fmt::format("{}: expected the shape (vertices, {})", name, kSize));
    const auto rows = static_cast<size_t>(array.shape(0));
    if (count && rows != *count)
        throw py::value_error(
            fmt::format("{}: expected one of each of the {} vertices, got {}", name, *count, rows));
    const float* const numbers = array.data();
    for (py::ssize_t i = 0; i < array.size(); ++i)
        if (!std::isfinite(numbers[i]))
            throw py::value_error(
                fmt::format("{}: expected finite numbers, got {} in row {}", name, numbers[i], i / kSize));
    std::vector<Vector> vectors(rows);
    std::memcpy(static_cast<void*>(vectors.data()), numbers, static_cast<size_t>(array.nbytes()));
    return vectors;
}

std::vector<std::array<unsigned, 3>> TrianglesOf(const Corners& array, size_t vertices)
{
    if (array.ndim() != 2 || array.shape(1) != 3)
        throw py::value_error("triangles: expected the shape (triangles, 3)");
    if (array.shape(0) == 0)
        throw py::value_error("triangles: expected one or more");
    const unsigned* const corners = array.data();
    for (py::ssize_t i = 0; i < array.size(); ++i)
        if (corners[i] >= vertices)
            throw py::value_error(fmt::format(
                "triangles: row {} names the vertex {}, and there are {}", i / 3, corners[i], vertices));
    std::vector<std::array<unsigned, 3>> triangles(static_cast<size_t>(array.shape(0)));
    std::memcpy(triangles.data(), corners, static_cast<size_t>(array.nbytes()));
    return triangles;
}

PyMesh Make(const Floats& points, const Corners& triangles, const std::vector<Floats>& uvs,
    const std::optional<Floats>& normals)
{
    MeshDescription mesh;
    mesh.fPoints = VectorsOf<TVector3>(points, "vertices");
    const size_t count = mesh.fPoints.size();
    mesh.fTriangles = TrianglesOf(triangles, count);
    if (normals)
        mesh.fNormals = VectorsOf<TVector3>(*normals, "normals", count);
    for (size_t set = 0; set < uvs.size(); ++set) {
        const std::string name = uvs.size() == 1 ? "uvs" : fmt::format("uvs[{}]", set);
        auto coordinates = VectorsOf<TVector2>(uvs[set], name, count);
        if (set == 0)
            mesh.fUVs = std::move(coordinates);
        else
            mesh.fFurtherUVs.push_back(std::move(coordinates));
    }
    PyMesh made;
    Serve(py::none(), [&](Control&) { made.fGeometry = fernwick::MakeMesh(std::move(mesh)); });
    return made;
}

PyMesh ReadMesh(const std::string& path, bool isZUp, float scale)
{
    PyMesh made;
    Serve(py::none(), [&](Control&) {
        const auto scene = fernwick::ReadSceneFile(path, {.fZUp = isZUp, .fScale = scale});
        made.fGeometry = fernwick::MergeMeshes(scene.fElements, std::nullopt);
    });
    if (made.fGeometry == nullptr)
        throw fernwick::SceneFileError(path + " has no mesh");
    return made;
}

/// A view of the vectors of a mesh.
template <class Vector> py::array ViewOf(const py::object& mesh, const std::vector<Vector>& vectors)
{
    using Number = std::remove_cvref_t<decltype(vectors.front()[0])>;
    constexpr py::ssize_t kSize = sizeof(Vector) / sizeof(Number);
    return ReadOnly({static_cast<py::ssize_t>(vectors.size()), kSize},
        reinterpret_cast<const Number*>(vectors.data()), mesh);
}

} // namespace

void AddMeshes(py::module_& module)
{
    const auto description = [](const py::object& mesh) -> const MeshDescription& {
        return mesh.cast<const PyMesh&>().Description();
    };
    py::class_<PyMesh>(module, "Mesh")
        .def(py::init(&Make), py::arg("points"), py::arg("triangles"), py::arg("uvs"), py::arg("normals"))
        .def_static("read", &ReadMesh, py::arg("path"), py::arg("z_up"), py::arg("scale"))
        .def_property_readonly(
            "points", [=](const py::object& mesh) { return ViewOf(mesh, description(mesh).fPoints); })
        .def_property_readonly(
            "triangles", [=](const py::object& mesh) { return ViewOf(mesh, description(mesh).fTriangles); })
        .def_property_readonly("uvs",
            [=](const py::object& mesh) {
                py::list sets;
                for (size_t set = 0; set < description(mesh).UVSetCount(); ++set)
                    sets.append(ViewOf(mesh, description(mesh).UVSet(set)));
                return sets;
            })
        .def_property_readonly("normals", [=](const py::object& mesh) -> py::object {
            const auto& normals = description(mesh).fNormals;
            return normals.empty() ? py::object(py::none()) : ViewOf(mesh, normals);
        });
}
