#pragma once
#include "frame/IMFPart.h"
#include "frame/Layout.h"
#include "frame/SceneLookup.h"
#include "frame/ShaderOf.h"
#include "frame/SubShader.h"
#include "frame/TMCBool.h"
#include "optics/ColorSystems.h"
#include "optics/FresnelOptics.h"
#include "optics/IlluminantPresets.h"
#include "optics/SpectralColor.h"
#include <limits>
#include <optional>

/// Parameters of Fresnel, as the host writes and saves them. Medium 1 is on the side of the normal.
struct FresnelParams {
    TMCString255 fCameraName{"Rendering Camera"}; ///< the element that stands for the eye
    uint32_t fMixStyle = Code("SMMX"); ///< "SHMX": the sub-shader offsets the angle; any other: as measured
    SubShaderSlot fSubShader;
    float fIndex1Re = 1; ///< refractive index of medium 1
    float fIndex1Im = 0;
    float fIndex2Re = 1.51673f; ///< refractive index of medium 2 at the reference wavelength
    float fIndex2Im = 1e-5f;
    float fPermeability1 = 1; ///< relative magnetic permeability
    float fPermeability2 = 1;
    float fPolarization = 50;          ///< per cent of the light that is s-polarised, the rest p-polarised
    uint32_t fMode = kReflectanceMode; ///< "RSel": reflectance; "TSel": transmittance; any other: black
    float fIndex2ReOffset = 0;         ///< fine adjustments of medium 2
    float fIndex2ImOffset = 0;
    float fPermeability2Offset = 0;
    float fWavelength = 589.3f;             ///< nanometres
    float fDispersion = 0.017f;             ///< strength of the dispersion of medium 2
    float fIndex2ReAtWavelength = 1.51673f; ///< derived: refractive index of medium 2 at `fWavelength`
    float fIndex2ImAtWavelength = 1e-5f;
    int32_t fPreset1 = kNoPreset; ///< row of kOpticalPresets that a medium matches
    int32_t fPreset2 = kNoPreset;
    int32_t fIlluminantPreset = 8; ///< 1 to 14: a row of kIlluminantTemperatures; 15: `fTemperature` is typed
    TMCBool fColored;              ///< in the hue of the wavelength; else grey
    TMCColorRGBA fWavelengthColor = TMCColorRGBA::kOpaqueBlack; ///< derived: encoded for display
    Float3 fWavelengthLinear = {};                              ///< derived: the same before encoding
    TMCColorRGBA fIlluminantColor = TMCColorRGBA::kOpaqueBlack; ///< derived: encoded for display
    float fTemperature = 6500;                                  ///< of the illuminant, kelvin
    /// Derived: chromaticity of the illuminant. The display's own until there is one.
    float fWhiteX = ColorSystems::sRGBSystem.xyYWhite[0];
    float fWhiteY = ColorSystems::sRGBSystem.xyYWhite[1];
};
PIN_LAYOUT(
    offsetof(FresnelParams, fCameraName) == 0 && offsetof(FresnelParams, fMixStyle) == BySize(280, 272));
PIN_LAYOUT(offsetof(FresnelParams, fSubShader) == BySize(288, 276)
    && offsetof(FresnelParams, fIndex1Re) == BySize(296, 280));
PIN_LAYOUT(offsetof(FresnelParams, fIndex1Im) == BySize(300, 284)
    && offsetof(FresnelParams, fIndex2Re) == BySize(304, 288));
PIN_LAYOUT(offsetof(FresnelParams, fIndex2Im) == BySize(308, 292)
    && offsetof(FresnelParams, fPermeability1) == BySize(312, 296));
PIN_LAYOUT(offsetof(FresnelParams, fPermeability2) == BySize(316, 300)
    && offsetof(FresnelParams, fPolarization) == BySize(320, 304));
PIN_LAYOUT(offsetof(FresnelParams, fMode) == BySize(324, 308)
    && offsetof(FresnelParams, fIndex2ReOffset) == BySize(328, 312));
PIN_LAYOUT(offsetof(FresnelParams, fIndex2ImOffset) == BySize(332, 316));
PIN_LAYOUT(offsetof(FresnelParams, fPermeability2Offset) == BySize(336, 320));
PIN_LAYOUT(offsetof(FresnelParams, fWavelength) == BySize(340, 324)
    && offsetof(FresnelParams, fDispersion) == BySize(344, 328));
PIN_LAYOUT(offsetof(FresnelParams, fIndex2ReAtWavelength) == BySize(348, 332));
PIN_LAYOUT(offsetof(FresnelParams, fIndex2ImAtWavelength) == BySize(352, 336));
PIN_LAYOUT(offsetof(FresnelParams, fPreset1) == BySize(356, 340)
    && offsetof(FresnelParams, fPreset2) == BySize(360, 344));
PIN_LAYOUT(offsetof(FresnelParams, fIlluminantPreset) == BySize(364, 348)
    && offsetof(FresnelParams, fColored) == BySize(368, 352));
