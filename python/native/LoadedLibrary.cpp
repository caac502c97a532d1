#include "python/native/LoadedLibrary.h"
#include "host/library/ReportCounts.h"
#include "python/native/Rooms.h"
#include <memory>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace {

/// It stays until the process ends, as objects of it may. All that looks at it holds the interpreter's lock.
struct Loaded {
    explicit Loaded(const std::string& path) : library(path), reports(library.HostUtilities().Debug()) { }

    fernwick::Library library;
    fernwick::ReportCounts reports;
};

Loaded* gLoaded = nullptr;

void SetLibrary(const std::string& path)
{
    if (gLoaded == nullptr)
        gLoaded = new Loaded(path);
    else if (std::error_code ignored; !std::filesystem::equivalent(path, gLoaded->library.Path(), ignored))
        throw fernwick::LibraryError(path + ": this process has loaded " + gLoaded->library.Path().string()
            + " already; name the library before its first use");
}

} // namespace

fernwick::Library& LoadedLibrary()
{
    if (gLoaded == nullptr)
        throw fernwick::LibraryError("no library is loaded; name one by set_library");
    return gLoaded->library;
}

fernwick::Library* LibraryOrNull() { return gLoaded != nullptr ? &gLoaded->library : nullptr; }

void AddLibrary(py::module_& module)
{
    module.def("set_library", &SetLibrary, py::arg("path"));
    module.def(
        "library_path", [] { return gLoaded != nullptr ? gLoaded->library.Path().string() : std::string(); });
    module.def("take_reports",
        [] { return gLoaded != nullptr ? gLoaded->reports.Take() : std::vector<std::string>(); });
}
