#include "tools/BakeOptions.h"
#include "tools/Checks.h"
#include "tools/Commands.h"
#include "tools/GroundDocument.h"
#include "tools/Interrupt.h"
#include "tools/LibraryOption.h"
#include "tools/PictureDoubts.h"
#include "tools/SampleReport.h"
#include "tools/ShadeDocument.h"
#include "tools/ShownJob.h"
#include "tools/Tell.h"
#include <charconv>
#include <fmt/format.h>

namespace {

constexpr int kSamples = 9; // a pixel

constexpr const char* kIntroduction =
    R"(Fields that aren't set keep their defaults, and slots that nothing is plugged into stay empty.

--set names a field as graphs do (see `fernwick describe CLASS`). Its value is JSON or plain text: 0.5, [0, 1],
true, KEYM or Mask for a choice, #ff8800 or 1,0.5,0 for a colour.

--on uv bakes the UV square; the other shapes are rendered, with --lit under a lamp, and so are all meshes of a model
as one shape, such as --on vase.obj, which fills the picture. The scene has a light "Lamp" to the upper left, an
element "Target" to the right and a "Camera" in front, which the classes that look for such take unless --set names
another. Curvature and Corners have nothing to find on the flat square.

Sources for --plug:
  checker, ramp, ...  a source of `fernwick list` with its defaults
  ramp:v              a ramp, or a gradient, along V
  color:#ff8800       a colour as the web has it, or short (#f80), encoded as sRGB; #ff880080 has an alpha
  color:1,0.5,0       a colour in linear light; a fourth number is its alpha
  value:0.3           a number
  picture:FILE        a picture; :linear or :sRGB behind the name tells what its numbers are

An array of slots takes one source for all of them, or each its own: fWarpSubShader[0].

--print tells all that the shader answers for one sample of the square, each number in decimal digits that read back the same,
and in hexadecimal. --stats shades the samples of a picture of the given size once with one thread.

)";

constexpr const char* kExamples = R"(

Examples:
  fernwick shade Spoke --set fCount=12 -o wheel.png
  fernwick shade Key --set fMode=KEYA --set 'fRedRange=[-100,0]' --plug fSubShader=ramp -o key.png
  fernwick shade Weave --plug fWarpSubShader=color:#c83c14 --plug fWeftSubShader=ramp -o cloth.png
  fernwick shade Iridescent --on torus -o bands.png
  fernwick shade Weave --lit --on examples/pebble.obj -o pebble.png
  fernwick shade Gray --plug fSubShader=color:#ff8800 --print 0.5,0.5
  fernwick shade Weave --stats --size 256x256)";

struct ShadeOptions {
    ShadeSettings settings;
    std::string sample;
    bool withStatistics = false;
    std::string library;
    BakeOptions bake;
};

/// Reads "0.25,0.75"; nothing for any other text.
std::optional<TVector2> ReadSample(const std::string& text)
{
    TVector2 uv;
    const char* const end = text.data() + text.size();
    const auto [comma, failureU] = std::from_chars(text.data(), end, uv[0]);
    if (failureU != std::errc() || comma == end || *comma != ',')
        return std::nullopt;
    const auto [rest, failureV] = std::from_chars(comma + 1, end, uv[1]);
    return failureV == std::errc() && rest == end ? std::optional(uv) : std::nullopt;
}

std::string CheckSample(const std::string& text)
{
    return ReadSample(text) ? "" : fmt::format("\"{}\" is no sample; a sample is like 0.25,0.75", text);
}

void PrintStatisticsOf(fernwick::Library& library, ReportSummary& reports,
    const fernwick::GraphDocument& document, const fernwick::BakeJob& job)
{
    PrintStatistics(library, document, job.width, job.height, [&] {
        reports.Forget();
        if (*job.cancel)
            throw Interrupted();
    });
}

