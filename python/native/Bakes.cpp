#include "host/documents/ModelFile.h"
#include "host/pictures/Margin.h"
#include "host/shading/Bake.h"
#include "host/shading/MarginStage.h"
#include "host/shading/ModelTexels.h"
#include "python/native/Arrays.h"
#include "python/native/Graphs.h"
#include "python/native/LoadedLibrary.h"
#include "python/native/Region.h"
#include "python/native/Rooms.h"
#include "python/native/Serve.h"
#include <fmt/format.h>
#include <pybind11/stl.h>
#include <variant>

namespace py = pybind11;

namespace {

using fernwick::BakeChannel;
using fernwick::BakeJob;
using fernwick::PictureRegion;

/// A file's name, or a mesh.
using Model = std::variant<std::string, const PyMesh*>;

std::vector<BakeChannel> ChannelsOf(const std::vector<std::string>& names)
{
    std::vector<BakeChannel> channels;
    for (const std::string& name : names) {
        const auto channel = fernwick::FindBakeChannel(name);
        if (!channel)
            throw fernwick::BakeError(fmt::format("there is no output \"{}\"", name));
        channels.push_back(*channel);
    }
    return channels;
}

bool IsNumber(BakeChannel channel) { return ContentOf(channel) == fernwick::PictureContent::kValue; }

/// The arrays that a bake fills, one a channel.
class BakedArrays {
public:
    BakedArrays(const BakeJob& job, const PictureRegion& region) : fTop(region.top)
    {
        for (const BakeChannel channel : job.channels) {
            const bool isNumber = IsNumber(channel);
            std::vector<py::ssize_t> shape = {region.Height(), region.Width()};
            if (!isNumber)
                shape.push_back(4);
            fArrays.push_back(Floats(shape));
            fTargets.push_back({fArrays.back().mutable_data(), isNumber});
        }
    }

    /// The arrays themselves as room for a bake; empty when one of them is of numbers, which no bake makes.
    std::vector<TMCColorRGBA*> Rooms() const
    {
        std::vector<TMCColorRGBA*> rooms;
        for (const Target& target : fTargets) {
            if (target.isNumber)
                return {};
            rooms.push_back(reinterpret_cast<TMCColorRGBA*>(target.numbers));
        }
        return rooms;
    }

    void Store(const fernwick::BakeBand& band) const
    {
        LayOverGrounds(band);
        const size_t before = static_cast<size_t>(band.fTop - fTop) * static_cast<size_t>(band.fWidth);
        for (size_t i = 0; i < fTargets.size(); ++i) {
            const std::span<const TMCColorRGBA> pixels = band.fPictures[i];
            if (fTargets[i].isNumber)
                std::transform(pixels.begin(), pixels.end(), fTargets[i].numbers + before,
                    [](const TMCColorRGBA& pixel) { return pixel.fRed; });
            else
                std::copy(pixels.begin(), pixels.end(),
                    reinterpret_cast<TMCColorRGBA*>(fTargets[i].numbers) + before);
        }
    }

    std::vector<Floats> Take() { return std::move(fArrays); }

private:
    struct Target {
        float* numbers;
        bool isNumber;
    };

