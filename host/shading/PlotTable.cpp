#include "host/shading/Plots.h"

namespace fernwick {

namespace {

constexpr Plot kPlots[] = {
    {PlotSubject::kReflectance, "reflectance",
        "reflectance of six presets by the angle, for both polarisations"},
    {PlotSubject::kWavelengths, "wavelengths", "colours of the wavelengths from 380 to 780 nm"},
    {PlotSubject::kIlluminants, "illuminants", "colours of the illuminants from 3000 to 9300 K"},
};

} // namespace

std::span<const Plot> AllPlots() { return kPlots; }

const Plot* FindPlot(std::string_view name)
{
    for (const Plot& plot : kPlots)
        if (plot.fName == name)
            return &plot;
    return nullptr;
}

} // namespace fernwick