/// Throws `UsageError` when options don't go together.
void RequireShadeSense(const ShadeOptions& options)
{
    if (options.bake.picture.file.empty() && options.sample.empty() && !options.withStatistics)
        throw UsageError("there is nothing to do; give --picture, --print or --stats");
    RequireSense(options.bake);
    if (options.settings.shape == kUVSquareShape) {
        if (options.bake.picture.layers != std::vector<std::string>{"none"})
            throw UsageError("--layers is for a shape that is rendered; it doesn't go with --on uv");
        return;
    }
    if (!options.sample.empty() || options.withStatistics)
        throw UsageError("--print and --stats shade the UV square; they go with --on uv");
    if (options.bake.channels != std::vector<std::string>{"color"} || options.bake.isDirectX
        || !options.bake.over.empty() || options.bake.samples != 1)
        throw UsageError(
            "--output, --directx, --over and --samples are for the UV square; they go with --on uv. An "
            ".exr of a shape holds the channels of --layers");
}

void RenderToFile(fernwick::Library& library, ReportSummary& reports, const fernwick::GraphDocument& document,
    const ShadeOptions& options)
{
    const PictureOptions& picture = options.bake.picture;
    fernwick::RenderJob job = RenderJobOf(picture, kSamples);
    const fernwick::Picture rendered = RunShown(
        job, reports, options.settings.name, [&] { return fernwick::Render(library, document, job); });
    const PictureDoubts doubts(rendered);
    doubts.TellEmptySlots(document);
    doubts.TellOddNumbers(picture.file, picture.layout);
    rendered.Save(picture.file, picture.layout, picture.threads);
}

void RunShade(ShadeOptions options)
{
    RequireShadeSense(options);
    RequireTarget(options.bake);
    options.settings.isLit = options.bake.isLit;
    const fernwick::BakeJob job = JobOf(options.bake);
    const fernwick::GraphDocument document = MakeShadeDocument(options.settings);
    for (const std::string& notice : document.Scene()->fNotices)
        Tell(notice);
    TellDoubts(document);
    fernwick::Library library(FindLibrary(options.library));
    ReportSummary reports(library.HostUtilities().Debug());
    if (!options.sample.empty()) {
        const TVector2 uv = *ReadSample(options.sample);
        PrintSample(library, document, uv[0], uv[1]);
    }
    if (options.withStatistics)
        PrintStatisticsOf(library, reports, document, job);
    if (options.bake.picture.file.empty())
        return;
    std::optional<fernwick::GraphDocument> ground;
    if (!options.bake.over.empty())
        ground = MakeGround(options.bake.over)->At(fernwick::kFirstFrame);
    if (options.settings.shape != kUVSquareShape)
        RenderToFile(library, reports, document, options);
    else
        BakeToFile(
            library, reports, document, ground ? &*ground : nullptr, options.bake, options.settings.name);
}

} // namespace

void AddShadeCommand(CLI::App& app)
{
    const auto options = std::make_shared<ShadeOptions>();
    CLI::App& command = *app.add_subcommand("shade", "Shades with one shader, without a graph of one's own.");
    command.add_option("class", options->settings.name, "A name out of `fernwick list`")
        ->required()
        ->type_name("CLASS");
    command.add_option("--set", options->settings.sets, "Sets a field; to be given for each")
        ->type_name("FIELD=VALUE")
        ->allow_extra_args(false);
    command.add_option("--plug", options->settings.plugs, "Plugs a source into a slot; to be given for each")
        ->type_name("FIELD=SOURCE")
        ->allow_extra_args(false);
    command
        .add_option("--on", options->settings.shape,
            "What is shaded: " + fmt::format("{}, or a model in a file", fmt::join(ShadeShapes(), ", ")))
        ->type_name("SHAPE")
        ->check(CheckShape)
        ->capture_default_str();
    AddBakeOptions(command, options->bake).required(false);
    AddLayersOption(command, options->bake.picture);
    command.add_option("--print", options->sample, "Prints what the shader answers for one sample")
        ->type_name("U,V")
        ->check(CheckSample);
    command.add_flag(
        "--stats", options->withStatistics, "Prints the time of a sample, and ranges, NaNs and infinities");
    AddLibraryOption(command, options->library);
    command.footer(std::string(kIntroduction) + kChannelHelp + kExamples);
    command.callback([options] { RunShade(*options); });
}
