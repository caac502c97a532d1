#include "tools/pictures/Showcase.h"
#include "host/documents/GraphDocument.h"
#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

namespace {

/// The files of a folder with a suffix, in the order of their names; none without the folder.
std::vector<std::filesystem::path> FilesOf(const std::filesystem::path& folder, const std::string& suffix)
{
    std::vector<std::filesystem::path> files;
    if (std::filesystem::is_directory(folder))
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (entry.is_regular_file() && entry.path().extension() == suffix)
                files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<std::string> WordsOf(const std::string& line)
{
    std::istringstream stream(line);
    return {std::istream_iterator<std::string>(stream), {}};
}

} // namespace

Showcase::Showcase(const std::filesystem::path& root)
{
    AddLists(root);
    AddGraphs(root);
}

const Exhibit* Showcase::Find(const std::string& className) const
{
    const auto named = fBest.find(className);
    const Exhibit* best = nullptr;
    int bestRank = 0;
    for (const Exhibit& exhibit : fExhibits) {
        if (!exhibit.fClasses.contains(className))
            continue;
        const bool isNamed = named != fBest.end() && named->second == exhibit.fPicture;
        const int rank = 1 + (isNamed ? 4 : 0) + (exhibit.fPicture.empty() ? 0 : 2)
            + (exhibit.fOutput == className ? 1 : 0);
        const bool isSimpler = rank == bestRank && exhibit.fClasses.size() < best->fClasses.size();
        if (rank > bestRank || isSimpler) {
            best = &exhibit;
            bestRank = rank;
        }
    }
    return best;
}

void Showcase::AddLists(const std::filesystem::path& root)
{
    for (const std::filesystem::path& list : FilesOf(root / "docs" / "gallery", ".list")) {
        std::ifstream stream(list);
        for (std::string line; std::getline(stream, line);) {
            const std::vector<std::string> words = WordsOf(line);
            const auto graph = std::find_if(
                words.begin(), words.end(), [](const std::string& word) { return word.ends_with(".json"); });
            if (words.size() == 3 && words[0] == "#" && words[1].ends_with(':'))
                fBest[words[1].substr(0, words[1].size() - 1)] = words[2];
            if (graph == words.end() || words.front().starts_with('#'))
                continue;
            std::string arguments;
            for (auto word = words.begin() + 1; word != words.end(); ++word)
                arguments += *word + ' ';
            Add(words.front(), arguments + "-o " + words.front(), root / *graph);
        }
    }
}

void Showcase::AddGraphs(const std::filesystem::path& root)
{
    for (const std::filesystem::path& graph : FilesOf(root / "examples", ".json")) {
        const std::string name = graph.stem().string();
        Add("", "bake examples/" + name + ".json -o " + name + ".png", graph);
    }
}

void Showcase::Add(
    const std::string& picture, const std::string& arguments, const std::filesystem::path& graph)
try {
    const auto document = fernwick::GraphDocument::Read(graph);
    Exhibit exhibit{picture, arguments, graph, document.Output().fTable->fName, {}};
    for (const fernwick::DocumentShader& shader : document.Shaders())
        exhibit.fClasses.insert(shader.fTable->fName);
    fExhibits.push_back(exhibit);
} catch (const fernwick::GraphError&) {
    // A file that is no graph of shaders shows nothing.
}
