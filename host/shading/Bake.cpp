#include "host/shading/Bake.h"
#include "host/geometry/TangentFrame.h"
#include "host/shading/SquareTexels.h"
#include <algorithm>
#include <fmt/format.h>

namespace fernwick {

namespace {

/// In pixels. A graph whose making is the dearest, with a Fresnel, takes a quarter of the time of such a tile.
constexpr int kTileSide = 128;

constexpr NamedBakeChannel kChannels[] = {
    {"color", BakeChannel::kColor},
    {"main", BakeChannel::kMain},
    {"alpha", BakeChannel::kAlpha},
    {"second", BakeChannel::kSecond},
    {"third", BakeChannel::kThird},
    {"fourth", BakeChannel::kFourth},
    {"normal", BakeChannel::kNormal},
    {"coverage", BakeChannel::kCoverage},
    {"value", BakeChannel::kValue},
    {"lit", BakeChannel::kLit},
};

std::string_view NameOf(BakeChannel channel)
{
    return std::find_if(std::begin(kChannels), std::end(kChannels), [channel](const NamedBakeChannel& named) {
        return named.channel == channel;
    })->name;
}

/// The operation of the shader that a channel is read from.
enum class Operation { kNone, kValue, kColor, kVector, kSurface };

struct OperationKind {
    OutputKinds kind;
    Operation operation;
    std::string_view name;
};

constexpr OperationKind kOperations[] = {
    {kOutputValue, Operation::kValue, "a value"},
    {kOutputColor, Operation::kColor, "a colour"},
    {kOutputVector, Operation::kVector, "a vector"},
    {kOutputSurface, Operation::kSurface, "a surface"},
};

/// The first of `preferred` that `kinds` has.
Operation FirstOffered(uint32_t kinds, std::initializer_list<OutputKinds> preferred)
{
    for (const OutputKinds kind : preferred)
        for (const OperationKind& row : kOperations)
            if (row.kind == kind && (kinds & static_cast<uint32_t>(kind)) != 0)
                return row.operation;
    return Operation::kNone;
}

Operation OperationFor(BakeChannel channel, uint32_t kinds)
{
    switch (channel) {
    case BakeChannel::kColor:
    case BakeChannel::kCoverage:
        return FirstOffered(kinds, {kOutputColor, kOutputSurface, kOutputValue});
    case BakeChannel::kAlpha:
        return FirstOffered(kinds, {kOutputColor, kOutputSurface});
    case BakeChannel::kMain:
    case BakeChannel::kSecond:
    case BakeChannel::kThird:
    case BakeChannel::kFourth:
        return FirstOffered(kinds, {kOutputSurface});
    case BakeChannel::kNormal:
        return FirstOffered(kinds, {kOutputVector, kOutputSurface});
    case BakeChannel::kValue:
        return FirstOffered(kinds, {kOutputValue});
    case BakeChannel::kLit:
        return FirstOffered(kinds, {kOutputVector});
    }
    return Operation::kNone;
}

PictureContent ContentOf(BakeChannel channel)
{
    switch (channel) {
    case BakeChannel::kColor:
    case BakeChannel::kMain:
    case BakeChannel::kSecond:
    case BakeChannel::kThird:
    case BakeChannel::kFourth:
    case BakeChannel::kLit:
        return PictureContent::kColor;
    case BakeChannel::kNormal:
        return PictureContent::kNormal;
    case BakeChannel::kAlpha:
    case BakeChannel::kCoverage:
    case BakeChannel::kValue:
        break;
    }
    return PictureContent::kValue;
}

TMCColorRGBA Opaque(const TMCColorRGB& color) { return {color.fRed, color.fGreen, color.fBlue, 1}; }
TMCColorRGBA Grey(float number) { return {number, number, number, 1}; }

ShadingOut SurfaceOf(IShellShader& shader, ShadingIn& in)
{
    ShadingOut result;
    if (shader.ShadeSurface(result, in) == 0)
        result.Clear();
    return result;
}

TMCColorRGBA ReadSurface(IShellShader& shader, BakeChannel channel, ShadingIn& in)
{
    const ShadingOut result = SurfaceOf(shader, in);
    switch (channel) {
    case BakeChannel::kSecond:
        return Opaque(result.fSecondColor);
    case BakeChannel::kThird:
        return Opaque(result.fThirdColor);
    case BakeChannel::kFourth:
        return Opaque(result.fFourthColor);
    case BakeChannel::kAlpha:
        return Grey(result.fColor.fAlpha);
    case BakeChannel::kCoverage:
        return Grey(result.fCoverage);
    default:
        return result.fColor;
    }
}

TMCColorRGBA ReadColor(IShellShader& shader, BakeChannel channel, ShadingIn& in)
{
    TMCColorRGBA color = TMCColorRGBA::kOpaqueBlack;
    bool fullArea = false;
    const float coverage = shader.ShadeColor(color, fullArea, in);
    if (channel == BakeChannel::kCoverage)
        return Grey(coverage);
    return channel == BakeChannel::kAlpha ? Grey(color.fAlpha) : color;
}

TMCColorRGBA ReadValue(IShellShader& shader, BakeChannel channel, ShadingIn& in)
{
    float value = 0;
    bool fullArea = false;
    const float coverage = shader.ShadeValue(value, fullArea, in);
    return Grey(channel == BakeChannel::kCoverage ? coverage : value);
}

/// The bent normal in tangent space; flat where the shader leaves it. A shader bends the normal in world
/// coordinates, and a surface's normal is in those of the object.
TVector3 NormalOf(const Graph& graph, Operation operation, const ShadingIn& sample)
{
    ShadingIn in = sample;
    if (operation == Operation::kSurface)
        return TangentFrame(sample.fNormalLocal, {1, 0, 0}, {0, 1, 0})
            .UnitOf(SurfaceOf(graph.Output(), in).fShadingNormal);
    TVector3 vector = sample.fNormalGlobal;
    graph.OutputExtension()->ShadeVector(vector, in);
    return TangentFrame(sample.fNormalGlobal, sample.fDerivU, sample.fDerivV).UnitOf(vector);
}

TMCColorRGBA ReadNormal(
    const Graph& graph, Operation operation, const ShadingIn& sample, GreenDirection green)
{
    const TVector3 normal = NormalOf(graph, operation, sample);
    return {normal[0], green == GreenDirection::kUp ? normal[1] : -normal[1], normal[2], 1};
}

/// The colour, or a grey where there is none, under the lamp. Colour and normal are asked for with a sample each,
/// since a shader may leave its own UV in it.
TMCColorRGBA ReadLit(const Graph& graph, Operation operation, const ShadingIn& sample)
{
    constexpr float kNeutral = 0.5f;
    TMCColorRGBA color = Grey(kNeutral);
    if ((graph.OutputKinds() & kOutputColor) != 0) {
        ShadingIn in = sample;
        color = ReadColor(graph.Output(), BakeChannel::kColor, in);
    }
    const float light = LampLight(NormalOf(graph, operation, sample));
    color.SetRGB(color.fRed * light, color.fGreen * light, color.fBlue * light);
    return color;
}

/// Throws when the output shader doesn't offer what the channel is read from.
Operation RequireOperation(const Graph& graph, BakeChannel channel)
{
    const uint32_t kinds = graph.OutputKinds();
    const Operation operation = OperationFor(channel, kinds);
    if (operation != Operation::kNone)
        return operation;
    std::string offers;
    for (const OperationKind& row : kOperations)
        if ((kinds & static_cast<uint32_t>(row.kind)) != 0)
            offers += (offers.empty() ? "" : " and ") + std::string(row.name);
    throw BakeError(fmt::format("the output shader has no channel \"{}\": it offers {}", NameOf(channel),
        offers.empty() ? "nothing" : offers));
}

TMCColorRGBA Read(const Graph& graph, Operation operation, const BakeJob& job, ShadingIn& in)
{
    if (job.channel == BakeChannel::kNormal)
        return ReadNormal(graph, operation, in, job.green);
    if (job.channel == BakeChannel::kLit)
        return ReadLit(graph, operation, in);
    switch (operation) {
    case Operation::kValue:
        return ReadValue(graph.Output(), job.channel, in);
    case Operation::kColor:
        return ReadColor(graph.Output(), job.channel, in);
    default:
        return ReadSurface(graph.Output(), job.channel, in);
    }
}

void ShadeTile(const Graph& graph, Operation operation, const BakeJob& job, const Tile& tile,
    TexelTile& texels, Picture& picture)
{
    ShadingIn in;
    for (int y = tile.fTop; y < tile.fBottom; ++y)
        for (int x = tile.fLeft; x < tile.fRight; ++x)
            if (texels.SampleAt(x, y, in))
                picture.At(x, y) = Read(graph, operation, job, in);
}

} // namespace

std::span<const NamedBakeChannel> BakeChannels() { return kChannels; }

std::optional<Picture> Bake(const Library& library, const GraphDocument& document, const BakeJob& job)
{
    const SquareTexels square(job.width, job.height);
    const TexelSurface& surface = job.surface != nullptr ? *job.surface : square;
    const Operation operation = RequireOperation(*surface.MakeGraphFor(library, document), job.channel);
    Picture picture(job.width, job.height, ContentOf(job.channel));
    const TileJob tiles = {job.width, job.height, kTileSide, job.threads, job.onProgress, job.cancel};
    if (!ForEachTile(tiles, [&](const Tile& tile) {
            const auto texels = surface.Open(tile);
            if (!texels)
                return;
            const OwnGraph graph = surface.MakeGraphFor(library, document);
            texels->Use(*graph);
            texels->MoveTo({0.5, 0.5});
            ShadeTile(*graph, operation, job, tile, *texels, picture);
        }))
        return std::nullopt;
    return picture;
}

} // namespace fernwick
