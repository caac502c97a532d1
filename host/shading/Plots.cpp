#include "host/shading/Plots.h"
#include "frame/Query.h"
#include "host/pictures/Chart.h"
#include "host/shading/Graph.h"
#include "shaders/optics/Fresnel.h"
#include <OpenImageIO/color.h>
#include <fmt/format.h>

namespace fernwick {

namespace {

constexpr const char* kProbe = R"({
    "shaders": {"probe": {"class": "Fresnel", "fCameraName": "Eye"}}, "output": "probe",
    "scene": {"elements": [{"name": "Eye", "position": [0, 0, 1]}]}})";

/// A live Fresnel and an eye, with a surface between that turns away.
class FresnelProbe {
public:
    explicit FresnelProbe(const Library& library) : fGraph(library, GraphDocument::Parse(kProbe, ""))
    {
        Query(*fGraph.OutputExtension(), IID_IExDataExchanger, fExchanger);
        fIn.fInstance = fGraph.Instance();
    }

    FresnelParams& Record() { return *static_cast<FresnelParams*>(fExchanger->GetExtensionDataBuffer()); }
    /// To be called after each change of the record.
    void Change() { fExchanger->ExtensionDataChanged(); }
    TMCColorRGBA ColorAt(double degrees)
    {
        const double angle = degrees * kRadiansPerDegree;
        fIn.fNormalGlobal = {static_cast<float>(std::sin(angle)), 0, static_cast<float>(std::cos(angle))};
        bool fullArea = false;
        TMCColorRGBA color;
        fGraph.Output().ShadeColor(color, fullArea, fIn);
        return color;
    }

private:
    Graph fGraph;
    MCCountedPtr<IExDataExchanger> fExchanger;
    ShadingIn fIn;
};

TMCColorRGB WithoutAlpha(const TMCColorRGBA& color) { return {color.fRed, color.fGreen, color.fBlue}; }

TMCColorRGB Encoded(const TMCColorRGBA& linear)
{
    return {OIIO::linear_to_sRGB(linear.fRed), OIIO::linear_to_sRGB(linear.fGreen),
        OIIO::linear_to_sRGB(linear.fBlue)};
}

std::vector<float> MeasureAngles(FresnelProbe& probe, float polarization)
{
    probe.Record().fPolarization = polarization;
    probe.Change();
    std::vector<float> shares;
    for (int step = 0; step <= 90 * kReflectanceStepsPerDegree; ++step)
        shares.push_back(probe.ColorAt(static_cast<double>(step) / kReflectanceStepsPerDegree).fRed);
    return shares;
}

constexpr ChartPen kPenS = {{0, 0.45f, 0.70f}};
constexpr ChartPen kPenP = {{0.84f, 0.37f, 0}, true};
constexpr ChartPen kPenEven = {{0.2f, 0.2f, 0.2f}};

/// A preset by what its numbers are like; the table has no names.
struct NamedPreset {
    int fRow; ///< of kOpticalPresets
    const char* fName;
};

constexpr NamedPreset kPlottedPresets[] = {
    {2, "crown glass"},
    {3, "diamond"},
    {19, "dark stone"},
    {11, "dull metal"},
    {9, "aluminium"},
    {12, "magnetic iron"},
};

std::string NumbersText(int row)
{
    const OpticalMedium& medium = kOpticalPresets[row];
    std::string text = fmt::format("n = {:.4g}", medium.fIndexRe);
    if (medium.fIndexIm > 0.001f)
        text += fmt::format(" + {:.4g} i", medium.fIndexIm);
    if (medium.fPermeability > 2)
        text += fmt::format(", permeability {:g}", medium.fPermeability);
    return text;
}

void DrawCurve(Chart& chart, const ChartFrame& frame, const ChartPen& pen, const std::vector<float>& shares)
{
    std::vector<ChartPoint> points;
    for (const float share : shares)
        points.push_back({static_cast<double>(points.size()) / kReflectanceStepsPerDegree, 100.0 * share});
    chart.Curve(frame, pen, points);
}

Picture DrawReflectance(const Library& library)
{
    Chart chart(1010, 699);
    chart.Heading(24, 14, "Reflectance of six presets against vacuum, at 589.3 nm");
    chart.Legend(24, 44, kPenS, "s-polarised");
    chart.Legend(174, 44, kPenP, "p-polarised");
    chart.Legend(324, 44, kPenEven, "half of each, the default");
    for (int i = 0; i < 6; ++i) {
        const auto& [row, name] = kPlottedPresets[i];
        const ChartFrame frame = {{72 + i % 3 * 326.0, 121 + i / 3 * 302.0, 250, 210},
            {"Angle from the normal (degrees)", 0, 90, 15}, {"Reflectance (%)", 0, 100, 20}};
        chart.Frame(frame, fmt::format("Row {}, like {}", row, name), NumbersText(row));
        const ReflectanceCurves curves = MeasureReflectance(library, row);
        DrawCurve(chart, frame, kPenS, curves.fS);
        DrawCurve(chart, frame, kPenP, curves.fP);
        DrawCurve(chart, frame, kPenEven, curves.fEven);
    }
    return chart.Finish();
}

