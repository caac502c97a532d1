#include "tools/pictures/Shots.h"
#include "tools/Frames.h"
#include "tools/Outcome.h"
#include "tools/Tell.h"
#include <fmt/format.h>

std::unique_ptr<fernwick::GraphSequence> OpenGraph(const GraphOptions& options)
{
    fernwick::Json document = fernwick::ReadGraphFile(options.graph);
    Apply(options.settings, document, Tell);
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
