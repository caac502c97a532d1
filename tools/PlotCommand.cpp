#include "host/shading/Plots.h"
#include "tools/Checks.h"
#include "tools/Commands.h"
#include "tools/LibraryOption.h"
#include "tools/PictureCommands.h"
#include <fmt/core.h>

void AddPlotCommand(CLI::App& app)
{
    const auto options = std::make_shared<PlotOptions>();
    CLI::App& command = *app.add_subcommand("plot", "Draws what a Fresnel computes, with labelled axes.");
    std::vector<std::string> names;
    std::string footer = "Plots:\n";
    for (const fernwick::Plot& plot : fernwick::AllPlots()) {
        names.emplace_back(plot.fName);
        footer += fmt::format("  {:<12} {}\n", plot.fName, plot.fPurpose);
    }
    command.add_option("plot", options->plot, "What is drawn, see below")
        ->required()
        ->type_name("PLOT")
        ->check(OneOf(names));
    AddPictureOption(command, options->picture);
    AddLibraryOption(command, options->library);
    command.footer(footer + "\nExample:\n  fernwick plot reflectance -o reflectance.png");
    command.callback([options] { RunPlot(*options); });
}
