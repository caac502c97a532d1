#include "host/json/Nearest.h"
#include "tools/Checks.h"
#include "tools/Commands.h"
#include "tools/LibraryOption.h"
#include "tools/PictureCommands.h"
#include <algorithm>
#include <filesystem>
#include <fmt/format.h>

namespace {

constexpr const char* kShadeIntroduction =
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

constexpr const char* kShadeExamples = R"(

Examples:
  fernwick shade Spoke --set fCount=12 -o wheel.png
  fernwick shade Key --set fMode=KEYA --set 'fRedRange=[-100,0]' --plug fSubShader=ramp -o key.png
  fernwick shade Weave --plug fWarpSubShader=color:#c83c14 --plug fWeftSubShader=ramp -o cloth.png
  fernwick shade Iridescent --on torus -o bands.png
  fernwick shade Weave --lit --on examples/pebble.obj -o pebble.png
  fernwick shade Gray --plug fSubShader=color:#ff8800 --print 0.5,0.5
  fernwick shade Weave --stats --size 256x256)";

std::string CheckShape(const std::string& shape)
{
    const std::vector<std::string>& shapes = ShadeShapes();
    std::error_code ignored;
    if (std::find(shapes.begin(), shapes.end(), shape) != shapes.end()
        || std::filesystem::exists(shape, ignored))
        return "";
    return fmt::format("there is no shape or model \"{}\"{}; shapes are {}", shape,
        fernwick::NearestHint(shape, shapes), fmt::join(shapes, ", "));
}

std::string CheckSample(const std::string& text)
{
    return ReadSample(text) ? "" : fmt::format("\"{}\" is no sample; a sample is like 0.25,0.75", text);
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
    command.footer(std::string(kShadeIntroduction) + kChannelHelp + kShadeExamples);
    command.callback([options] { RunShade(*options); });
}
