#include "frame/Query.h"
#include "frame/TMCException.h"
#include "shaders/optics/Fresnel.h"

namespace {

constexpr uint32_t kPartAdjusted = 3; // events
constexpr uint32_t kPartChosen = 5;

constexpr uint32_t kReal32 = Code("re32"); // types of values
constexpr uint32_t kInt32 = Code("in32");

using PanelPart = MCCountedPtr<IMFPart>;

/// Null when there is no such part, and below no part.
PanelPart FindPart(IMFPart* parent, uint32_t id)
{
    PanelPart part;
    if (parent != nullptr)
        parent->FindChildPart(id, part.Address());
    return part;
}

void Refresh(IMFPart& part) { part.SetPartValue(kPartRefresh, 1); }

void LimitSlider(IMFPart& part)
{
    TMFBooleanAttribute constrain(Code("CstR"), true);
    part.SetAttribute(constrain);
    constexpr struct {
        uint32_t id;
        float value;
    } limits[] = {{Code("SnpV"), 0.0f}, {Code("MinV"), -10000.0f}, {Code("MAxV"), 10000.0f},
        {Code("MnDp"), -0.25f}, {Code("MxDp"), 0.25f}};
    for (const auto& limit : limits) {
        TMFReal32Attribute attribute(limit.id, limit.value);
        part.SetAttribute(attribute);
    }
}

void ShowNumber(IMFPart* parent, uint32_t id, const float& number)
{
    if (const PanelPart textPart = FindPart(parent, id)) {
        textPart->SetValue(&number, kReal32);
        Refresh(*textPart);
    }
}

/// The row that a list of presets shows; kNoPreset without a list and for a row outside the table.
int32_t ChosenRow(IMFPart* presetPart)
{
    int32_t row = kNoPreset;
    if (presetPart != nullptr)
        presetPart->GetValue(&row, kInt32);
    return row >= 0 && row < kNoPreset ? row : kNoPreset;
}

} // namespace

int32_t Fresnel::HandleEvent(uint32_t id, void* source, void*)
{
    PanelPart sourcePart;
    if (source != nullptr)
        Query(*static_cast<IMCUnknown*>(source), IID_IMFPart, sourcePart);
    if (!sourcePart)
        throw TMCException(kMCNoComponent, __FILE__, __LINE__);
    const uint32_t partID = sourcePart->GetPartID();
    const PanelPart parentPart = FindPart(sourcePart.Get(), Code("NTOP"));
    IMFPart* const parent = parentPart.Get();

    if (id == kPartAdjusted && partID == Code("Diss")) {
        LimitSlider(*sourcePart);
    } else if (id == kPartAdjusted && partID == Code("N2rs")) {
        fParams.fIndex2Re = fIndex2ReBase + fParams.fIndex2ReOffset;
        ShowNumber(parent, Code("N2Re"), fParams.fIndex2Re);
    } else if (id == kPartAdjusted && partID == Code("N2is")) {
        fParams.fIndex2Im = fIndex2ImBase + fParams.fIndex2ImOffset;
        ShowNumber(parent, Code("N2Im"), fParams.fIndex2Im);
    } else if (id == kPartAdjusted && partID == Code("N2Ms")) {
        fParams.fPermeability2 = fPermeability2Base + fParams.fPermeability2Offset;
        ShowNumber(parent, Code("N2Mr"), fParams.fPermeability2);
    } else if (id == kPartChosen && partID == Code("PRS1")) {
        TakePreset1(parent);
    } else if (id == kPartChosen && partID == Code("PRS2")) {
        TakePreset2(parent);
    }
    return 0;
}

void Fresnel::TakePreset1(IMFPart* parent)
{
    const PanelPart presetPart = FindPart(parent, Code("PRS1"));
    const int32_t row = ChosenRow(presetPart.Get());
    if (row == kNoPreset)
        return;
    const OpticalMedium& preset = kOpticalPresets[row];
    fSeen.fPreset1 = kNoPreset;
    fParams.fPreset1 = row;
    fParams.fIndex1Re = preset.fIndexRe;
    fParams.fIndex1Im = preset.fIndexIm;
    fParams.fPermeability1 = preset.fPermeability;
    Refresh(*presetPart);
    ExtensionDataChanged();
}

void Fresnel::TakePreset2(IMFPart* parent)
{
    const PanelPart presetPart = FindPart(parent, Code("PRS2"));
    const int32_t row = ChosenRow(presetPart.Get());
    if (row == kNoPreset)
        return;
    const OpticalMedium& preset = kOpticalPresets[row];
    fSeen.fPreset1 = kNoPreset; // kept: here too the one of medium 1
    fParams.fPreset2 = row;
    fParams.fIndex2Re = preset.fIndexRe;
    fParams.fIndex2Im = preset.fIndexIm;
    fParams.fPermeability2 = preset.fPermeability;
    fParams.fDispersion = preset.fDispersion;
    fParams.fIndex2ReOffset = 0;
    fParams.fIndex2ImOffset = 0;
    fParams.fPermeability2Offset = 0;
    Refresh(*presetPart);
    ExtensionDataChanged();
}
