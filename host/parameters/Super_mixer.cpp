#include "shaders/layers/Super_mixer.h"
#include "host/parameters/Notation.h"

fernwick::ParameterTable Super_mixerTable()
{
    return {"Super_mixer", {"2B82DA60-A115-11D7-A926-545543445200"}, kOutputColor, sizeof(Super_mixerParams),
        "Mixes up to ten layers of colour by a control value and a range for each.",
        {
            FIELD(Super_mixerParams, fMixStyle, "Control",
                "Moved: the shift shader moves the control before the ranges are tested.")
                .Choices({{"SMMX", "As it is"}, {"SHMX", "Moved by the shader"}}),
            FIELD(Super_mixerParams, fCombineMode, "Combination",
                "Ranges: the layers whose range holds the control. Sum: all layers, unweighted. Any other "
                "code: none.")
                .Choices({{"MXMD", "Ranges"}, {"ADMD", "Sum"}}),
            FIELD(Super_mixerParams, fRange, "Range of layer #",
                "Lowest and highest control at which layer # shows; both ends belong to it.")
                .Unit("%"),
            FIELD(Super_mixerParams, fSmooth, "Fade edges",
                "Layers fade at the edges of their ranges. Overlapping layers are then not averaged."),
            FIELD(Super_mixerParams, fLinearEdge, "Straight fade",
                "The fade is a straight ramp; otherwise half a sine."),
            FIELD(Super_mixerParams, fLastIsDefault, "Last is default",
                "The tenth layer shows where no earlier one does."),
            FIELD(Super_mixerParams, fSmoothWidth, "Fade width", "Of the width of each range.").Unit("%"),
            FIELD(Super_mixerParams, fDistribution, "Distribution",
                "Automatic: the connected layers share the whole range evenly, and the ranges are rewritten.")
                .Choices({{"MADI", "By hand"}, {"AUDI", "Automatic"}}),
            FIELD(Super_mixerParams, fShiftAmount, "Shift",
                "How far the shift shader moves the control, per unit away from 0.5.")
                .Unit("%"),
            FIELD(Super_mixerParams, fColorLevel, "Colour level",
                "Luminance of the colour; kept for documents.")
                .Unit("%")
                .Derived(),
            FIELD(Super_mixerParams, fColor, "Colour", "Kept for documents; the shading never reads it."),
            FIELD(Super_mixerParams, fBypass, "Bypass", "The control's colour and nothing else."),
            FIELD(Super_mixerParams, fSubShader, "Slot #", "Control, shift and layers.")
                .Labels({"Control shader", "Shift shader", "Layer 1", "Layer 2", "Layer 3", "Layer 4",
                    "Layer 5", "Layer 6", "Layer 7", "Layer 8", "Layer 9", "Layer 10"}),
        }};
}
