#include "tools/pictures/BakeOnto.h"
#include "host/documents/ModelFile.h"
#include "host/files/OutputFile.h"
#include "host/json/Nearest.h"
#include "host/pictures/Margin.h"
#include "host/shading/MarginStage.h"
#include "host/shading/ModelTexels.h"
#include "tools/Outcome.h"
#include "tools/Tell.h"
#include "tools/pictures/ShownJob.h"
#include <algorithm>
#include <filesystem>
#include <fmt/format.h>

namespace {

constexpr std::string_view kUDIMMark = "{udim}";

std::string Replaced(std::string text, std::string_view mark, const std::string& value)
{
    for (size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += value.size())
        text.replace(at, mark.size(), value);
    return text;
}

/// The picture file of a tile: its number where the name has a place for it, or before the ending where there are
/// several.
std::string FileOfTile(const std::string& file, int number, bool isOneOfSeveral)
{
    const std::string text = std::to_string(number);
    if (file.find(kUDIMMark) != std::string::npos || !isOneOfSeveral)
        return Replaced(file, kUDIMMark, text);
    std::filesystem::path path(file);
    const std::string ending = path.extension().string();
    return path.replace_extension("." + text + ending).string();
}

struct ModelName {
    std::string model;
    std::string node;
};

/// The parts of MODEL#NODE; a file that is there may have a # in its name.
ModelName Split(const std::string& onto)
{
    std::error_code ignored;
    const size_t sign = onto.rfind('#');
    if (sign == std::string::npos || std::filesystem::exists(onto, ignored))
        return {onto, ""};
    return {onto.substr(0, sign), onto.substr(sign + 1)};
}

double Percent(size_t part, size_t whole)
{
    return whole > 0 ? 100.0 * static_cast<double>(part) / static_cast<double>(whole) : 0;
}

/// "3 of 12 triangles are"
std::string Some(size_t count, size_t all)
{
    return fmt::format("{} of {} triangles {}", count, all, count == 1 ? "is" : "are");
}

/// Tells how the model lies on its pictures.
void TellCoverage(
    const std::string& model, const fernwick::UVSurvey& survey, const fernwick::ModelCoverage& coverage)
{
    const size_t tiles = survey.fTiles.size();
    std::string text
        = fmt::format("{} covers {:.1f} % of {}", model, Percent(coverage.fCovered, coverage.fTexels),
            tiles > 1 ? fmt::format("{} tiles", tiles) : "the picture");
    if (coverage.fOverlapped > 0)
        text += fmt::format(
            ", {:.1f} % of it more than once", Percent(coverage.fOverlapped, coverage.fCovered));
    if (survey.fMirrored > 0)
        text += fmt::format("; {} mirrored", Some(survey.fMirrored, survey.fTriangles));
    if (survey.fFlat > 0)
        text += fmt::format("; {} without area in UV", Some(survey.fFlat, survey.fTriangles));
    if (survey.fOutside > 0)
        text += fmt::format("; {} partly where no tile is, which go from U 0 to 10 and V 0 to 900",
            Some(survey.fOutside, survey.fTriangles));
    Tell(text);
}

size_t FindShader(const fernwick::GraphDocument& document, const MaterialShader& row, const std::string& name)
{
    std::vector<std::string> names;
    for (const fernwick::DocumentShader& shader : document.Shaders()) {
        if (shader.fName == name)
            return names.size();
        names.push_back(shader.fName);
    }
    throw UsageError(
        fmt::format("{}: there is no shader \"{}\"{}", row.option, name, fernwick::NearestHint(name, names)));
}

/// Bakes all that one command line asks for.
class OntoBaker {
public:
    OntoBaker(fernwick::Library& library, const fernwick::GraphDocument& document,
        fernwick::DocumentFiles& files, const fernwick::GraphDocument* ground, const OntoOptions& onto,
        const BakeOptions& options, const std::string& name, bool isFirst)
        : fLibrary(library), fGround(ground), fOnto(onto), fOptions(options), fName(name), fIsFirst(isFirst),
          fSplit(Split(onto.onto)), fModel(PutOnto(document, files, fSplit.model, fSplit.node)),
          fJob(JobOf(options)), fSet(static_cast<size_t>(onto.uvSet)),
          fSurvey(SurveyUVs(UVMeshesOf(fModel, fSet), fJob.width, fJob.height))
    {
        if (fSurvey.fTiles.empty())
            throw fernwick::BakeError(fmt::format("{}: no texel of the picture is covered", onto.onto));
        if (!onto.gltf.empty() && fSurvey.fTiles.size() > 1)
            throw UsageError(fmt::format("--gltf: a material takes one tile, and \"{}\" lies on {}",
                onto.onto, fSurvey.fTiles.size()));
        for (const MaterialShader& row : kMaterialShaders)
            if (const std::string& shader = onto.*row.shader; !shader.empty())
                WithName(row.option, [&] { RequireValue(row, shader); });
    }

    void Run()
    {
        if (fIsFirst)
            for (const std::string& notice : fModel.fDocument.Scene()->fNotices)
                Tell(notice);
        for (const fernwick::UVTile& tile : fSurvey.fTiles)
            RequireTarget(OptionsOf(tile));
        if (!fOnto.gltf.empty())
            fernwick::RequireWritable(fOnto.gltf);
        for (const fernwick::UVTile& tile : fSurvey.fTiles) {
            const fernwick::ModelCoverage found = BakeTile(fModel, tile, OptionsOf(tile));
            fCoverage.fTexels += found.fTexels;
            fCoverage.fCovered += found.fCovered;
            fCoverage.fOverlapped += found.fOverlapped;
        }
        if (fIsFirst)
            TellCoverage(fOnto.onto, fSurvey, fCoverage);
        if (!fOnto.gltf.empty())
            WriteModel();
    }

private:
    fernwick::Library& fLibrary;
    const fernwick::GraphDocument* fGround;
    const OntoOptions& fOnto;
    const BakeOptions& fOptions;
    const std::string& fName;
    bool fIsFirst;
    ModelName fSplit;
    fernwick::OntoModel fModel;
    fernwick::BakeJob fJob;
    size_t fSet;
    fernwick::UVSurvey fSurvey;
    fernwick::ModelCoverage fCoverage;

