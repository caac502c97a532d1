#include "host/shading/BakeReading.h"
#include "host/geometry/TangentFrame.h"
#include <algorithm>
#include <array>
#include <bit>
#include <fmt/format.h>
#include <optional>

namespace fernwick {

namespace {

using Operation = BakeReading::Operation;

struct OperationKind {
    OutputKinds kind;
    Operation operation;
    std::string_view name;
};

constexpr OperationKind kOperationKinds[] = {
    {kOutputValue, Operation::kValue, "a value"},
    {kOutputColor, Operation::kColor, "a colour"},
    {kOutputVector, Operation::kVector, "a vector"},
    {kOutputSurface, Operation::kSurface, "a surface"},
};

/// The first of `preferred` that `kinds` has.
Operation FirstOffered(uint32_t kinds, std::initializer_list<OutputKinds> preferred)
{
    for (const OutputKinds kind : preferred)
        for (const OperationKind& row : kOperationKinds)
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
        return (kinds & kOutputVector) != 0 ? Operation::kLit : Operation::kNone;
    }
    return Operation::kNone;
}

Operation RequireOperation(BakeChannel channel, uint32_t kinds)
{
    const Operation operation = OperationFor(channel, kinds);
    if (operation != Operation::kNone)
        return operation;
    std::string offers;
    for (const OperationKind& row : kOperationKinds)
        if ((kinds & static_cast<uint32_t>(row.kind)) != 0)
            offers += (offers.empty() ? "" : " and ") + std::string(row.name);
    throw BakeError(fmt::format("the output shader has no channel \"{}\": it offers {}", NameOf(channel),
        offers.empty() ? "nothing" : offers));
}

constexpr TMCColorRGBA kNothing = {0, 0, 0, 0};

TMCColorRGBA Opaque(const TMCColorRGB& color) { return {color.fRed, color.fGreen, color.fBlue, 1}; }
TMCColorRGBA Grey(float number) { return {number, number, number, 1}; }

/// Number by number, as they were stored: wider reads would wait for the stores of a sample that was just made.
bool SameBits(const TVector3& left, const TVector3& right)
{
    const auto same
        = [&](uint32_t i) { return std::bit_cast<uint32_t>(left[i]) == std::bit_cast<uint32_t>(right[i]); };
    return same(0) && same(1) && same(2);
}

/// The frame of a normal map, kept for as long as samples have the same.
class NormalFrame {
public:
    const std::optional<TangentFrame>& Known() const { return fFrame; } ///< empty until a sample was there

    bool Holds(const TVector3& normal, const TVector3& derivU, const TVector3& derivV) const
    {
        return fFrame && SameBits(normal, fNormal) && SameBits(derivU, fDerivU) && SameBits(derivV, fDerivV);
    }
    void Set(const TVector3& normal, const TVector3& derivU, const TVector3& derivV)
    {
        fNormal = normal;
        fDerivU = derivU;
        fDerivV = derivV;
        fFrame.emplace(normal, derivU, derivV);
    }
    const TangentFrame& At(const TVector3& normal, const TVector3& derivU, const TVector3& derivV)
    {
        if (!Holds(normal, derivU, derivV))
            Set(normal, derivU, derivV);
        return *fFrame;
    }

private:
    TVector3 fNormal;
    TVector3 fDerivU;
    TVector3 fDerivV;
    std::optional<TangentFrame> fFrame;
};

/// Bent normals of one frame until they are turned into it, which takes less time for many at once.
class BentNormals {
public:
    bool IsFull() const { return fCount == kMost; }

    /// @param texel  its place in the row
    void Add(size_t texel, const TVector3& vector)
    {
        fTexels[fCount] = texel;
        fVectors[fCount++] = vector;
    }

