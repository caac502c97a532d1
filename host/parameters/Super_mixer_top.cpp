#include "shaders/layers/Super_mixer_top.h"
#include "host/parameters/Notation.h"

fernwick::ParameterTable Super_mixer_topTable()
{
    return {"Super_mixer_top", {"490D324B-B207-4B1D-A2AF-E8CAB3C9D106"}, kOutputSurface,
        sizeof(Super_mixer_topParams),
        "Mixes up to ten whole surfaces by a control value and a range for each.",
        {
            FIELD(Super_mixer_topParams, fMixStyle, "Control",
                "Moved: the shift shader moves the control before the ranges are tested.")
                .Choices({{"SMMX", "As it is"}, {"SHMX", "Moved by the shader"}}),
            FIELD(Super_mixer_topParams, fRange, "Range of layer #",
                "Lowest and highest control at which layer # shows; both ends belong to it.")
                .Unit("%"),
            FIELD(Super_mixer_topParams, fSmooth, "Fade edges",
                "Layers fade at the edges of their ranges. Overlapping layers are then not averaged."),
            FIELD(Super_mixer_topParams, fLinearEdge, "Straight fade",
                "The fade is a straight ramp; otherwise half a sine."),
            FIELD(Super_mixer_topParams, fLastIsDefault, "Last is default",
                "The tenth layer shows where no earlier one does."),
            FIELD(Super_mixer_topParams, fSmoothWidth, "Fade width", "Of the width of each range.").Unit("%"),
            FIELD(Super_mixer_topParams, fDistribution, "Distribution",
                "Automatic: the connected layers share the whole range evenly, and the ranges are rewritten.")
                .Choices({{"MADI", "By hand"}, {"AUDI", "Automatic"}}),
            FIELD(Super_mixer_topParams, fShiftAmount, "Shift",
                "How far the shift shader moves the control, per unit away from 0.5.")
                .Unit("%"),
            FIELD(Super_mixer_topParams, fColorLevel, "Colour level",
                "Luminance of the colour; kept for documents.")
                .Unit("%")
                .Derived(),
            FIELD(Super_mixer_topParams, fColor, "Colour", "Kept for documents; the shading never reads it."),
            FIELD(Super_mixer_topParams, fBypass, "Bypass", "The control's colour and nothing else."),
            FIELD(Super_mixer_topParams, fSubShader, "Slot #", "Control, shift and layers.")
                .Labels({"Control shader", "Shift shader", "Layer 1", "Layer 2", "Layer 3", "Layer 4",
                    "Layer 5", "Layer 6", "Layer 7", "Layer 8", "Layer 9", "Layer 10"}),
        }};
}