    BakeOptions OptionsOf(const fernwick::UVTile& tile) const
    {
        BakeOptions options = fOptions;
        options.picture.file = FileOfTile(options.picture.file, tile.Number(), fSurvey.fTiles.size() > 1);
        return options;
    }

    fernwick::ModelCoverage BakeTile(
        const fernwick::OntoModel& model, const fernwick::UVTile& tile, const BakeOptions& options) const
    {
        const fernwick::ModelTexels texels(fLibrary, model, fSet, tile, fJob.width, fJob.height);
        fernwick::ModelCoverage coverage;
        const fernwick::GraphDocument* const ground = options.over.empty() ? nullptr : fGround;
        BakeToFile(fLibrary, model.fDocument, ground, options, fName, fIsFirst,
            [&](fernwick::BakeJob job, const fernwick::BakeSink& sink) {
                job.surface = &texels;
                fernwick::MarginStage stage(texels, job, fOnto.margin, sink);
                const bool isDone = Bake(fLibrary, model.fDocument, stage.Job(),
                    [&stage](const fernwick::BakeBand& band) { stage.Take(band); });
                coverage = stage.Coverage();
                return isDone;
            });
        return coverage;
    }

    void WriteModel() const
    {
        const BakeOptions options = OptionsOf(fSurvey.fTiles.front());
        std::vector<fernwick::MaterialPicture> pictures;
        for (const fernwick::BakeChannel channel : fJob.channels) {
            const std::string output(NameOf(channel));
            pictures.push_back({output, FileOfOutput(options, output)});
        }
        for (const MaterialShader& row : kMaterialShaders)
            if (const std::string& shader = fOnto.*row.shader; !shader.empty())
                pictures.push_back({row.name, BakeMap(row, shader)});
        fernwick::WriteModel(fOnto.gltf, fModel, fSet, pictures);
    }

    /// Throws when there is no such shader, or it has no value.
    void RequireValue(const MaterialShader& row, const std::string& shader) const
    {
        constexpr fernwick::BakeChannel kValue[] = {fernwick::BakeChannel::kValue};
        const size_t output = FindShader(fModel.fDocument, row, shader);
        RequireChannels(fLibrary, fModel.fDocument.WithOutput(output), kValue);
    }

    /// Bakes the value of one of the graph's shaders, beside the other maps.
    /// @return the picture file
    std::string BakeMap(const MaterialShader& row, const std::string& shader) const
    {
        const size_t output = FindShader(fModel.fDocument, row, shader);
        const fernwick::OntoModel model = {fModel.fDocument.WithOutput(output), fModel.fTargets};
        BakeOptions options = OptionsOf(fSurvey.fTiles.front());
        options.channels = {"value"};
        options.picture.file = FileOfOutput(options, row.name);
        options.picture.layout.bits = 8;
        options.over.clear();
        options.isLit = false;
        options.isDirectX = false;
        BakeTile(model, fSurvey.fTiles.front(), options);
        return options.picture.file;
    }
};

} // namespace

void RequireSense(const OntoOptions& onto, const BakeOptions& options)
{
    if (onto.onto.empty()) {
        const OntoOptions plain;
        if (onto.margin != plain.margin || onto.uvSet != plain.uvSet || !onto.gltf.empty())
            throw UsageError("--margin, --uv-set and --gltf are for a model; name it by --onto");
        if (options.picture.file.find(kUDIMMark) != std::string::npos)
            throw UsageError("{udim} is for the tiles of a model; name it by --onto");
    }
    int width = 0;
    int height = 0;
    ReadSize(options.picture.size, width, height);
    constexpr int kLongestSide = fernwick::ModelTexels::kLongestSide;
    if (!onto.onto.empty() && std::max(width, height) > kLongestSide)
        throw UsageError(fmt::format("--size {}: onto a model a picture has up to {} pixels a side",
            options.picture.size, kLongestSide));
    if (onto.gltf.empty()) {
        if (!onto.roughness.empty() || !onto.occlusion.empty())
            throw UsageError("--gltf-roughness and --gltf-occlusion are for the material of --gltf");
        return;
    }
    if (!options.picture.file.ends_with(".png"))
        throw UsageError("--gltf puts the pictures into the model as PNG; name them .png");
    if (options.isDirectX)
        throw UsageError("the green of a glTF file's normals points up; leave --directx out");
    for (const MaterialShader& row : kMaterialShaders)
        if (!(onto.*row.shader).empty() && !HasOutputMark(options))
            throw UsageError(fmt::format(
                "{} makes a picture too; put {{output}} into the name of the picture", row.option));
}

void BakeOntoModel(fernwick::Library& library, const fernwick::GraphDocument& document,
    fernwick::DocumentFiles& files, const fernwick::GraphDocument* ground, const OntoOptions& onto,
    const BakeOptions& options, const std::string& name, bool isFirst)
{
    WithName(name, [&] {
        return OntoBaker(library, document, files, ground, onto, options, name, isFirst);
    }).Run();
}
