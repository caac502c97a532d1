#include "frame/Query.h"
#include "frame/TMCException.h"
#include "shaders/optics/Fresnel.h"
#include <algorithm>
#include <iterator>
#include <span>

namespace {

constexpr uint32_t kPartAdjusted = 3; // events
constexpr uint32_t kPartChosen = 5;

constexpr uint32_t kReal32 = Code("re32"); // types of values
constexpr uint32_t kInt32 = Code("in32");

/// A number of the record, and the column of the presets that sets it.
struct PresetColumn {
    float FresnelParams::*fNumber;
    float OpticalMedium::*fColumn;
};
constexpr PresetColumn kColumnsOfMedium1[] = {{&FresnelParams::fIndex1Re, &OpticalMedium::fIndexRe},
    {&FresnelParams::fIndex1Im, &OpticalMedium::fIndexIm},
    {&FresnelParams::fPermeability1, &OpticalMedium::fPermeability}};
constexpr PresetColumn kColumnsOfMedium2[] = {{&FresnelParams::fIndex2Re, &OpticalMedium::fIndexRe},
    {&FresnelParams::fIndex2Im, &OpticalMedium::fIndexIm},
    {&FresnelParams::fPermeability2, &OpticalMedium::fPermeability},
    {&FresnelParams::fDispersion, &OpticalMedium::fDispersion}};

/// The panel's list of presets for a medium.
struct PresetList {
    uint32_t fPart;
    int32_t FresnelParams::*fPreset;
    std::span<const PresetColumn> fColumns;
    bool fAdjustable; ///< the medium has fine adjustments, which start anew
};
constexpr PresetList kPresetLists[] = {{Code("PRS1"), &FresnelParams::fPreset1, kColumnsOfMedium1, false},
    {Code("PRS2"), &FresnelParams::fPreset2, kColumnsOfMedium2, true}};

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

    if (id == kPartAdjusted && partID == Code("Diss"))
        LimitSlider(*sourcePart);
    for (const FineAdjustment& fine : kFineAdjustments)
        if (id == kPartAdjusted && partID == fine.fSlider) {
            fParams.*fine.fValue = this->*fine.fBase + fParams.*fine.fOffset;
            ShowNumber(parent, fine.fText, fParams.*fine.fValue);
        }
    if (id == kPartChosen)
        TakePreset(partID, parent);
    return 0;
}

void Fresnel::TakePreset(uint32_t partID, IMFPart* parent)
{
    const auto list = std::ranges::find(kPresetLists, partID, &PresetList::fPart);
    if (list == std::end(kPresetLists))
        return;
    const PanelPart presetPart = FindPart(parent, partID);
    const int32_t row = ChosenRow(presetPart.Get());
    if (row == kNoPreset)
        return;
    fSeen.fPreset1 = kNoPreset; // kept: that of medium 1 for both lists
    fParams.*list->fPreset = row;
    for (const PresetColumn& column : list->fColumns)
        fParams.*column.fNumber = kOpticalPresets[row].*column.fColumn;
    if (list->fAdjustable)
        for (const FineAdjustment& fine : kFineAdjustments)
            fParams.*fine.fOffset = 0;
    Refresh(*presetPart);
    ExtensionDataChanged();
}
