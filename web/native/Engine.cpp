#include "web/native/Engine.h"
#include "host/documents/GraphSequence.h"
#include "host/documents/Keys.h"
#include "host/documents/ModelScene.h"
#include "host/documents/ShapeScene.h"
#include "host/pictures/EncodeIntegers.h"
#include "host/pictures/Margin.h"
#include "host/shading/Description.h"
#include "host/shading/MarginStage.h"
#include "host/shading/Render.h"
#include "host/shading/ShapeTexels.h"
#include "web/native/LinkedModules.h"
#include "web/native/Places.h"
#include <algorithm>
#include <fmt/format.h>

using fernwick::BakeChannel;
using fernwick::BakeJob;
using fernwick::Json;
using fernwick::PictureRegion;

namespace {

constexpr size_t kDocumentsKept = 8;
constexpr size_t kMostBytes = 4 << 20;   // of a graph's text
constexpr int kLongestSide = 16384;      // of a picture, in pixels
constexpr int64_t kMostPixels = 1 << 24; // of a region: floats of 256 MB
constexpr int kMostSamples = 4096;       // a pixel

constexpr fernwick::ModuleFunctions kPack = {&MCDllInit, &MCDllCleanUp, &MCDllInitExceptionTranslator,
    &MCDllCleanUpExceptionTranslator, &MCDllGetClassObject, &MCDllCanUnloadNow};
constexpr fernwick::ModuleFunctions kUnrouted
    = {&UnroutedInit, &UnroutedCleanUp, &UnroutedInitExceptionTranslator, &UnroutedCleanUpExceptionTranslator,
        &UnroutedGetClassObject, &UnroutedCanUnloadNow};

std::runtime_error Refusal(const std::string& text) { return std::runtime_error(text); }

int SideOf(const Json& request, const char* name)
{
    const auto side = request.at(name).get<int64_t>();
    if (side < 1 || side > kLongestSide)
        throw Refusal(fmt::format("{}: expected 1 to {} pixels, got {}", name, kLongestSide, side));
    return static_cast<int>(side);
}

PictureRegion RegionOf(const Json& request, int width, int height)
{
    PictureRegion region = {0, 0, width, height};
    if (const auto given = request.find("region"); given != request.end()) {
        const auto sides = given->get<std::vector<int64_t>>();
        if (sides.size() != 4 || sides[0] < 0 || sides[1] < 0 || sides[2] > width || sides[3] > height
            || sides[0] >= sides[2] || sides[1] >= sides[3])
            throw Refusal("region: expected a part of the picture");
        region = {static_cast<int>(sides[0]), static_cast<int>(sides[1]), static_cast<int>(sides[2]),
            static_cast<int>(sides[3])};
    }
    if (int64_t{region.Width()} * region.Height() > kMostPixels)
        throw Refusal(fmt::format("region: expected {} pixels at most at a time", kMostPixels));
    return region;
}

int SamplesOf(const Json& request, int usual)
{
    const auto samples = request.value("samples", int64_t{usual});
    if (samples < 1 || samples > kMostSamples)
        throw Refusal(fmt::format("samples: expected 1 to {} a pixel, got {}", kMostSamples, samples));
    return static_cast<int>(samples);
}

BakeChannel ChannelOf(const Json& request)
{
    const std::string name = request.value("channel", "color");
    if (const auto channel = fernwick::FindBakeChannel(name))
        return *channel;
    throw Refusal(fmt::format("channel: there is no output \"{}\"", name));
}

std::string KindOf(const Json& request) { return request.at("surface").at("kind").get<std::string>(); }

EncodedPixels Encoded(std::span<const TMCColorRGBA> pixels, const PictureRegion& region,
    fernwick::PictureContent content, const std::string& format)
{
    EncodedPixels encoded = {region.Width(), region.Height(), {}};
    const auto room = [&](size_t size) {
        encoded.fBytes.resize(pixels.size() * 4 * size);
        return encoded.fBytes.data();
    };
    if (format == "rgba8") {
        EncodeBytes(pixels, content, reinterpret_cast<uint8_t*>(room(sizeof(uint8_t))));
    } else if (format == "rgba16") {
        EncodeUint16s(pixels, content, reinterpret_cast<uint16_t*>(room(sizeof(uint16_t))));
    } else if (format == "float") {
        const auto bytes = std::as_bytes(pixels);
        std::copy(bytes.begin(), bytes.end(), room(sizeof(float)));
    } else {
        throw Refusal(fmt::format("format: there is no \"{}\", only rgba8, rgba16 and float", format));
    }
    return encoded;
}

Json TablesOf(const fernwick::Library& library)
{
    Json classes = Json::array();
    for (const fernwick::ParameterTable& table : fernwick::AllClasses())
        classes.push_back(DescriptionOf(table, &*MakeSpecimen(library, table)));
    Json sources = Json::array();
    for (const fernwick::SourceKind& kind : fernwick::AllSources())
        sources.push_back(DescriptionOf(kind.fTable, nullptr));
    Json scenes = Json::object();
    for (const fernwick::NamedShape& shape : fernwick::kShadeShapes)
        scenes[shape.name] = fernwick::ShapeScene(
            Json::parse(shape.element), shape.name == std::string_view(fernwick::kUVSquareShape), false);
    return {{"classes", classes}, {"sources", sources}, {"scenes", scenes}};
}

} // namespace

