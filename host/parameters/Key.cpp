#include "shaders/mapping/Key.h"
#include "host/parameters/Notation.h"
#include "module/ClassIDs.h"

fernwick::ParameterTable KeyTable()
{
    return {"Key", {kKeyClassID}, kOutputColor, sizeof(KeyParams),
        "Keys a colour out of a shader: a mask, or the shader's colour cut out by its alpha.",
        {
            FIELD(KeyParams, fRedRange, "Red range",
                "Lower and upper offset of the key box from the key colour; both ends belong to the box.")
                .Unit("%"),
            FIELD(KeyParams, fGreenRange, "Green range", "The same for green.").Unit("%"),
            FIELD(KeyParams, fBlueRange, "Blue range", "The same for blue.").Unit("%"),
            FIELD(KeyParams, fMode, "Answer",
                "Mask: black inside the box and white outside. "
                "Cut-out: the shader's colour, with an alpha of 0 inside the box and 1 outside.")
                .Choices({{"KEYM", "Mask"}, {"KEYA", "Cut-out"}}),
            FIELD(KeyParams, fKeyColor, "Key colour", "Centre of the key box. The alpha takes no part."),
            FIELD(KeyParams, fSubShader, "Shader", "What is keyed. Without it the answer is red."),
        }};
}
