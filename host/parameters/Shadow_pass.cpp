#include "shaders/layers/Shadow_pass.h"
#include "host/parameters/Notation.h"

fernwick::ParameterTable Shadow_passTable()
{
    return {"Shadow_pass", {}, kOutputSurface, sizeof(Shadow_passParams),
        "Passes a shader through as a surface, or produces none.",
        {
            FIELD(Shadow_passParams, fSuppress, "Suppress", "No surface is produced; the alpha becomes 0."),
            FIELD(Shadow_passParams, fSubShader, "Shader",
                "What is passed through: a surface, a colour or a value."),
        }};
}