/// A graph as it was read, at a frame.
struct Engine::Document {
    std::string fText;
    double fFrame;
    Json fFrames; // of the first and the last key; null without keys
    fernwick::GraphDocument fGraph;
};

/// What was baked onto a mesh last, since other regions of it follow.
struct Engine::Onto {
    std::shared_ptr<const Document> fDocument;
    Json fSurface;
    fernwick::OntoModel fModel;
    std::optional<fernwick::ModelTexels> fTexels;
    int fWidth;
    int fHeight;
};

Engine::Engine() : fLibrary(kPack, kUnrouted), fReports(fLibrary.HostUtilities().Debug()) { }

Json Engine::Tables() const { return TablesOf(fLibrary); }

void Engine::GivePicture(const std::string& name, std::shared_ptr<const fernwick::GivenPicture> picture)
{
    ForgetDocuments();
    fFiles.Give(name, std::move(picture));
}

void Engine::GiveMesh(const std::string& name, std::shared_ptr<const fernwick::Geometry> mesh)
{
    ForgetDocuments();
    fFiles.Give(name, std::move(mesh));
}

void Engine::Forget(const std::string& name)
{
    ForgetDocuments();
    fFiles.Forget(name);
}

/// They may have been read with what isn't given any more.
void Engine::ForgetDocuments()
{
    fOnto.reset();
    fDocuments.clear();
    fFiles.BeginFrame(); // what the frame before asked for goes too
    fFiles.BeginFrame();
}

std::shared_ptr<const Engine::Document> Engine::Read(const std::string& text, double frame)
{
    const auto found = std::find_if(
        fDocuments.begin(), fDocuments.end(), [&](const std::shared_ptr<const Document>& known) {
            return known->fFrame == frame && known->fText == text;
        });
    if (found != fDocuments.end()) {
        std::rotate(fDocuments.begin(), found, found + 1);
        return fDocuments.front();
    }
    if (text.size() > kMostBytes)
        throw Refusal(fmt::format("a graph of more than {} MiB is none for a page", kMostBytes >> 20));
    Json json = fernwick::ParseJson(text);
    const fernwick::Keys keys(json);
    const Json frames = keys.IsEmpty() ? Json() : Json{keys.FirstFrame(), keys.LastFrame()};
    keys.Store(frame);
    fFiles.BeginFrame();
    fDocuments.push_front(std::make_shared<const Document>(
        Document{text, frame, frames, fernwick::GraphDocument::Make(json, "", fFiles)}));
    if (fDocuments.size() > kDocumentsKept)
        fDocuments.pop_back();
    return fDocuments.front();
}

