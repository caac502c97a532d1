#pragma once
#include "host/documents/GraphSequence.h"
#include "tools/GraphOptions.h"
#include <functional>

/// The graph with what the command line sets in it. Throws `fernwick::GraphError` and
/// `fernwick::SettingError`.
std::unique_ptr<fernwick::GraphSequence> OpenGraph(const GraphOptions& options);

/// A graph at one frame.
struct Shot {
    int frame;
    std::string file;  ///< of the picture
    std::string label; ///< what users call the graph at this frame
    bool isFirst;      ///< of its frames: what all of them share is told with it
};

/// The frames that are asked for. Throws `UsageError` for several of one name.
/// @param picture     the name of the picture, with a place for the number
/// @param isTogether  whether all frames go into one picture of this name
std::vector<Shot> ShotsOf(const GraphOptions& options, const std::string& picture, bool isTogether = false);

/// Tells when there are several frames of what doesn't change.
void TellAlike(const std::vector<Shot>& shots, bool isAnimated);

/// Makes each picture. Throws `Interrupted` with how many are made; those stay.
void ForEachShot(const std::vector<Shot>& shots, const std::function<void(const Shot&)>& make);
