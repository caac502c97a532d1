#include "shaders/optics/Iridescent.h"
#include "host/parameters/Notation.h"
#include "module/ClassIDs.h"

fernwick::ParameterTable IridescentTable()
{
    return {"Iridescent", {kIridescentClassID}, kOutputColor, sizeof(IridescentParams),
        "Seven overlapping bands of colour by the angle between the normal and a reference direction.",
        {
            FIELD(IridescentParams, fObjectName, "Object",
                "Name of the scene element that gives the direction."),
            RECORDS(IridescentParams, fBands, "Band #",
                FIELD(IridescentBand, fColor, "colour", "Colour of the band. The alpha isn't used."),
                FIELD(IridescentBand, fCenter, "centre", "Angle at which the band weighs 1.").Unit("degrees"),
                FIELD(IridescentBand, fWidth, "steepness",
                    "What the band's weight loses per radian away from its centre.")),
            FIELD(IridescentParams, fHoldLastBand, "Hold last band",
                "From its centre on, the last band keeps its full weight."),
            FIELD(
                IridescentParams, fSameWidth, "Same steepness", "All bands use the steepness of the first."),
            FIELD(IridescentParams, fGrey, "Angle as grey",
                "The angle as a grey level, 1 for a half turn, instead of the bands."),
            FIELD(IridescentParams, fInvertGrey, "Invert grey", "1 minus that grey level."),
            FIELD(IridescentParams, fAzimuth, "Azimuth", "Second rotation of the fixed direction, about Z.")
                .Unit("degrees"),
            FIELD(
                IridescentParams, fElevation, "Elevation", "First rotation of the fixed direction, about Y.")
                .Unit("degrees"),
            FIELD(IridescentParams, fMixStyle, "Angle",
                "Moved: the shader adds its value minus 0.5, in radians. A number above 1 repeats the one "
                "before.")
                .Choices({{"SMMX", "As it is"}, {"SHMX", "Moved by the shader"}}),
            FIELD(IridescentParams, fReferenceMode, "Direction",
                "Fixed: the two angles. Object: from the sample to the named object.")
                .Choices({{"RFVT", "Fixed"}, {"OBJT", "Object"}}),
            FIELD(IridescentParams, fSubShader, "Shader", "What moves the angle: a colour or a value."),
        }};
}