Json Engine::Check(const Json& request)
{
    const auto document = Read(request.at("graph").get<std::string>(), request.value("frame", 1.0));
    const Json graph = Json::parse(document->fText);
    const std::vector<BakeChannel> channels
        = fernwick::ChannelsOf(fernwick::MakeGraph(fLibrary, document->fGraph)->OutputKinds());
    Json reply = {{"doubts", Json::array()}, {"channels", Json::array()}, {"cameras", Json::array()}};
    for (const BakeChannel channel : channels)
        reply["channels"].push_back(NameOf(channel));
    const auto doubt = [&](const std::string& text) {
        const PlacedText placed = FindPlace(text, graph);
        reply["doubts"].push_back({{"pointer", placed.fPointer}, {"message", placed.fMessage}});
    };
    for (const std::string& text : document->fGraph.Doubts())
        doubt(text);
    if (!channels.empty())
        for (const std::string& text : TryOut(document->fGraph, channels.front()))
            doubt(text);
    if (!document->fFrames.is_null())
        reply["frames"] = document->fFrames;
    if (const auto& scene = document->fGraph.Scene()) {
        for (const std::string& text : scene->fNotices)
            doubt(text);
        std::vector<std::string> cameras = CameraNames(*scene);
        if (const auto own = std::find(cameras.begin(), cameras.end(), scene->fCamera); own != cameras.end())
            std::rotate(cameras.begin(), own, own + 1);
        const bool hasShapes = !fernwick::MakeCounted<fernwick::Scene>(*scene, fernwick::Scene::Shaded::kNone)
                                    ->Shapes()
                                    .empty();
        if (hasShapes)
            reply["cameras"] = cameras;
    }
    return reply;
}

/// What shaders report of one sample, such as an element that isn't there.
std::vector<std::string> Engine::TryOut(const fernwick::GraphDocument& document, BakeChannel channel)
{
    fReports.Take();
    BakeJob job;
    job.width = job.height = 1;
    job.channels = {channel};
    fernwick::Bake(fLibrary, document, job);
    return fReports.Take();
}

EncodedPixels Engine::Bake(const Json& request)
{
    const int width = SideOf(request, "width");
    const int height = SideOf(request, "height");
    const PictureRegion region = RegionOf(request, width, height);
    const std::string format = request.value("format", "rgba8");
    const std::string kind = KindOf(request);
    const double frame = request.value("frame", 1.0);
    const auto document = Read(request.at("graph").get<std::string>(), frame);
    if (kind == "render") {
        fernwick::RenderJob job = {.width = width, .height = height, .region = region};
        job.camera = request["surface"].value("camera", "");
        job.samples = SamplesOf(request, 4);
        const auto picture = Render(fLibrary, document->fGraph, job);
        return Encoded(picture->Pixels(), region, picture->Content(), format);
    }
    BakeJob job;
    job.width = width;
    job.height = height;
    job.channels = {ChannelOf(request)};
    job.samples = SamplesOf(request, 1);
    job.region = region;
    const auto over = request.contains("over") ? Read(request["over"].get<std::string>(), frame) : nullptr;
    job.ground = over ? &over->fGraph : nullptr;
    std::vector<TMCColorRGBA> pixels(
        static_cast<size_t>(region.Width()) * static_cast<size_t>(region.Height()));
    TMCColorRGBA* const rooms[] = {pixels.data()};
    if (kind == "square") {
        BakeInto(fLibrary, document->fGraph, job, rooms);
    } else if (kind == "shape") {
        const fernwick::ShapeTexels texels(
            fLibrary, document->fGraph, request["surface"].at("element").get<std::string>(), width, height);
        job.surface = &texels;
        BakeInto(fLibrary, document->fGraph, job, rooms);
    } else if (kind == "mesh") {
        const auto onto = PutOnto(request, job);
        job.surface = &*onto->fTexels;
        BakeInto(fLibrary, onto->fModel.fDocument, job, rooms);
    } else {
        throw Refusal(fmt::format("surface: there is no \"{}\"", kind));
    }
    return Encoded(pixels, region, ContentOf(job.channels[0]), format);
}

