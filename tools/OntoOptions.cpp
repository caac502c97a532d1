#include "tools/OntoOptions.h"
#include "host/pictures/Margin.h"
#include "tools/Checks.h"
#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace {

constexpr int kMostUVSets = 8;

std::string CheckModelFile(const std::string& file)
{
    return file.ends_with(".glb") ? "" : file + ": a model's name ends in .glb";
}

} // namespace

const char* const kOntoHelp = R"(
With --onto the picture shows a model, laid out by its UV: each texel is what a ray would see there, so that positions,
lights and what looks at the camera bake as they are rendered. The model stands in the scene of the graph: in its place
there, where the scene's file is the model or has an element with the name of a node, else where its own file puts it. A
graph without a scene gets a Lamp, a Target and a Camera around it. What isn't covered is transparent beyond the margin.
UV beyond the unit square make a picture for each UDIM tile, named by {udim}, or with the number before the ending.
)";

void AddOntoOptions(CLI::App& command, OntoOptions& options)
{
    command
        .add_option(
            "--onto", options.onto, "Bakes onto a model (glTF, OBJ ...), or one node of it or of the scene")
        ->type_name("MODEL[#NODE]");
    command
        .add_option("--margin", options.margin,
            "Pixels by which what is covered is continued, up to " + std::to_string(fernwick::kWidestMargin))
        ->type_name("N")
        ->check(WholeNumber(0, fernwick::kWidestMargin))
        ->capture_default_str();
    command.add_option("--uv-set", options.uvSet, "The set of UV that lays the model out")
        ->type_name("N")
        ->check(WholeNumber(0, kMostUVSets - 1))
        ->capture_default_str();
    command
        .add_option("--gltf", options.gltf,
            "Writes the model with the pictures in it: color, normal and those of the next two options")
        ->type_name("FILE")
        ->check(CLI::Validator(CheckModelFile, ""));
    for (const MaterialShader& row : kMaterialShaders)
        command
            .add_option(row.option, options.*row.shader,
                fmt::format("A shader of the graph whose value is the {}", row.name))
            ->type_name("SHADER");
}
