#pragma once
#include "host/pictures/Picture.h"
#include <span>
#include <string_view>
#include <vector>

namespace fernwick {

class Library;

// What a Fresnel of the library answers, measured on a live one.

/// How much light goes back at the angles 0, 1/2, 1, ... 90 degrees, each 0 to 1.
struct ReflectanceCurves {
    std::vector<float> fS;    ///< s-polarised
    std::vector<float> fP;    ///< p-polarised
    std::vector<float> fEven; ///< half of each
};
constexpr int kReflectanceStepsPerDegree = 2;

/// @param row  of kOpticalPresets, the medium behind the boundary; in front of it is vacuum
ReflectanceCurves MeasureReflectance(const Library& library, int row);

/// A colour, encoded for display, of a wavelength in nanometres or of a temperature in kelvin.
struct MeasuredColor {
    float fAt;
    TMCColorRGB fColor;
};

/// The wavelengths 380, 381, ... 780 nm.
struct MeasuredWavelengths {
    std::vector<MeasuredColor> fPublished; ///< as the record holds them
    std::vector<MeasuredColor> fShaded;    ///< as coloured output at a reflectance of one half
};
MeasuredWavelengths MeasureWavelengths(const Library& library);

/// The illuminants 1 to 14 as the record publishes them.
std::vector<MeasuredColor> MeasureChosenIlluminants(const Library& library);

/// The illuminants of the typed temperatures 3000, 3050, ... 9300 K as the record publishes them.
std::vector<MeasuredColor> MeasureTypedIlluminants(const Library& library);

/// What a plot shows.
enum class PlotSubject { kReflectance, kWavelengths, kIlluminants };

/// A drawing with labelled axes of what a Fresnel answers.
struct Plot {
    PlotSubject fSubject;
    std::string_view fName;
    std::string_view fPurpose;
};

/// All plots, in the order that they are told of.
std::span<const Plot> AllPlots();

/// The plot of exactly this name; null when there is none.
const Plot* FindPlot(std::string_view name);

Picture Draw(const Plot& plot, const Library& library);

} // namespace fernwick