/// One swatch a colour, which reaches to the middle between it and its neighbours.
std::vector<ChartSwatch> Swatches(std::span<const MeasuredColor> colors, double from, double to)
{
    std::vector<ChartSwatch> swatches;
    for (size_t i = 0; i < colors.size(); ++i) {
        const double left = i == 0 ? from : swatches.back().fTo;
        const double right = i + 1 == colors.size() ? to : (colors[i].fAt + colors[i + 1].fAt) / 2.0;
        swatches.push_back({left, right, colors[i].fColor});
    }
    return swatches;
}

struct Strip {
    std::string fTitle;
    std::vector<MeasuredColor> fColors;
};

/// Two strips over one axis.
Picture DrawStrips(const std::string& heading, const ChartAxis& axis, const Strip& upper, const Strip& lower)
{
    Chart chart(960, 330);
    chart.Heading(24, 14, heading);
    const ChartArea upperArea = {40, 78, 880, 80};
    const ChartArea lowerArea = {40, 196, 880, 80};
    chart.Strip(upperArea, axis, upper.fTitle, Swatches(upper.fColors, axis.fFrom, axis.fTo));
    chart.Strip(lowerArea, axis, lower.fTitle, Swatches(lower.fColors, axis.fFrom, axis.fTo));
    chart.AxisBelow(lowerArea, axis);
    return chart.Finish();
}

Picture DrawWavelengths(const Library& library)
{
    MeasuredWavelengths measured = MeasureWavelengths(library);
    return DrawStrips("Colours of wavelengths under the default illuminant",
        {"Wavelength (nm)", 380, 780, 20},
        {"Published in the record (fWavelengthColor)", std::move(measured.fPublished)},
        {"Coloured output where half is reflected", std::move(measured.fShaded)});
}

Picture DrawIlluminants(const Library& library)
{
    return DrawStrips("Colours of illuminants (fIlluminantColor)", {"Temperature (K)", 3000, 9300, 500},
        {"Chosen, 1 to 14: daylight tilted to the temperature", MeasureChosenIlluminants(library)},
        {"Typed: a ratio of black bodies, without daylight", MeasureTypedIlluminants(library)});
}

} // namespace

ReflectanceCurves MeasureReflectance(const Library& library, int row)
{
    const OpticalMedium& medium = kOpticalPresets[row];
    FresnelProbe probe(library);
    FresnelParams& record = probe.Record();
    record.fIndex2Re = medium.fIndexRe;
    record.fIndex2Im = medium.fIndexIm;
    record.fPermeability2 = medium.fPermeability;
    record.fDispersion = medium.fDispersion;
    return {MeasureAngles(probe, 100), MeasureAngles(probe, 0), MeasureAngles(probe, 50)};
}

MeasuredWavelengths MeasureWavelengths(const Library& library)
{
    FresnelProbe probe(library);
    FresnelParams& record = probe.Record();
    record.fIndex2Re = 5.828427f; // reflects one half at the normal
    record.fDispersion = 0;
    record.fColored = true;
    MeasuredWavelengths measured;
    for (int wavelength = 380; wavelength <= 780; ++wavelength) {
        record.fWavelength = static_cast<float>(wavelength);
        probe.Change();
        measured.fPublished.push_back({record.fWavelength, WithoutAlpha(record.fWavelengthColor)});
        measured.fShaded.push_back({record.fWavelength, Encoded(probe.ColorAt(0))});
    }
    return measured;
}

std::vector<MeasuredColor> MeasureChosenIlluminants(const Library& library)
{
    FresnelProbe probe(library);
    std::vector<MeasuredColor> colors;
    for (int32_t preset = 1; preset <= kLastIlluminantPreset; ++preset) {
        probe.Record().fIlluminantPreset = preset;
        probe.Change();
        colors.push_back(
            {kIlluminantTemperatures[preset - 1], WithoutAlpha(probe.Record().fIlluminantColor)});
    }
    return colors;
}

std::vector<MeasuredColor> MeasureTypedIlluminants(const Library& library)
{
    FresnelProbe probe(library);
    std::vector<MeasuredColor> colors;
    for (int temperature = 3000; temperature <= 9300; temperature += 50) {
        probe.Record().fTemperature = static_cast<float>(temperature); // makes the illuminant a typed one
        probe.Change();
        colors.push_back({probe.Record().fTemperature, WithoutAlpha(probe.Record().fIlluminantColor)});
    }
    return colors;
}

Picture Draw(const Plot& plot, const Library& library)
{
    switch (plot.fSubject) {
    case PlotSubject::kReflectance:
        return DrawReflectance(library);
    case PlotSubject::kWavelengths:
        return DrawWavelengths(library);
    case PlotSubject::kIlluminants:
        break;
    }
    return DrawIlluminants(library);
}

} // namespace fernwick