    /// Calls `put` with each texel and its unit vector in the frame, and begins anew.
    template <class Put> void Finish(const std::optional<TangentFrame>& frame, const Put& put)
    {
        if (fCount == 0)
            return;
        frame->TurnIntoUnits({fVectors.data(), fCount});
        for (size_t i = 0; i < fCount; ++i)
            put(fTexels[i], fVectors[i]);
        fCount = 0;
    }

private:
    static constexpr size_t kMost = 128; // a row of a tile
    std::array<size_t, kMost> fTexels;
    std::array<TVector3, kMost> fVectors;
    size_t fCount = 0;
};

TMCColorRGBA NormalColor(const TVector3& normal, GreenDirection green)
{
    return {normal[0], green == GreenDirection::kUp ? normal[1] : -normal[1], normal[2], 1};
}

TMCColorRGBA Pick(const ShadingOut& result, BakeChannel channel)
{
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

TMCColorRGBA Pick(const TMCColorRGBA& color, float coverage, BakeChannel channel)
{
    if (channel == BakeChannel::kCoverage)
        return Grey(coverage);
    return channel == BakeChannel::kAlpha ? Grey(color.fAlpha) : color;
}

/// One row of a reading while it is shaded.
class RowShading {
public:
    RowShading(
        const Graph& graph, TexelTile& texels, std::span<const ReadChannel> channels, const TexelRow& row)
        : fGraph(graph), fTexels(texels), fChannels(channels), fRow(row)
    { }

    void Values() const
    {
        fGraph.ForOutput([this](auto& shader) {
            ForTexels([&](ShadingIn& in, size_t i) {
                float value = 0;
                bool fullArea = false;
                const float coverage = shader.ShadeValue(value, fullArea, in);
                Put(i, [&](BakeChannel channel) {
                    return Grey(channel == BakeChannel::kCoverage ? coverage : value);
                });
            });
        });
    }

    void Colors() const
    {
        fGraph.ForOutput([this](auto& shader) {
            ForTexels([&](ShadingIn& in, size_t i) {
                TMCColorRGBA color = TMCColorRGBA::kOpaqueBlack;
                bool fullArea = false;
                const float coverage = shader.ShadeColor(color, fullArea, in);
                Put(i, [&](BakeChannel channel) { return Pick(color, coverage, channel); });
            });
        });
    }

    /// A surface's normal is in the coordinates of the object.
    void Surfaces(GreenDirection green) const
    {
        fGraph.ForOutput([this, green](auto& shader) {
            NormalFrame frame;
            ForTexels([&](ShadingIn& in, size_t i) {
                const TVector3 normal = in.fNormalLocal;
                const PictureAxes axes = fTexels.LocalAxes();
                ShadingOut result;
                if (shader.ShadeSurface(result, in) == 0)
                    result.Clear();
                Put(i, [&](BakeChannel channel) {
                    return channel == BakeChannel::kNormal
                        ? NormalColor(
                            frame.At(normal, axes.fDerivU, axes.fDerivV).UnitOf(result.fShadingNormal), green)
                        : Pick(result, channel);
                });
            });
        });
    }

    void Normals(GreenDirection green) const
    {
        NormalFrame frame;
        BentNormals bent;
        const auto finish = [&] {
            bent.Finish(frame.Known(), [&](size_t i, const TVector3& normal) {
                Put(i, [&](BakeChannel) { return NormalColor(normal, green); });
            });
        };
        I3DExShader& shader = *fGraph.OutputExtension();
        const bool isFlat = fTexels.IsFlat();
        ForTexels([&](ShadingIn& in, size_t i) {
            if (bent.IsFull())
                finish();
            if (!isFlat || !frame.Known()) {
                const auto [derivU, derivV] = fTexels.WorldAxes(in);
                if (!frame.Holds(in.fNormalGlobal, derivU, derivV)) {
                    finish();
                    frame.Set(in.fNormalGlobal, derivU, derivV);
                }
            }
            TVector3 vector = in.fNormalGlobal;
            shader.ShadeVector(vector, in);
            bent.Add(i, vector);
        });
        finish();
    }

    /// The colour, or a grey where there is none, under the lamp. Colour and normal are asked for with a sample each,
    /// since a shader may leave its own UV in it.
    void Lit() const
    {
        constexpr float kNeutral = 0.5f;
        const bool hasColor = (fGraph.OutputKinds() & kOutputColor) != 0;
        NormalFrame frame;
        ForTexels([&](ShadingIn& in, size_t i) {
            TMCColorRGBA color = Grey(kNeutral);
            if (hasColor) {
                ShadingIn own = in;
                color = TMCColorRGBA::kOpaqueBlack;
                bool fullArea = false;
                fGraph.OutputExtension()->ShadeColor(color, fullArea, own);
            }
            const float light = LampLight(BentNormal(frame, in));
            color.SetRGB(color.fRed * light, color.fGreen * light, color.fBlue * light);
            Put(i, [&](BakeChannel) { return color; });
        });
    }

private:
    const Graph& fGraph;
    TexelTile& fTexels;
    std::span<const ReadChannel> fChannels;
    const TexelRow& fRow;

    /// The bent normal in tangent space; flat where the shader leaves it. A shader bends the normal in world
    /// coordinates.
    TVector3 BentNormal(NormalFrame& frame, ShadingIn& in) const
    {
        const auto [derivU, derivV] = fTexels.WorldAxes(in);
        const TangentFrame& axes = frame.At(in.fNormalGlobal, derivU, derivV);
        TVector3 vector = in.fNormalGlobal;
        fGraph.OutputExtension()->ShadeVector(vector, in);
        return axes.UnitOf(vector);
    }

    /// Calls `answer` with each sample and the place of its texel in the row.
    template <class Answer> void ForTexels(const Answer& answer) const
    {
        ShadingIn in; // the host's own spans stay 0: no shader looks at them
        for (int x = fRow.fLeft; x < fRow.fRight; ++x) {
            const auto i = static_cast<size_t>(x - fRow.fLeft);
            if (fTexels.SampleAt(x, fRow.fY, in))
                answer(in, i);
            else
                Put(i, [](BakeChannel) { return kNothing; });
        }
    }

    template <class Color> void Put(size_t i, const Color& colorOf) const
    {
        for (const ReadChannel& channel : fChannels)
            fRow.fPixels[channel.fPicture][i] = colorOf(channel.fChannel);
    }
};

} // namespace

std::vector<BakeChannel> ChannelsOf(uint32_t kinds)
{
    std::vector<BakeChannel> offered;
    for (const NamedBakeChannel& named : BakeChannels())
        try {
            RequireOperation(named.channel, kinds);
            offered.push_back(named.channel);
        } catch (const BakeError&) { }
    return offered;
}

std::vector<BakeReading> BakeReading::Part(std::span<const ReadChannel> channels, uint32_t kinds)
{
    std::vector<BakeReading> readings;
    for (const ReadChannel& channel : channels) {
        const Operation operation = RequireOperation(channel.fChannel, kinds);
        auto reading = std::find_if(readings.begin(), readings.end(),
            [operation](const BakeReading& known) { return known.fOperation == operation; });
        if (reading == readings.end())
            reading = readings.insert(reading, BakeReading(operation));
        reading->fChannels.push_back(channel);
    }
    return readings;
}

void BakeReading::Shade(
    const Graph& graph, TexelTile& texels, GreenDirection green, const TexelRow& row) const
{
    const RowShading shading(graph, texels, fChannels, row);
    switch (fOperation) {
    case Operation::kNone:
        break;
    case Operation::kValue:
        return shading.Values();
    case Operation::kColor:
        return shading.Colors();
    case Operation::kVector:
        return shading.Normals(green);
    case Operation::kSurface:
        return shading.Surfaces(green);
    case Operation::kLit:
        return shading.Lit();
    }
}

} // namespace fernwick
