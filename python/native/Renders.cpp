#include "host/shading/Render.h"
#include "python/native/Arrays.h"
#include "python/native/Graphs.h"
#include "python/native/LoadedLibrary.h"
#include "python/native/Region.h"
#include "python/native/Rooms.h"
#include "python/native/Serve.h"
#include <pybind11/stl.h>

namespace py = pybind11;

namespace {

/// The layers of a group, which follow one another in the picture, as one array.
/// @param first, last  places among the picture's layers; the last isn't among them
Floats Together(const fernwick::Picture& picture, size_t first, size_t last)
{
    std::vector<py::ssize_t> shape = {picture.Height(), picture.Width()};
    const size_t count = last - first;
    if (count > 1)
        shape.push_back(static_cast<py::ssize_t>(count));
    Floats array(shape);
    float* const numbers = array.mutable_data();
    for (size_t layer = first; layer < last; ++layer) {
        const std::vector<float>& values = picture.Channels()[layer];
        for (size_t i = 0; i < values.size(); ++i)
            numbers[i * count + layer - first] = values[i];
    }
    return array;
}

std::string GroupOf(const std::string& layer) { return layer.substr(0, layer.find('.')); }

py::dict ArraysOf(std::unique_ptr<fernwick::Picture> picture)
{
    py::dict arrays;
    const std::vector<std::string>& names = picture->ChannelNames();
    for (size_t first = 0, last = 0; first < names.size(); first = last) {
        while (last < names.size() && GroupOf(names[last]) == GroupOf(names[first]))
            ++last;
        arrays[py::str(GroupOf(names[first]))] = Together(*picture, first, last);
    }
    const std::vector<py::ssize_t> shape = {picture->Height(), picture->Width(), 4};
    const float* const numbers = &picture->Pixels().data()->fRed;
    arrays["color"] = Own(shape, std::move(picture), numbers);
    return arrays;
}

py::dict Render(const PyDocument& document, int width, int height, const std::string& camera, int samples,
    const std::vector<std::string>& layers, const Region& region, int threads, const py::object& progress)
{
    const fernwick::Library& library = LoadedLibrary();
    fernwick::RenderJob job;
    job.width = width;
    job.height = height;
    job.region = PictureRegionOf(region);
    job.camera = camera;
    job.samples = samples;
    job.layers = fernwick::SurfaceLayersOf(layers);
    job.threads = threads;
    std::unique_ptr<fernwick::Picture> picture;
    Serve(progress, [&](Control& control) {
        job.cancel = &control.fCancel;
        job.onProgress = [&control](double share) { control.fShare = share; };
        if (auto made = fernwick::Render(library, document.fGraph, job))
            picture = std::make_unique<fernwick::Picture>(std::move(*made));
    });
    return ArraysOf(std::move(picture));
}

/// Begins to render and ends before the first tile.
void RequireView(const PyDocument& document, const std::string& camera)
{
    fernwick::RenderJob job;
    job.camera = camera;
    const std::atomic<bool> isOver{true};
    job.cancel = &isOver;
    Serve(py::none(), [&](Control&) { fernwick::Render(LoadedLibrary(), document.fGraph, job); });
}

} // namespace

void AddRenders(py::module_& module)
{
    module.def("render", &Render, py::arg("document"), py::arg("width"), py::arg("height"), py::arg("camera"),
        py::arg("samples"), py::arg("layers"), py::arg("region"), py::arg("threads"), py::arg("progress"));
    module.def("require_view", &RequireView, py::arg("document"), py::arg("camera"));
}