PIN_LAYOUT(offsetof(FresnelParams, fWavelengthColor) == BySize(372, 356));
PIN_LAYOUT(offsetof(FresnelParams, fWavelengthLinear) == BySize(388, 372));
PIN_LAYOUT(offsetof(FresnelParams, fIlluminantColor) == BySize(400, 384));
PIN_LAYOUT(offsetof(FresnelParams, fTemperature) == BySize(416, 400)
    && offsetof(FresnelParams, fWhiteX) == BySize(420, 404));
PIN_LAYOUT(offsetof(FresnelParams, fWhiteY) == BySize(424, 408) && sizeof(FresnelParams) == BySize(432, 412));

/// How much light a smooth boundary between two media reflects or lets through towards the eye, by the angle
/// between the normal and the way to a named element; grey, or in the hue of one wavelength.
class Fresnel final : public ShaderOf<Fresnel, FresnelParams, TBasicShader> {
public:
    /// The preset of medium 2 and what is derived for display take no part.
    bool SameParams(const FresnelParams& other) const;
    MCErr ReportNeeds(ShadingFlags& flags) override { return Ask(flags, kNeedsUV | kNeedsNormalGlobal); }
    bool QueryBooleanTrait() override { return false; }
    int32_t GetOutputKinds() override { return kOutputColor; }
    MCErr ExtensionDataChanged() override;
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override;

    /// Sliders and presets of the panel.
    /// @param source  an `IMCUnknown`, the part the event comes from; throws `kMCNoComponent` when it is none
    /// @return 0
    int32_t HandleEvent(uint32_t id, void* source, void* extra) override;

private:
    static constexpr float kUnseen = std::numeric_limits<float>::infinity();

    /// The parameters that ExtensionDataChanged last worked from. Fresh, each float is infinitely far from any
    /// that a host writes and 15 is no chosen illuminant, so the first change derives all but the illuminant of
    /// an unknown preset.
    struct Seen {
        float fIndex1Re = kUnseen;
        float fIndex1Im = kUnseen;
        float fIndex2Re = kUnseen;
        float fIndex2Im = kUnseen;
        float fPermeability1 = kUnseen;
        float fPermeability2 = kUnseen;
        float fPolarization = kUnseen;
        uint32_t fMode = 0;
        float fIndex2ReOffset = kUnseen;
        float fIndex2ImOffset = kUnseen;
        float fPermeability2Offset = kUnseen;
        float fWavelength = kUnseen;
        float fDispersion = kUnseen;
        float fIndex2ReAtWavelength = kUnseen;
        float fIndex2ImAtWavelength = kUnseen;
        int32_t fPreset1 = kNoPreset;
        int32_t fPreset2 = kNoPreset;
        int32_t fIlluminantPreset = kCustomIlluminantPreset;
        bool fColored = false;
        float fTemperature = kUnseen;
    };

    /// A number of medium 2, with the fine adjustment that is added to it.
    struct FineAdjustment {
        float FresnelParams::*fValue;
        float FresnelParams::*fOffset;
        float Seen::*fSeenValue;
        float Seen::*fSeenOffset;
        float Fresnel::*fBase; ///< the value without its offset
        uint32_t fSlider;      ///< the panel's part of the offset
        uint32_t fText;        ///< the panel's part of the value
    };
    static const FineAdjustment kFineAdjustments[3];

    ConnectedShader fShader;
    uint32_t fShaderKinds = 0;
    Seen fSeen;
    float fViewAngle = 0; ///< scratch, radians
    TVector3 fToCamera;   ///< scratch
    float fSubValue = 0;
    float fLastSubValue = 0; ///< goes on to the next sample
    TMCColorRGBA fSubColor = {0, 0, 0, 0};
    AngleTables fTables;
    float fIndex2ReBase = 0; ///< these three: what each fine adjustment is added to
    float fIndex2ImBase = 0;
    float fPermeability2Base = 0;
    float fPercentP = 0; ///< kept, read by nothing
    ColorSystem fIlluminantSystem = ColorSystems::sRGBSystem;
    bool fCustomIlluminant = false; ///< the temperature was typed, not chosen
    float fAnchorFactor = 0.9f;
    bool fNeedCameraName = true;
    GamutSearch fSearch;
    Float3 fShadeRGB = {};
    Float3 fShadeLab = {};
    Float3 fIlluminantLab = {};
    Float3 fIlluminantLinear = {};
    std::optional<Illuminant> fIntegrated; ///< what fIlluminantSystem is of, once it is of an illuminant
    float fShadeHue = 0;                   ///< of fShadeRGB

    bool IsUnchanged() const;
    void TakeTypedTemperature();
    void TakeChosenPreset();
    void RefreshWavelengthColor();
    void ApplyFineAdjustments();
    void RefreshOptics();
    void StoreSeen();
    MCErr RefreshSubShader() { return ConnectSubShader(fParams.fSubShader, fShader, fShaderKinds); }

    void RefreshIlluminantSystem(float temperature);
    void SetIlluminant(bool typed);
    float IlluminantTemperature() const;
    void RefreshIlluminantSwatch();

    TVector3 CameraPosition(const ShadingIn& in);
    void FetchCameraName(const MCCountedPtr<IScene>& scene);
    void OffsetAngle(bool& fullArea, ShadingIn& in);
    Float3 InHueOfWavelength(float value) const;

    void TakePreset(uint32_t partID, IMFPart* parent);
};
