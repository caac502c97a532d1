#pragma once
#include "host/parameters/Notation.h"

/// The fields that both range mixers have, in the order of their records.
template <class Params> std::vector<fernwick::Row> MixerRows()
{
    return {
        FIELD(Params, fMixStyle, "Control",
            "Moved: the shift shader moves the control before the ranges are tested.")
            .Choices({{"SMMX", "As it is"}, {"SHMX", "Moved by the shader"}}),
        FIELD(Params, fRange, "Range of layer #",
            "Lowest and highest control at which layer # shows; both ends belong to it.")
            .Unit("%"),
        FIELD(Params, fSmooth, "Fade edges",
            "Layers fade at the edges of their ranges. Overlapping layers are then not averaged."),
        FIELD(Params, fLinearEdge, "Straight fade", "The fade is a straight ramp; otherwise half a sine."),
        FIELD(Params, fLastIsDefault, "Last is default", "The tenth layer shows where no earlier one does."),
        FIELD(Params, fSmoothWidth, "Fade width", "Of the width of each range.").Unit("%"),
        FIELD(Params, fDistribution, "Distribution",
            "Automatic: the connected layers share the whole range evenly, and the ranges are rewritten.")
            .Choices({{"MADI", "By hand"}, {"AUDI", "Automatic"}}),
        FIELD(Params, fShiftAmount, "Shift",
            "How far the shift shader moves the control, per unit away from 0.5.")
            .Unit("%"),
        FIELD(Params, fColorLevel, "Colour level", "Luminance of the colour; kept for documents.")
            .Unit("%")
            .Derived(),
        FIELD(Params, fColor, "Colour", "Kept for documents; the shading never reads it."),
        FIELD(Params, fBypass, "Bypass", "The control's colour and nothing else."),
        FIELD(Params, fSubShader, "Slot #", "Control, shift and layers.")
            .Labels({"Control shader", "Shift shader", "Layer 1", "Layer 2", "Layer 3", "Layer 4", "Layer 5",
                "Layer 6", "Layer 7", "Layer 8", "Layer 9", "Layer 10"}),
    };
}
