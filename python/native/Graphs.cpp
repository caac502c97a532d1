#include "python/native/Graphs.h"
#include "host/documents/GraphSettings.h"
#include "host/documents/GroundDocument.h"
#include "host/files/OutputFile.h"
#include "host/shading/Answers.h"
#include "host/shading/BakeReading.h"
#include "python/native/Pictures.h"
#include "python/native/Rooms.h"
#include "python/native/Serve.h"
#include <pybind11/functional.h>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace {

using State = std::shared_ptr<SequenceState>;

State MakeSequence(const std::string& json, const std::string& name, const std::string& folder,
    const std::map<std::string, const PyPicture*>& pictures,
    const std::map<std::string, const PyMesh*>& meshes)
{
    const State state = std::make_shared<SequenceState>(fernwick::ParseJson(json), name, folder);
    for (const auto& [file, picture] : pictures)
        state->fSequence.Files().Give(state->fFolder / file, picture->fPicture);
    for (const auto& [file, mesh] : meshes) {
        const std::filesystem::path path = state->fFolder / file;
        state->fSequence.Files().Give(path, mesh->fGeometry);
        state->fMeshes[mesh->fGeometry.get()] = path;
    }
    return state;
}

PyDocument At(const State& state, double frame)
{
    std::optional<fernwick::GraphDocument> document;
    std::vector<std::filesystem::path> files;
    Serve(py::none(), [&](Control&) {
        const std::lock_guard lock(state->fMutex);
        document = state->fSequence.At(frame);
        files = state->fSequence.Files().Asked();
    });
    return {std::move(*document), std::move(files), state};
}

std::vector<std::string> OutputsOf(const PyDocument& document)
{
    std::vector<std::string> outputs;
    for (const fernwick::BakeChannel channel : fernwick::ChannelsOf(document.fGraph.OutputKinds()))
        outputs.emplace_back(NameOf(channel));
    return outputs;
}

std::vector<std::string> OperationsOf(const PyDocument& document)
{
    std::vector<std::string> operations;
    for (const fernwick::ShadingOperation& operation :
        fernwick::ShadingOperationsOf(document.fGraph.OutputKinds()))
        operations.emplace_back(operation.fName);
    return operations;
}

void WriteText(const std::string& path, const std::string& text)
{
    fernwick::MakeFolderOf(path);
    fernwick::WriteFile(path, text);
}

std::string ApplySettings(const std::string& json, const std::vector<std::string>& sets,
    const std::vector<std::string>& plugs, const fernwick::TellSlip& tell)
{
    fernwick::Json document = fernwick::ParseJson(json);
    fernwick::Apply({.sets = sets, .plugs = plugs}, document, tell);
    return document.dump();
}

std::pair<std::string, std::string> ReadGround(const std::string& over)
{
    fernwick::Ground ground = fernwick::ReadGround(over);
    if (ground.fFile.empty())
        MakeGround(ground); // throws for a picture that can't be read
    return {ground.fDocument.dump(), ground.fFile.string()};
}

} // namespace

void AddGraphs(py::module_& module)
{
    fernwick::ShowSceneFiles([](const std::filesystem::path&) { return [](double) { ThrowIfCancelled(); }; });
    py::class_<PyDocument>(module, "Document")
        .def_property_readonly("outputs", &OutputsOf)
        .def_property_readonly("operations", &OperationsOf)
        .def_property_readonly("files",
            [](const PyDocument& document) {
                return std::vector<std::string>(document.fFiles.begin(), document.fFiles.end());
            })
        .def_property_readonly("doubts", [](const PyDocument& document) { return document.fGraph.Doubts(); })
        .def_property_readonly("notices",
            [](const PyDocument& document) {
                const auto& scene = document.fGraph.Scene();
                return scene ? scene->fNotices : std::vector<std::string>();
            })
        .def_property_readonly("cameras", [](const PyDocument& document) {
            const auto& scene = document.fGraph.Scene();
            return scene ? CameraNames(*scene) : std::vector<std::string>();
        });
    py::class_<SequenceState, State>(module, "Sequence")
        .def(py::init(&MakeSequence), py::arg("json"), py::arg("name"), py::arg("folder"),
            py::arg("pictures"), py::arg("meshes"))
        .def_property_readonly("has_keys", [](const State& state) { return state->fSequence.HasKeys(); })
        .def("at", &At, py::arg("frame"));
    module.def("write_file", &WriteText, py::arg("path"), py::arg("text"));
    module.def(
        "read_json", [](const std::string& path) { return fernwick::ReadGraphFile(path).dump(); },
        py::arg("path"));
    module.def("apply_settings", &ApplySettings, py::arg("json"), py::arg("sets"), py::arg("plugs"),
        py::arg("tell"));
    module.def("read_ground", &ReadGround, py::arg("over"));
}
