#include "tools/GraphOptions.h"
#include "tools/Frames.h"
#include <CLI/CLI.hpp>
#include <fmt/format.h>

const char* const kFramesHelp =
    R"(--set and --plug name a field by its shader, as in drop.fWaves, or by itself, of the output. Values and sources
are those of `fernwick shade`; --plug takes other shaders of the graph too, and nothing, which empties a slot.

Fields of a graph may hold keys, such as {"keys": [[1, 0.1], [24, 0.5]], "between": "smooth"}. --frames 1-24 makes a
picture of each frame, 1-24x2 of every other one, 1,5,9-12 of those; without it, keys are taken at the frame 1.
In the picture's name #### stands for the number with four digits, {frame} for the number as it is.)";

namespace {

std::string CheckFrames(const std::string& text)
{
    return ReadFrames(text).empty()
        ? fmt::format("\"{}\" names no frames; frames are like 12, 1-24, 1-24x2 or 1,5,9-12", text)
        : "";
}

void AddGraphSettings(CLI::App& command, fernwick::GraphSettings& settings)
{
    command
        .add_option("--set", settings.sets,
            "Sets a field of a shader in the graph, of the output without NAME; to be given for each")
        ->type_name("[NAME.]FIELD=VALUE")
        ->allow_extra_args(false);
    command
        .add_option("--plug", settings.plugs,
            "Plugs a source, or another shader of the graph, into a slot; to be given for each")
        ->type_name("[NAME.]FIELD=SOURCE")
        ->allow_extra_args(false);
}

} // namespace

void AddGraphOptions(CLI::App& command, GraphOptions& options)
{
    command.add_option("graph", options.graph, "The graph of shaders, a JSON file; - is stdin")
        ->required()
        ->type_name("FILE");
    AddGraphSettings(command, options.settings);
    command.add_option("--frames", options.frames, "Makes a picture of each frame, as of 1-24")
        ->type_name("FRAMES")
        ->check(CheckFrames);
}
