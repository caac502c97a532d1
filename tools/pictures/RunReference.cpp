#include "host/files/OutputFile.h"
#include "host/library/Library.h"
#include "host/parameters/Kinds.h"
#include "host/shading/MakeShader.h"
#include "tools/LibraryOption.h"
#include "tools/PictureCommands.h"
#include "tools/ReportSummary.h"
#include "tools/pictures/ReferencePage.h"
#include <fstream>
#include <iterator>

namespace {

constexpr const char* kIndex = "index.md";

/// The text of a file, empty when there is none.
std::string TextOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// @param root  empty for nothing but the tables
std::string PageOf(const fernwick::ParameterTable& table, const fernwick::Library& library,
    const Showcase& showcase, const std::filesystem::path& root)
{
    ReferenceFacts facts;
    if (!root.empty()) {
        facts.fQuirks = TextOf(root / "docs" / "quirks" / (table.fName + ".md"));
        facts.fScenes = TextOf(root / "docs" / "blender" / "scenes" / "README.md");
    }
    facts.fExhibit = showcase.Find(table.fName);
    if (facts.fExhibit != nullptr)
        facts.fExample = TextOf(facts.fExhibit->fGraph);
    const auto shader = fernwick::MakeShader(library, table);
    if (!shader)
        throw fernwick::LibraryError(library.Path().string() + ": doesn't make the class " + table.fName);
    ShadingFlags flags;
    shader->GetShadingFlags(flags);
    facts.fNeeds = fernwick::Joined(fernwick::NeedNames(flags));
    facts.fRecord = shader->Exchanger().GetExtensionDataBuffer();
    return ReferencePage(table, facts);
}

} // namespace

void RunReference(const ReferenceOptions& options)
{
    const std::filesystem::path folder = options.folder;
    fernwick::RequireWritable(folder / kIndex);
    fernwick::Library library(FindLibrary(options.library));
    const ReportSummary reports(library.HostUtilities().Debug());
    const Showcase showcase(options.root);
    fernwick::MakeFolderOf(folder / kIndex);
    for (const fernwick::ParameterTable& table : fernwick::AllClasses())
        fernwick::WriteFile(folder / (table.fName + ".md"), PageOf(table, library, showcase, options.root));
    fernwick::WriteFile(folder / "sources.md", SourcesPage());
    fernwick::WriteFile(folder / kIndex, ReferenceIndex());
}