    int fTop;
    std::vector<Floats> fArrays;
    std::vector<Target> fTargets;
};

/// The graph with the model in its scene.
fernwick::OntoModel PutOnto(const PyDocument& document, const Model& model, const std::string& node)
{
    SequenceState& state = *document.fState;
    if (const auto* const file = std::get_if<std::string>(&model)) {
        const std::lock_guard lock(state.fMutex);
        state.fModels.BeginFrame();
        return fernwick::PutOnto(document.fGraph, state.fModels, *file, node);
    }
    const auto& geometry = std::get<const PyMesh*>(model)->fGeometry;
    const auto given = state.fMeshes.find(geometry.get());
    const std::filesystem::path name = given != state.fMeshes.end() ? given->second : "mesh";
    fernwick::DocumentFiles files;
    files.Give(name, geometry);
    return fernwick::PutOnto(document.fGraph, files, name, node);
}

std::vector<fernwick::UVTile> TilesOf(const fernwick::OntoModel& onto, int set, int width, int height)
{
    return SurveyUVs(UVMeshesOf(onto, static_cast<size_t>(set)), width, height).fTiles;
}

/// @param number  0 for the only one
fernwick::UVTile FindTile(const std::vector<fernwick::UVTile>& tiles, int number)
{
    std::string numbers;
    for (const fernwick::UVTile& tile : tiles) {
        if (tile.Number() == number || (number == 0 && tiles.size() == 1))
            return tile;
        numbers += (numbers.empty() ? "" : ", ") + std::to_string(tile.Number());
    }
    if (tiles.empty())
        throw fernwick::BakeError("onto: no texel of the picture is covered");
    throw fernwick::BakeError(number == 0
            ? fmt::format("onto: the model is laid out on the tiles {}; choose one", numbers)
            : fmt::format("tile: expected one of {}, got {}", numbers, number));
}

/// Bakes onto a model.
void BakeOnto(const fernwick::Library& library, const fernwick::OntoModel& onto, int set, int tile,
    int margin, BakeJob job, const BakedArrays& arrays)
{
    const auto tiles = TilesOf(onto, set, job.width, job.height);
    const fernwick::ModelTexels texels(
        library, onto, static_cast<size_t>(set), FindTile(tiles, tile), job.width, job.height);
    job.surface = &texels;
    const fernwick::BakeSink store = [&arrays](const fernwick::BakeBand& band) { arrays.Store(band); };
    fernwick::MarginStage stage(texels, job, margin, store);
    Bake(
        library, onto.fDocument, stage.Job(), [&stage](const fernwick::BakeBand& band) { stage.Take(band); });
}

std::vector<Floats> BakeArrays(const PyDocument& document, int width, int height,
    const std::vector<std::string>& channels, int samples, const Region& region, bool isGreenDown,
    const PyDocument* over, const std::optional<Model>& onto, const std::string& node, int set, int tile,
    int margin, int threads, const py::object& progress)
{
    const fernwick::Library& library = LoadedLibrary();
    BakeJob job;
    job.width = width;
    job.height = height;
    job.channels = ChannelsOf(channels);
    job.samples = samples;
    job.region = PictureRegionOf(region);
    job.green = isGreenDown ? fernwick::GreenDirection::kDown : fernwick::GreenDirection::kUp;
    job.ground = over != nullptr ? &over->fGraph : nullptr;
    job.threads = threads;
    BakedArrays arrays(job, RegionOf(job));
    Serve(progress, [&](Control& control) {
        job.cancel = &control.fCancel;
        job.onProgress = [&control](double share) { control.fShare = share; };
        if (onto) {
            BakeOnto(library, PutOnto(document, *onto, node), set, tile, margin, job, arrays);
        } else if (const auto rooms = arrays.Rooms(); !rooms.empty()) {
            BakeInto(library, document.fGraph, job, rooms);
        } else {
            Bake(library, document.fGraph, job,
                [&arrays](const fernwick::BakeBand& band) { arrays.Store(band); });
        }
    });
    return arrays.Take();
}

std::vector<int> Tiles(
    const PyDocument& document, int width, int height, const Model& onto, const std::string& node, int set)
{
    std::vector<int> numbers;
    Serve(py::none(), [&](Control&) {
        for (const fernwick::UVTile& tile : TilesOf(PutOnto(document, onto, node), set, width, height))
            numbers.push_back(tile.Number());
    });
    return numbers;
}

void RequireChannels(const PyDocument& document, const std::vector<std::string>& channels)
{
    Serve(py::none(),
        [&](Control&) { RequireChannels(LoadedLibrary(), document.fGraph, ChannelsOf(channels)); });
}

void RequireGround(const PyDocument& over, const std::vector<std::string>& channels)
{
    std::vector<BakeChannel> grounds;
    for (const BakeChannel channel : ChannelsOf(channels))
        if (HasGround(channel))
            grounds.push_back(GroundOf(channel));
    Serve(py::none(), [&](Control&) { RequireChannels(LoadedLibrary(), over.fGraph, grounds); });
}

void WriteModel(const PyDocument& document, const std::string& path, const Model& onto,
    const std::string& node, int set, const std::vector<std::pair<std::string, std::string>>& pictures)
{
    std::vector<fernwick::MaterialPicture> material;
    for (const auto& [output, file] : pictures)
        material.push_back({output, file});
    Serve(py::none(), [&](Control&) {
        try {
            fernwick::WriteModel(path, PutOnto(document, onto, node), static_cast<size_t>(set), material);
        } catch (const fernwick::GltfError& error) {
            throw fernwick::SceneFileError(error.what());
        }
    });
}

} // namespace

void AddBakes(py::module_& module)
{
    module.attr("widest_margin") = fernwick::kWidestMargin;
    module.attr("longest_side_onto") = fernwick::ModelTexels::kLongestSide;
    module.def("bake", &BakeArrays, py::arg("document"), py::arg("width"), py::arg("height"),
        py::arg("channels"), py::arg("samples"), py::arg("region"), py::arg("green_down"), py::arg("over"),
        py::arg("onto"), py::arg("node"), py::arg("uv_set"), py::arg("tile"), py::arg("margin"),
        py::arg("threads"), py::arg("progress"));
    module.def("tiles", &Tiles, py::arg("document"), py::arg("width"), py::arg("height"), py::arg("onto"),
        py::arg("node"), py::arg("uv_set"));
    module.def("require_channels",
        py::overload_cast<const PyDocument&, const std::vector<std::string>&>(&RequireChannels),
        py::arg("document"), py::arg("channels"));
    module.def("require_ground", &RequireGround, py::arg("over"), py::arg("channels"));
    module.def("write_model", &WriteModel, py::arg("document"), py::arg("path"), py::arg("onto"),
        py::arg("node"), py::arg("uv_set"), py::arg("pictures"));
}
