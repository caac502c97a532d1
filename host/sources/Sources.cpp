#include "host/sources/Sources.h"
#include "host/parameters/Notation.h"
#include "host/sources/PictureSource.h"
#include "host/sources/SurfaceSource.h"
#include <algorithm>

namespace fernwick {

namespace {

struct ColorSettings {
    TMCColorRGBA fColor = {1, 1, 1, 1};
};

/// The same colour everywhere.
class PlainColor final : public ColorSource {
public:
    using Settings = ColorSettings;

    explicit PlainColor(const Settings& settings) : fSettings(settings) { }
    TMCColorRGBA ColorAt(const TVector2&) const override { return fSettings.fColor; }

private:
    Settings fSettings;
};

struct ValueSettings {
    float fValue = 0.5f;
};

/// The same number everywhere.
class PlainValue final : public ValueSource {
public:
    using Settings = ValueSettings;

    explicit PlainValue(const Settings& settings) : fSettings(settings) { }
    float ValueAt(const TVector2&) const override { return fSettings.fValue; }

private:
    Settings fSettings;
};

struct CheckerSettings {
    TMCColorRGBA fEven = {0, 0, 0, 1};
    TMCColorRGBA fOdd = {1, 1, 1, 1};
    int32_t fCountU = 8;
    int32_t fCountV = 8;
};

class Checker final : public ColorSource {
public:
    using Settings = CheckerSettings;

    explicit Checker(const Settings& settings) : fSettings(settings) { }
    TMCColorRGBA ColorAt(const TVector2& uv) const override
    {
        const double number = Number(uv[0], fSettings.fCountU) + Number(uv[1], fSettings.fCountV);
        return std::fmod(number, 2.0) == 0 ? fSettings.fEven : fSettings.fOdd;
    }

private:
    Settings fSettings;

    static double Number(float coordinate, int32_t count)
    {
        return std::floor(static_cast<double>(coordinate) * count);
    }
};

enum Direction : int32_t { kAlongU = 0, kAlongV = 1 };

struct RampSettings {
    int32_t fAlong = kAlongU;
    float fFrom = 0;
    float fTo = 1;
};

/// A number that grows evenly across the UV square, and goes on growing outside it.
class Ramp final : public ValueSource {
public:
    using Settings = RampSettings;
    static constexpr int32_t kKinds = kOutputValue | kOutputColor;

    explicit Ramp(const Settings& settings) : fSettings(settings) { }
    uint32_t GetOutputKinds() override { return kKinds; }
    float ValueAt(const TVector2& uv) const override
    {
        const float share = uv[static_cast<uint32_t>(fSettings.fAlong)];
        return fSettings.fFrom + (fSettings.fTo - fSettings.fFrom) * share;
    }

private:
    Settings fSettings;
};

struct GradientSettings {
    int32_t fAlong = kAlongU;
    std::vector<TMCColorRGBA> fColors = {{0, 0, 0, 1}, {1, 1, 1, 1}};
};

/// Colours at even distances across the UV square, mixed between neighbours; the outermost go on outside it.
class Gradient final : public ColorSource {
public:
    using Settings = GradientSettings;

