#include "shaders/layers/MultiPassManager.h"
#include "host/parameters/Notation.h"
#include "module/ClassIDs.h"

fernwick::ParameterTable MultiPassManagerTable()
{
    return {"MultiPassManager", {kMultiPassManagerClassID}, kOutputSurface, sizeof(MultiPassManagerParams),
        "A ten-way switch of surfaces: the selector's value tells the pass.",
        {
            FIELD(MultiPassManagerParams, fPassName, "Name of pass #", "A label for the user."),
            FIELD(MultiPassManagerParams, fSubShader, "Slot #",
                "The selector (0.05 is pass 1, 0.15 pass 2, up to 0.95; below 0.04 the selector itself "
                "shows), then the shaders of the passes.")
                .Labels({"Selector", "Pass 1", "Pass 2", "Pass 3", "Pass 4", "Pass 5", "Pass 6", "Pass 7",
                    "Pass 8", "Pass 9", "Pass 10"}),
        }};
}
