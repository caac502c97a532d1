#include "tools/Commands.h"
#include "tools/LibraryOption.h"
#include "tools/PictureCommands.h"

void AddReferenceCommand(CLI::App& app)
{
    const auto options = std::make_shared<ReferenceOptions>();
    CLI::App& command
        = *app.add_subcommand("reference", "Writes the reference of all classes and sources in Markdown.");
    command.add_option("-o,--folder", options->folder, "Where the pages go")->required()->type_name("FOLDER");
    command
        .add_option("--with", options->root,
            "Adds the pictures, examples and remarks of a folder with docs/ and examples/")
        ->type_name("FOLDER")
        ->check(CLI::Validator(CLI::ExistingDirectory).description(""));
    AddLibraryOption(command, options->library);
    command.footer("Defaults are read from objects that the library has just made. Pictures are links to "
                   "../gallery and ../blender.\n\nExample:\n  fernwick reference --with . -o build/docs/reference");
    command.callback([options] { RunReference(*options); });
}
