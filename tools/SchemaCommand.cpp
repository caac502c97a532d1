#include "host/documents/GraphSchema.h"
#include "host/files/OutputFile.h"
#include "tools/Commands.h"
#include <fmt/core.h>

namespace {

void RunSchema(const std::string& file)
{
    const std::string text = fernwick::GraphSchema().dump(2) + '\n';
    if (file.empty()) {
        fmt::print("{}", text);
        return;
    }
    fernwick::WriteFile(file, text);
}

} // namespace

void AddSchemaCommand(CLI::App& app)
{
    const auto file = std::make_shared<std::string>();
    CLI::App& command = *app.add_subcommand(
        "schema", "Prints the JSON Schema of graphs, by which editors complete and check.");
    command.add_option("-o,--file", *file, "Writes the schema to a file instead")->type_name("FILE");
    command.footer("A graph names its schema for editors with the key \"$schema\", as in\n"
                   "{\"$schema\": \"graph.schema.json\", \"shaders\": ...}.\n\n"
                   "Examples:\n"
                   "  fernwick schema -o graph.schema.json");
    command.callback([file] { RunSchema(*file); });
}