std::shared_ptr<const Engine::Onto> Engine::PutOnto(const Json& request, const BakeJob& job)
{
    const auto document = Read(request.at("graph").get<std::string>(), request.value("frame", 1.0));
    const Json& surface = request.at("surface");
    if (fOnto && fOnto->fDocument == document && fOnto->fSurface == surface && fOnto->fWidth == job.width
        && fOnto->fHeight == job.height)
        return fOnto;
    const auto onto = std::make_shared<Onto>(Onto{document, surface,
        fernwick::PutOnto(
            document->fGraph, fFiles, surface.at("mesh").get<std::string>(), surface.value("node", "")),
        std::nullopt, job.width, job.height});
    const auto tiles = SurveyUVs(UVMeshesOf(onto->fModel, 0), job.width, job.height).fTiles;
    if (tiles.empty())
        throw Refusal("mesh: no texel of the picture is covered by its UV");
    onto->fTexels.emplace(fLibrary, onto->fModel, 0, tiles.front(), job.width, job.height);
    return fOnto = onto;
}

EncodedPixels Engine::FillMargin(const Json& request, std::span<TMCColorRGBA> pixels)
{
    constexpr int kBandRows = 128;
    BakeJob job;
    job.width = SideOf(request, "width");
    job.height = SideOf(request, "height");
    job.channels = {ChannelOf(request)};
    job.samples = SamplesOf(request, 1);
    const auto width = static_cast<size_t>(job.width);
    const auto onto = PutOnto(request, job);
    std::vector<TMCColorRGBA> filled;
    const fernwick::BakeSink sink = [&filled](const fernwick::BakeBand& band) {
        filled.insert(filled.end(), band.fPictures[0].begin(), band.fPictures[0].end());
    };
    const int margin = std::clamp(request["surface"].value("margin", 16), 0, fernwick::kWidestMargin);
    fernwick::MarginStage stage(*onto->fTexels, job, margin, sink);
    for (int top = 0; top < job.height; top += kBandRows) {
        const int rows = std::min(kBandRows, job.height - top);
        const auto band = pixels.subspan(static_cast<size_t>(top) * width, static_cast<size_t>(rows) * width);
        stage.Take({top, rows, job.width, {band}, {{}}});
    }
    return Encoded(
        filled, {0, 0, job.width, job.height}, ContentOf(job.channels[0]), request.value("format", "rgba8"));
}

fernwick::MeshDescription Engine::ShapeMesh(const std::string& shape)
{
    constexpr int kSteps = 96; // around
    const fernwick::NamedShape* const named = fernwick::FindShadeShape(shape);
    if (named == nullptr)
        throw Refusal(fmt::format("there is no shape \"{}\"", shape));
    const Json element = Json::parse(named->element);
    const Json scene = {{"elements", Json::array({Json{{"name", "Shape"}, {"shape", element["shape"]}}})}};
    const Json graph
        = {{"shaders", {{"color", {{"source", "color"}}}}}, {"output", "color"}, {"scene", scene}};
    const auto document = fernwick::GraphDocument::Parse(graph.dump(), "");
    const fernwick::Geometry& geometry = *document.Scene()->fElements.front().fGeometry;
    if (const fernwick::MeshDescription* const own = geometry.Mesh())
        return *own;
    fernwick::MeshDescription mesh;
    for (int row = 0; row <= kSteps; ++row)
        for (int column = 0; column <= kSteps; ++column) {
            const auto share = [](int step) { return static_cast<float>(step) / kSteps; };
            const fernwick::SurfacePoint point = geometry.PointAt({0, 0, share(column), share(row)});
            mesh.fPoints.push_back(point.fPoint);
            mesh.fNormals.push_back(point.fNormal);
            mesh.fUVs.push_back(point.fUV);
            if (row == kSteps || column == kSteps)
                continue;
            const auto first = static_cast<unsigned>(row * (kSteps + 1) + column);
            const unsigned above = first + kSteps + 1;
            mesh.fTriangles.push_back({first, first + 1, above + 1});
            mesh.fTriangles.push_back({first, above + 1, above});
        }
    return mesh;
}

Json Engine::ProblemOf(const std::string& text, const Json& request) const
{
    const auto graph = request.is_object() ? request.find("graph") : request.end();
    const Json document = graph != request.end() && graph->is_string()
            && graph->get_ref<const std::string&>().size() <= kMostBytes
        ? Json::parse(graph->get_ref<const std::string&>(), nullptr, false)
        : Json();
    const PlacedText placed = FindPlace(text, document);
    return {{"pointer", placed.fPointer}, {"message", placed.fMessage}};
}
