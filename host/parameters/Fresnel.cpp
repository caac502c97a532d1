#include "shaders/optics/Fresnel.h"
#include "host/parameters/Notation.h"
#include "module/ClassIDs.h"

namespace {

// The ends of the tables of the spectrum, nm.
constexpr double kFirstWavelength = 380;
constexpr double kLastWavelength = 825;

// What the shader sets as the ends of the panel's slider of the dispersion.
constexpr double kDispersionLimit = 10000;

constexpr const char* kFineAdjustment = "Added to the value that was last set, on an object that lives, as "
                                        "in a panel. In a graph it always counts as 0.";

} // namespace

template <> inline constexpr fernwick::FieldType fernwick::kFieldTypeOf<Float3> = FieldType::kVector3;

fernwick::ParameterTable FresnelTable()
{
    return {"Fresnel", {kFresnelClassID, kFresnelSecondClassID}, kOutputColor, sizeof(FresnelParams),
        "How much light a smooth boundary reflects or lets through towards the eye.",
        {
            FIELD(FresnelParams, fCameraName, "Eye",
                "Name of the scene element that stands for the eye; \"Rendering Camera\" follows the camera "
                "that renders."),
            FIELD(FresnelParams, fMixStyle, "Angle",
                "Moved: the shader adds its value minus 0.5, in radians. A number above 1 repeats the one "
                "before.")
                .Choices({{"SMMX", "As it is"}, {"SHMX", "Moved by the shader"}}),
            FIELD(FresnelParams, fSubShader, "Shader", "What moves the angle: a colour or a value."),
            FIELD(FresnelParams, fIndex1Re, "Index 1, real",
                "Refractive index of medium 1, on the side of the normal."),
            FIELD(FresnelParams, fIndex1Im, "Index 1, imaginary", "Absorption of medium 1."),
            FIELD(FresnelParams, fIndex2Re, "Index 2, real", "Refractive index of medium 2 at 589.3 nm."),
            FIELD(FresnelParams, fIndex2Im, "Index 2, imaginary", "Absorption of medium 2 at 589.3 nm."),
            FIELD(FresnelParams, fPermeability1, "Permeability 1",
                "Relative magnetic permeability of medium 1."),
            FIELD(FresnelParams, fPermeability2, "Permeability 2",
                "Relative magnetic permeability of medium 2."),
            FIELD(FresnelParams, fPolarization, "Polarisation", "Share of the light that is s-polarised.")
                .Unit("%")
                .Range(0, 100)
                .Loose(),
            FIELD(FresnelParams, fMode, "Output",
                "A change of the output alone keeps the old tables: change another parameter with it.")
                .Choices({{"RSel", "Reflectance"}, {"TSel", "Transmittance"}}),
            FIELD(FresnelParams, fIndex2ReOffset, "Adjust index 2, real", kFineAdjustment),
            FIELD(FresnelParams, fIndex2ImOffset, "Adjust index 2, imaginary", kFineAdjustment),
            FIELD(FresnelParams, fPermeability2Offset, "Adjust permeability 2", kFineAdjustment),
            FIELD(FresnelParams, fWavelength, "Wavelength", "Of the light.")
                .Unit("nm")
                .Range(kFirstWavelength, kLastWavelength)
                .Loose(),
            FIELD(FresnelParams, fDispersion, "Dispersion", "Strength of the dispersion of medium 2.")
                .Range(-kDispersionLimit, kDispersionLimit)
                .Loose(),
            FIELD(FresnelParams, fIndex2ReAtWavelength, "Index 2 at the wavelength, real", "Dispersed.")
                .Derived(),
            FIELD(FresnelParams, fIndex2ImAtWavelength, "Index 2 at the wavelength, imaginary", "Dispersed.")
                .Derived(),
            FIELD(FresnelParams, fPreset1, "Preset of medium 1",
                "The row of presets that medium 1 matches; 31 for none.")
                .Derived(),
            FIELD(FresnelParams, fPreset2, "Preset of medium 2",
                "The row of presets that medium 2 matches; 31 for none.")
                .Derived(),
            FIELD(FresnelParams, fIlluminantPreset, "Illuminant",
                "The light that the wavelength is part of: daylight of a temperature, or what is typed.")
                .Choices({{1, "3000 K"}, {2, "3500 K"}, {3, "4000 K"}, {4, "4500 K"}, {5, "5000 K"},
                    {6, "5500 K"}, {7, "6000 K"}, {8, "6500 K"}, {9, "7000 K"}, {10, "7500 K"},
                    {11, "8000 K"}, {12, "8500 K"}, {13, "9000 K"}, {14, "9300 K"}, {15, "Typed"}}),
            FIELD(FresnelParams, fColored, "Coloured", "In the hue of the wavelength instead of grey."),
            FIELD(FresnelParams, fWavelengthColor, "Colour of the wavelength", "For display.").Derived(),
            FIELD(FresnelParams, fWavelengthLinear, "Linear colour of the wavelength", "Before encoding.")
                .Derived(),
            FIELD(FresnelParams, fIlluminantColor, "Colour of the illuminant", "For display.").Derived(),
            FIELD(FresnelParams, fTemperature, "Temperature",
                "Of the illuminant 15. In a graph it counts only together with that; every other illuminant "
                "writes its own temperature here. Changed in a panel, it makes the illuminant 15.")
                .Unit("K")
                .OnlyWith("fIlluminantPreset", 15),
            FIELD(FresnelParams, fWhiteX, "White x", "Chromaticity of the illuminant.").Derived(),
            FIELD(FresnelParams, fWhiteY, "White y", "Chromaticity of the illuminant.").Derived(),
        }};
}
