#include "tools/BakeOptions.h"
#include "host/shading/BakeChannels.h"
#include "tools/Checks.h"
#include <CLI/CLI.hpp>

const char* const kChannelHelp =
    R"(Channels:
  color     the colour; of a surface shader its main colour, of a value shader its value as grey
  main      the main colour of a surface, where a shader offers a colour of its own beside it
  second, third, fourth
            the other colours of a surface
  alpha     the alpha of the colour, as grey
  coverage  the coverage that the shader answers, as grey
  value     the value, as grey; PNG holds 0 to 1 in 16 bits, not encoded
  normal    the bent normal of a vector shader or surface, as a normal map: red along U, green along V (or
            down, with --directx), blue away from the surface, in unit length; PNG holds -1 to 1 as 0 to 65535
  lit       the colour, or a grey where the shader has none, with the bent normal of a vector shader under a
            lamp: it shines from the upper left, from (-1, 1, 1); what is flat keeps its colour)";

std::vector<std::string> ChannelNames()
{
    std::vector<std::string> names;
    for (const fernwick::NamedBakeChannel& channel : fernwick::BakeChannels())
        names.emplace_back(channel.name);
    return names;
}

CLI::Option& AddBakeOptions(CLI::App& command, BakeOptions& options)
{
    CLI::Option& picture = AddPictureOptions(command, options.picture);
    command
        .add_option("--output,--outputs", options.channels,
            "What of the output shader is baked, see below; several by commas, into pictures named by "
            "{output}")
        ->type_name("CHANNEL")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(OneOf(ChannelNames()))
        ->default_str("color");
    command.add_flag("--lit", options.isLit, "Short for --output lit");
    command.add_flag("--directx", options.isDirectX, "Green of a normal map points down (DirectX), not up");
    command
        .add_option("--over", options.over,
            "Lays the colour, by its alpha, over a source, such as color:#f80, or another graph")
        ->type_name("SOURCE");
    command
        .add_option("--samples", options.samples, "Samples a pixel, for smooth edges; one is at the centre")
        ->type_name("N")
        ->check(WholeNumber(1, kMostSamples))
        ->capture_default_str();
    return picture;
}
