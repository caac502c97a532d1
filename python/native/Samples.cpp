#include "host/json/Nearest.h"
#include "host/scene/Placement.h"
#include "host/shading/Answers.h"
#include "host/shading/BakeReading.h"
#include "host/shading/Tiles.h"
#include "host/shading/UVSquare.h"
#include "python/native/Arrays.h"
#include "python/native/Graphs.h"
#include "python/native/LoadedLibrary.h"
#include "python/native/Rooms.h"
#include "python/native/Serve.h"
#include <fmt/format.h>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace {

/// What is given of each sample; null for what isn't.
struct GivenSamples {
    const TVector2* uv;
    const TVector3* point;
    const TVector3* normal;
    const TVector3* pointLocal;
    const TVector3* normalLocal;
    const TVector3* derivU;
    const TVector3* derivV;
};

/// The element that samples lie on; null for a graph without a scene.
fernwick::SceneElement* FindElement(const fernwick::Graph& graph, const std::string& name)
{
    fernwick::Scene* const scene = graph.SceneOrNull();
    if (name.empty())
        return scene != nullptr ? &scene->ShadedObject() : nullptr;
    std::vector<std::string> names;
    if (scene != nullptr)
        for (const auto& element : scene->Elements()) {
            if (element->Name() == name)
                return element.get();
            names.push_back(element->Name());
        }
    throw fernwick::GraphError(fmt::format("element: {}there is no element \"{}\"{}",
        scene == nullptr ? "the graph has no scene, and " : "", name, fernwick::NearestHint(name, names)));
}

/// Fills samples with what is given, with what follows from it, and with what the unit square has.
class SampleFiller {
public:
    SampleFiller(fernwick::SceneElement* element, const GivenSamples& given) : fSquare(element), fGiven(given)
    {
        if (element != nullptr)
            fPlace = element->Transform();
        fBack = fernwick::Inverse(fPlace);
    }

    void Fill(size_t i, ShadingIn& in) const
    {
        const TVector2 uv = UVAt(i);
        fSquare.Fill(uv[0], uv[1], in);
        if (fGiven.point != nullptr || fGiven.pointLocal != nullptr) {
            in.fPointLocal = LocalPoint(i);
            in.fPointGlobal
                = fGiven.point != nullptr ? fGiven.point[i] : fernwick::Placed(fPlace, in.fPointLocal);
        }
        if (fGiven.normal != nullptr || fGiven.normalLocal != nullptr) {
            in.fNormalLocal = fGiven.normalLocal != nullptr ? fGiven.normalLocal[i]
                                                            : fernwick::Turned(fBack, fGiven.normal[i]);
            in.fNormalGlobal
                = fGiven.normal != nullptr ? fGiven.normal[i] : fernwick::Turned(fPlace, in.fNormalLocal);
        }
        if (fGiven.derivU != nullptr)
            in.fDerivU = fGiven.derivU[i];
        if (fGiven.derivV != nullptr)
            in.fDerivV = fGiven.derivV[i];
    }

private:
    fernwick::UVSquare fSquare;
    const GivenSamples& fGiven;
    TTransform3D fPlace; // of the element in the world
    TTransform3D fBack;

    TVector2 UVAt(size_t i) const
    {
        if (fGiven.uv != nullptr)
            return fGiven.uv[i];
        if (fGiven.point == nullptr && fGiven.pointLocal == nullptr)
            return {0.5f, 0.5f};
        const TVector3 point = LocalPoint(i);
        return {point[0], point[1]};
    }

    TVector3 LocalPoint(size_t i) const
    {
        return fGiven.pointLocal != nullptr ? fGiven.pointLocal[i] : fernwick::Placed(fBack, fGiven.point[i]);
    }
};

fernwick::ShadingOperation OperationOf(const PyDocument& document, const std::string& name)
{
    for (const fernwick::ShadingOperation& operation :
        fernwick::ShadingOperationsOf(document.fGraph.OutputKinds()))
        if (operation.fName == name)
            return operation;
    throw fernwick::BakeError(fmt::format("the output shader has no operation \"{}\"", name));
}

/// The rows of an array as vectors; null without one.
template <class Vector>
const Vector* VectorsOf(const std::optional<Floats>& array, py::ssize_t count, const char* name)
{
    constexpr py::ssize_t kSize = sizeof(Vector) / sizeof(float);
    if (!array)
        return nullptr;
    if (array->ndim() != 2 || array->shape(0) != count || array->shape(1) != kSize)
        throw py::value_error(fmt::format("{}: expected the shape ({}, {})", name, count, kSize));
    return reinterpret_cast<const Vector*>(array->data());
}

void Shade(const PyDocument& document, const std::string& name, const std::string& element, py::ssize_t count,
    const std::optional<Floats>& uv, const std::optional<Floats>& point, const std::optional<Floats>& normal,
    const std::optional<Floats>& pointLocal, const std::optional<Floats>& normalLocal,
    const std::optional<Floats>& derivU, const std::optional<Floats>& derivV, Floats& numbers,
    const py::object& progress)
{
    const fernwick::Library& library = LoadedLibrary();
    const fernwick::ShadingOperation operation = OperationOf(document, name);
    const size_t size = operation.fNumbers.size();
    if (numbers.ndim() != 2 || numbers.shape(0) != count
        || numbers.shape(1) != static_cast<py::ssize_t>(size))
        throw py::value_error(fmt::format("numbers: expected the shape ({}, {})", count, size));
    const GivenSamples given = {VectorsOf<TVector2>(uv, count, "uv"),
        VectorsOf<TVector3>(point, count, "point"), VectorsOf<TVector3>(normal, count, "normal"),
        VectorsOf<TVector3>(pointLocal, count, "point_local"),
        VectorsOf<TVector3>(normalLocal, count, "normal_local"),
        VectorsOf<TVector3>(derivU, count, "deriv_u"), VectorsOf<TVector3>(derivV, count, "deriv_v")};
    float* const answers = numbers.mutable_data();
    Serve(progress, [&](Control& control) {
        constexpr size_t kAtATime = 256; // a millisecond or so
        const fernwick::OwnGraph graph = fernwick::MakeGraph(library, document.fGraph);
        const SampleFiller filler(FindElement(*graph, element), given);
        const fernwick::ShaderWrapper::Turn turn(graph->OutputWrapper());
        const auto samples = static_cast<size_t>(count);
        ShadingIn in;
        for (size_t i = 0; i < samples; ++i) {
            if (i % kAtATime == 0) {
                if (control.fCancel)
                    return;
                control.fShare = static_cast<double>(i) / static_cast<double>(samples);
            }
            filler.Fill(i, in);
            operation.fAnswer(*graph, in, answers + i * size);
        }
    });
}

} // namespace

void AddSamples(py::module_& module)
{
    module.def("shade", &Shade, py::arg("document"), py::arg("operation"), py::arg("element"),
        py::arg("count"), py::arg("uv"), py::arg("point"), py::arg("normal"), py::arg("point_local"),
        py::arg("normal_local"), py::arg("deriv_u"), py::arg("deriv_v"), py::arg("numbers").noconvert(),
        py::arg("progress"));
}
