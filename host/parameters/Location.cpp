#include "shaders/mapping/Location.h"
#include "host/parameters/Notation.h"
#include "module/ClassIDs.h"

fernwick::ParameterTable LocationTable()
{
    return {"Location", {kLocationClassID}, kOutputValue, sizeof(LocationParams),
        "A mask by position: a ramp along each axis that is on, in world or object coordinates.",
        {
            RECORDS(LocationParams, fAxes, "Axis",
                FIELD(LocationAxis, fEdgeA, "one edge", "One end of the ramp.").Unit("scene units"),
                FIELD(LocationAxis, fEdgeB, "other edge", "The other end of the ramp.").Unit("scene units"),
                FIELD(LocationAxis, fEnabled, "on", "The axis takes part."),
                FIELD(LocationAxis, fDirection, "direction",
                    "Whether the ramp falls or rises with the coordinate.")
                    .Choices({{"GRTR", "Falling"}, {"LESS", "Rising"}}))
                .Labels({"X", "Y", "Z"}),
            FIELD(LocationParams, fCombine, "Combination",
                "Smallest: the smallest ramp. Last: the last axis that is on, unless one before it reaches "
                "1.")
                .Choices({{"ORMD", "Smallest"}, {"ANDM", "Last"}}),
            FIELD(LocationParams, fSpace, "Space", "Which coordinates the ramps read.")
                .Choices({{"GLBL", "World"}, {"LOCL", "Object"}}),
            FIELD(LocationParams, fUseSubShader, "Disturb",
                "The shader moves the coordinates before the ramps."),
            FIELD(LocationParams, fDisturbPercent, "Disturbance",
                "How far a shader value of 1 moves them, of the width of each ramp.")
                .Unit("%"),
            FIELD(LocationParams, fSubShader, "Shader",
                "What disturbs the ramps, a colour or a value. A number above 1 repeats the amount before."),
        }};
}
