#include "shaders/layers/MultiPassControl.h"
#include "host/parameters/Notation.h"
#include "module/ClassIDs.h"

fernwick::ParameterTable MultiPassControlTable()
{
    return {"MultiPassControl", {kMultiPassControlClassID}, kOutputValue, sizeof(MultiPassControlParams),
        "Tells any number of MultiPassManager shaders which pass is meant.",
        {
            FIELD(MultiPassControlParams, fPassName, "Name of level #", "A label for the user."),
            FIELD(MultiPassControlParams, fLevel, "Level",
                "One of ten constants, 0.05 to 0.95, or what the shader gives.")
                .Choices({{"LREF", "Shader"}, {"LONE", "One"}, {"LTWO", "Two"}, {"LTHR", "Three"},
                    {"LFOR", "Four"}, {"LFIV", "Five"}, {"LSIX", "Six"}, {"LSVN", "Seven"}, {"LEGT", "Eight"},
                    {"LNIN", "Nine"}, {"LTEN", "Ten"}}),
            FIELD(MultiPassControlParams, fSubShader, "Shader",
                "Gives the level in every sample: a colour, a value or a surface."),
        }};
}
