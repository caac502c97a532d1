#include "tools/GraphOptions.h"
#include "tools/Frames.h"
#include "tools/Tell.h"
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

std::unique_ptr<fernwick::GraphSequence> OpenGraph(const GraphOptions& options)
{
    fernwick::Json document = fernwick::ReadGraphFile(options.graph);
    Apply(options.settings, document);
    return std::make_unique<fernwick::GraphSequence>(
        std::move(document), std::filesystem::path(options.graph));
}

std::vector<Shot> ShotsOf(const GraphOptions& options, const std::string& picture, bool isTogether)
{
    if (options.frames.empty())
        return {{static_cast<int>(fernwick::kFirstFrame), picture, options.graph, true}};
    const std::vector<int> frames = ReadFrames(options.frames);
    if (frames.size() > 1 && !isTogether && !HasFrameNumber(picture))
        throw UsageError(fmt::format(
            "--picture: {} frames need a number in the name, as in ripple.####.png", frames.size()));
    std::vector<Shot> shots;
    for (const int frame : frames) {
        std::string label = options.graph;
        if (frames.size() > 1)
            label += fmt::format(", frame {} of {}", shots.size() + 1, frames.size());
        shots.push_back({frame, isTogether ? picture : NameOfFrame(picture, frame), label, shots.empty()});
    }
    return shots;
}

void TellAlike(const std::vector<Shot>& shots, bool isAnimated)
{
    if (shots.size() > 1 && !isAnimated)
        Tell(fmt::format("the graph has no keys, so all {} frames are alike", shots.size()));
}

void ForEachShot(const std::vector<Shot>& shots, const std::function<void(const Shot&)>& make)
{
    size_t made = 0;
    try {
        for (; made < shots.size(); ++made)
            make(shots[made]);
    } catch (const Interrupted&) {
        throw Interrupted{made};
    }
}
