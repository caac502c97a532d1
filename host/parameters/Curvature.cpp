#include "shaders/scene/Curvature.h"
#include "host/parameters/Notation.h"

fernwick::ParameterTable CurvatureTable()
{
    return {"Curvature", {}, kOutputColor, sizeof(CurvatureParams),
        "The Gaussian curvature of a named surface: red on domes and in bowls, blue in saddles, green where "
        "nothing is hit.",
        {
            FIELD(
                CurvatureParams, fObjectName, "Object", "An element that is looked up; nothing comes of it."),
            FIELD(CurvatureParams, fSurfaceName, "Surface", "Name of the element whose surface is measured."),
            RECORDS(CurvatureParams, fBands, "Band #",
                FIELD(CurvatureBand, fColor, "colour", "Colour of the band. The alpha isn't used."),
                FIELD(CurvatureBand, fCenter, "centre", "Angle at which the band weighs 1.").Unit("degrees"),
                FIELD(CurvatureBand, fWidth, "steepness",
                    "What the band's weight loses per radian away from its centre.")),
            FIELD(CurvatureParams, fClampTop, "Hold last band", "Computed, and replaced by the curvature."),
            FIELD(
                CurvatureParams, fSharedWidth, "Same steepness", "Computed, and replaced by the curvature."),
            FIELD(CurvatureParams, fRawAngle, "Angle as grey",
                "The running angle as a grey level, 1 for a half turn."),
            FIELD(CurvatureParams, fInvertRaw, "Invert grey", "1 minus that grey level."),
            FIELD(CurvatureParams, fAngleA, "Angle A", "Rotation of the fixed direction about Z.")
                .Unit("degrees"),
            FIELD(CurvatureParams, fAngleB, "Angle B", "Rotation of the fixed direction about Y.")
                .Unit("degrees"),
            FIELD(CurvatureParams, fMixStyle, "Angle",
                "Moved: the shader drives the running angle from sample to sample.")
                .Choices({{"SMMX", "As it is"}, {"SHMX", "Moved by the shader"}}),
            FIELD(CurvatureParams, fSubShader, "Shader", "What drives the running angle."),
        }};
}
