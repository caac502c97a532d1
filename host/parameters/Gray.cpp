#include "shaders/mapping/Gray.h"
#include "host/parameters/Notation.h"
#include "module/ClassIDs.h"

fernwick::ParameterTable GrayTable()
{
    return {"Gray", {kGrayClassID, kGraySecondClassID}, kOutputColor | kOutputSurface, sizeof(GrayParams),
        "Filters a colour or the colours of a surface: to grey, or to another saturation.",
        {
            FIELD(GrayParams, fSaturationShift, "Saturation", "Added to the saturation of every colour.")
                .Unit("%"),
            FIELD(GrayParams, fRedShift, "Saturation of reds", "Added to the saturation of hues near red.")
                .Unit("%"),
            FIELD(GrayParams, fGreenShift, "Saturation of greens",
                "Added to the saturation of hues near green.")
                .Unit("%"),
            FIELD(GrayParams, fBlueShift, "Saturation of blues", "Added to the saturation of hues near blue.")
                .Unit("%"),
            FIELD(GrayParams, fMode, "Mode",
                "Grey: the luminance. Saturation: the colour with its saturation shifted. A grey that gains "
                "saturation comes out darker.")
                .Choices({{"GRSC", "Grey"}, {"SATU", "Saturation"}}),
            FIELD(GrayParams, fSubShader, "Shader",
                "What is filtered. Grey takes a value too; saturation takes colours only."),
            FIELD(GrayParams, fColorSwitches, "Filtered colour #", "Which colours of a surface are filtered.")
                .Labels({"Filter main colour", "Filter third colour", "Filter second colour",
                    "Filter fourth colour"}),
        }};
}
