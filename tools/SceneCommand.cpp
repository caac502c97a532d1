#include "tools/Commands.h"
#include "tools/PictureCommands.h"

namespace {

constexpr const char* kSceneFooter =
    R"(FILE is a graph with a scene, a .json, or any model that Assimp reads: glTF, OBJ, FBX, PLY and others. An element is
told with what hangs below it, its shape with triangles, vertices, the range of its UV sets and its materials.
Positions and boxes are in world space.

Examples:
  fernwick scene examples/studio.gltf
  fernwick scene examples/studio.json --json)";

} // namespace

void AddSceneCommand(CLI::App& app)
{
    const auto options = std::make_shared<SceneOptions>();
    CLI::App& command
        = *app.add_subcommand("scene", "Tells what a model, or the scene of a graph, is made of.");
    command.add_option("file", options->file, "A model, or a graph with a scene")
        ->required()
        ->type_name("FILE");
    command.add_flag("--json", options->asJson, "Prints JSON");
    command.footer(kSceneFooter);
    command.callback([options] { RunScene(*options); });
}
