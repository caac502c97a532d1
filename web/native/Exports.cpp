#include "host/documents/SoundMesh.h"
#include "web/native/Engine.h"
#include <algorithm>
#include <array>
#include <cstdlib>
#include <emscripten/emscripten.h>
#include <fmt/format.h>

// What JavaScript calls. A call is a text in JSON and gets one back; numbers of pixels and meshes lie in the memory of
// the instance, where the text says. See web/src/engine-core.ts.

using fernwick::Json;

namespace {

std::string gReply;
std::vector<std::byte> gNumbers; // of the reply

Engine& TheEngine()
{
    static Engine engine;
    return engine;
}

/// @param name  of a member of the request that holds an address
/// @param count  of numbers there
template <class Number> std::span<Number> NumbersAt(const Json& request, const char* name, size_t count)
{
    return {reinterpret_cast<Number*>(request.at(name).get<uintptr_t>()), count};
}

size_t PixelsOf(const Json& request)
{
    return request.at("width").get<size_t>() * request.at("height").get<size_t>();
}

template <class Number> void GivePixels(const Json& request)
{
    constexpr int kChannels = 4;
    TheEngine().GivePicture(request.at("name").get<std::string>(),
        std::make_shared<const fernwick::GivenPicture>(request.at("width").get<int>(),
            request.at("height").get<int>(), kChannels,
            std::span<const Number>(NumbersAt<Number>(request, "pixels", kChannels * PixelsOf(request)))));
}

Json GivePicture(const Json& request)
{
    const auto type = request.at("type").get<std::string>();
    if (type == "uint8")
        GivePixels<uint8_t>(request);
    else if (type == "uint16")
        GivePixels<uint16_t>(request);
    else
        GivePixels<float>(request);
    return Json::object();
}

fernwick::MeshDescription MeshOf(const Json& request)
{
    const auto vertices = request.at("vertices").get<size_t>();
    const auto indices
        = NumbersAt<const uint32_t>(request, "indices", request.at("indexCount").get<size_t>());
    const auto points = NumbersAt<const float>(request, "positions", 3 * vertices);
    const bool hasNormals = request.contains("normals");
    const bool hasUVs = request.contains("uvs");
    const auto normals = NumbersAt<const float>(request, hasNormals ? "normals" : "positions", 3 * vertices);
    const auto uvs = NumbersAt<const float>(request, hasUVs ? "uvs" : "positions", 2 * vertices);
    fernwick::SoundMesh sound(1);
    for (size_t i = 0; i < vertices; ++i)
        sound.AddVertex({points[3 * i], points[3 * i + 1], points[3 * i + 2]},
            {normals[3 * i], normals[3 * i + 1], normals[3 * i + 2]},
            std::array{TVector2(uvs[2 * i], uvs[2 * i + 1])});
    for (size_t i = 0; i + 2 < indices.size(); i += 3) {
        if (std::max({indices[i], indices[i + 1], indices[i + 2]}) >= vertices)
            throw std::runtime_error("mesh: a triangle has a corner that is none of the vertices");
        sound.AddTriangle({indices[i], indices[i + 1], indices[i + 2]});
    }
    if (sound.IsEmpty())
        throw std::runtime_error("mesh: it has no triangle");
    fernwick::MeshDescription mesh = sound.Take();
    if (!hasNormals)
        mesh.fNormals.clear();
    if (!hasUVs)
        mesh.fUVs.clear();
    return mesh;
}

Json GiveMesh(const Json& request)
{
    TheEngine().GiveMesh(request.at("name").get<std::string>(), MakeMesh(MeshOf(request)));
    return Json::object();
}

Json ReplyWith(std::vector<std::byte> numbers, Json reply)
{
    gNumbers = std::move(numbers);
    reply["numbers"] = reinterpret_cast<uintptr_t>(gNumbers.data());
    reply["size"] = gNumbers.size();
    return reply;
}

Json ReplyWith(EncodedPixels pixels)
{
    return ReplyWith(std::move(pixels.fBytes), {{"width", pixels.fWidth}, {"height", pixels.fHeight}});
}

/// Points, normals and UV of all vertices, then the corners of the triangles.
Json ReplyWith(const fernwick::MeshDescription& mesh)
{
    std::vector<std::byte> numbers;
    const auto add = [&numbers](const auto& vectors) {
        const auto bytes = std::as_bytes(std::span(vectors));
        numbers.insert(numbers.end(), bytes.begin(), bytes.end());
    };
    add(mesh.fPoints);
    add(mesh.fNormals);
    add(mesh.fUVs);
    add(mesh.fTriangles);
    return ReplyWith(std::move(numbers), {{"vertices", mesh.fPoints.size()}});
}

Json ReplyTo(const Json& request)
{
    const auto call = request.at("call").get<std::string>();
    if (call == "tables")
        return TheEngine().Tables();
    if (call == "check")
        return TheEngine().Check(request);
    if (call == "givePicture")
        return GivePicture(request);
    if (call == "giveMesh")
        return GiveMesh(request);
    if (call == "forget") {
        TheEngine().Forget(request.at("name").get<std::string>());
        return Json::object();
    }
    if (call == "shapeMesh")
        return ReplyWith(TheEngine().ShapeMesh(request.at("shape").get<std::string>()));
    if (call == "bake")
        return ReplyWith(TheEngine().Bake(request));
    if (call == "fillMargin")
        return ReplyWith(
            TheEngine().FillMargin(request, NumbersAt<TMCColorRGBA>(request, "pixels", PixelsOf(request))));
    throw std::runtime_error(fmt::format("there is no call \"{}\"", call));
}

} // namespace

extern "C" {

/// Room for a text or for numbers, in bytes; null when there is no memory.
EMSCRIPTEN_KEEPALIVE void* Allocate(size_t size) { return std::malloc(size); }
EMSCRIPTEN_KEEPALIVE void Free(void* room) { std::free(room); }

/// @return 1 when the reply, which is at `Reply`, tells a problem
EMSCRIPTEN_KEEPALIVE int Call(const char* text, size_t size)
{
    Json request;
    Json problem;
    try {
        request = Json::parse(text, text + size);
        gReply = ReplyTo(request).dump();
        return 0;
    } catch (const std::bad_alloc&) {
        problem = {{"pointer", ""}, {"message", "there isn't enough memory for it"}};
    } catch (const Json::exception& error) {
        problem = {{"pointer", ""}, {"message", std::string("no such request: ") + error.what()}};
    } catch (const std::exception& error) {
        problem = TheEngine().ProblemOf(error.what(), request);
    }
    gReply = problem.dump(-1, ' ', false, Json::error_handler_t::replace);
    return 1;
}

EMSCRIPTEN_KEEPALIVE const char* Reply() { return gReply.data(); }
EMSCRIPTEN_KEEPALIVE size_t ReplySize() { return gReply.size(); }
}
