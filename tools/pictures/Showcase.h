#pragma once
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

/// A graph that shows classes at work, and the command line that makes a picture of it.
struct Exhibit {
    std::string fPicture;   ///< file in the gallery; empty for a graph without a picture there
    std::string fArguments; ///< of the command
    std::filesystem::path fGraph;
    std::string fOutput;            ///< class of the output
    std::set<std::string> fClasses; ///< all of them, the host's sources too
};

/// What `docs/gallery/*.list` and `examples/*.json` show, below a folder. A line of a list is the name of a picture
/// and the arguments that make it, the graph among them; one such as `# Weave: cloth.png` tells which picture shows a
/// class best.
class Showcase {
public:
    explicit Showcase(const std::filesystem::path& root);

    /// The graph that shows a class best: that of the picture that a list names for it, else with a picture rather
    /// than without, as the output rather than plugged in, with few classes rather than many. Null when none uses
    /// the class.
    const Exhibit* Find(const std::string& className) const;

private:
    std::vector<Exhibit> fExhibits;
    std::map<std::string, std::string> fBest; // pictures by classes

    void AddLists(const std::filesystem::path& root);
    void AddGraphs(const std::filesystem::path& root);
    void Add(const std::string& picture, const std::string& arguments, const std::filesystem::path& graph);
};