    explicit Gradient(const Settings& settings) : fSettings(settings)
    {
        if (settings.fColors.size() < 2)
            throw SourceError("colors: expected two colours or more");
    }
    TMCColorRGBA ColorAt(const TVector2& uv) const override
    {
        const size_t spans = fSettings.fColors.size() - 1;
        const float share = std::clamp(uv[static_cast<uint32_t>(fSettings.fAlong)], 0.0f, 1.0f);
        const float position = share * static_cast<float>(spans);
        const size_t span = std::min(static_cast<size_t>(position), spans - 1);
        TMCColorRGBA left = fSettings.fColors[span];
        TMCColorRGBA right = fSettings.fColors[span + 1];
        left *= static_cast<float>(span + 1) - position;
        right *= position - static_cast<float>(span);
        return left += right;
    }

private:
    Settings fSettings;
};

template <class Source> MCCountedPtr<IShellShader> Make(std::span<const FieldSetting> settings)
{
    typename Source::Settings record;
    for (const FieldSetting& setting : settings)
        WriteField(setting, &record);
    return MCCountedPtr<IShellShader>(MakeCounted<Source>(record).Get());
}

template <class Source> SourceKind Kind(std::string name, std::string purpose, std::vector<Row> rows)
{
    static const typename Source::Settings defaults;
    ParameterTable table(
        std::move(name), {}, Source::kKinds, sizeof defaults, std::move(purpose), std::move(rows));
    return {std::move(table), &defaults, &Make<Source>};
}

Row Along(Row row) { return row.Named("along").Choices({{kAlongU, "u"}, {kAlongV, "v"}}); }

std::vector<SourceKind> MakeKinds()
{
    return {
        Kind<PlainColor>(
            "color", "One colour.", {FIELD(ColorSettings, fColor, "Colour", "The colour.").Named("color")}),
        Kind<PlainValue>(
            "value", "One number.", {FIELD(ValueSettings, fValue, "Value", "The number.").Named("value")}),
        Kind<PictureSource>("picture",
            "A picture over the UV square, V up, repeated; linear light, straight alpha.",
            {
                FIELD(PictureSettings, fFile, "File", "The picture, in any format that OpenImageIO reads.")
                    .Named("file"),
                FIELD(PictureSettings, fEncoding, "Encoding",
                    "What the file's numbers are. Automatic: linear in files of floats or where the file "
                    "says so, else "
                    "sRGB.")
                    .Named("encoding")
                    .Choices({{kEncodedAsUsual, "auto"}, {kEncodedSRGB, "sRGB"}, {kEncodedLinear, "linear"}}),
                FIELD(PictureSettings, fAlpha, "Alpha",
                    "Whether the file's colours are multiplied by its alpha. Automatic: as the file says; "
                    "else they "
                    "are in EXR, TIFF and WebP.")
                    .Named("alpha")
                    .Choices({{kAlphaAsUsual, "auto"}, {kAlphaStraight, "straight"},
                        {kAlphaPremultiplied, "premultiplied"}}),
            }),
        Kind<Checker>("checker", "Two colours in turn, as on a chessboard.",
            {
                FIELD(CheckerSettings, fEven, "Even", "Colour of the first tile, at U and V 0.")
                    .Named("even"),
                FIELD(CheckerSettings, fOdd, "Odd", "Colour of its neighbours.").Named("odd"),
                FIELD(CheckerSettings, fCountU, "Tiles along U", "Tiles per unit of U.")
                    .Named("countU")
                    .AtLeast(1),
                FIELD(CheckerSettings, fCountV, "Tiles along V", "Tiles per unit of V.")
                    .Named("countV")
                    .AtLeast(1),
            }),
        Kind<Ramp>("ramp", "A number that grows along U or V, as a value or as a grey.",
            {
                Along(FIELD(RampSettings, fAlong, "Along", "The coordinate that the ramp follows.")),
                FIELD(RampSettings, fFrom, "From", "The number at 0.").Named("from"),
                FIELD(RampSettings, fTo, "To", "The number at 1.").Named("to"),
            }),
        Kind<Gradient>("gradient", "Colours at even distances along U or V, mixed between neighbours.",
            {
                Along(FIELD(GradientSettings, fAlong, "Along", "The coordinate that the gradient follows.")),
                FIELD(GradientSettings, fColors, "Colours", "Two colours or more, from 0 to 1.")
                    .Named("colors"),
            }),
        Kind<SurfaceSource>("surface", "One surface: the four colours of a material.",
            {
                FIELD(SurfaceSettings, fColor, "Colour", "The main colour.").Named("color"),
                FIELD(SurfaceSettings, fSecondColor, "Second colour", "The second colour.").Named("second"),
                FIELD(SurfaceSettings, fThirdColor, "Third colour", "The third colour.").Named("third"),
                FIELD(SurfaceSettings, fFourthColor, "Fourth colour", "The fourth colour.").Named("fourth"),
            }),
    };
}

} // namespace

std::span<const SourceKind> AllSources()
{
    static const std::vector<SourceKind> kinds = MakeKinds();
    return kinds;
}

const SourceKind* FindSource(std::string_view name)
{
    for (const SourceKind& kind : AllSources())
        if (kind.fTable.fName == name)
            return &kind;
    return nullptr;
}

} // namespace fernwick
