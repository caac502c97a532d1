#include "host/documents/SceneFile.h"
#include "host/json/GraphError.h"
#include "host/library/Library.h"
#include "host/shading/Bake.h"
#include "host/shading/Render.h"
#include "host/sources/Sources.h"
#include "python/native/Rooms.h"

namespace py = pybind11;

namespace {

/// Makes a class of errors that is one of the package's and one of Python's own too.
template <class Error>
void Add(py::module_& module, const char* name, const py::object& base, PyObject* pythons)
{
    const py::tuple bases = py::make_tuple(base, py::reinterpret_borrow<py::object>(pythons));
    py::register_exception<Error>(module, name, bases);
    module.attr(name).attr("__module__") = "fernwick";
}

} // namespace

void AddErrors(py::module_& module)
{
    const auto error = py::reinterpret_steal<py::object>(PyErr_NewExceptionWithDoc(
        "fernwick.Error", "What this package raises of its own.", nullptr, nullptr));
    module.attr("Error") = error;
    Add<fernwick::GraphError>(module, "GraphError", error, PyExc_ValueError);
    Add<fernwick::BakeError>(module, "BakeError", error, PyExc_ValueError);
    Add<fernwick::RenderError>(module, "RenderError", error, PyExc_ValueError);
    Add<fernwick::SceneFileError>(module, "ModelError", error, PyExc_ValueError);
    Add<fernwick::FileError>(module, "FileError", error, PyExc_OSError);
    Add<fernwick::LibraryError>(module, "LibraryError", error, PyExc_OSError);
}
