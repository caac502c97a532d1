#include "host/parameters/Notation.h"
#include "host/sources/PictureSource.h"
#include "host/sources/PlainSources.h"
#include "host/sources/SurfaceSource.h"

// What there is to know of the sources without making one, so that who only tells of them needs no decoder of pictures.

namespace fernwick {

namespace {

template <class Source> SourceKind Kind(std::string name, std::string purpose, std::vector<Row> rows)
{
    static const typename Source::Settings defaults;
    ParameterTable table(
        std::move(name), {}, Source::kKinds, sizeof defaults, std::move(purpose), std::move(rows));
    return {std::move(table), &defaults};
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

std::vector<std::string> SourceNames()
{
    std::vector<std::string> names;
    for (const SourceKind& kind : AllSources())
        names.push_back(kind.fTable.fName);
    return names;
}

} // namespace fernwick
