#include "shaders/scene/Proximity.h"
#include "host/parameters/Notation.h"
#include "module/ClassIDs.h"

fernwick::ParameterTable ProximityTable()
{
    return {"Proximity", {kProximityClassID}, kOutputValue, sizeof(ProximityParams),
        "How near the surface is to another object, or to the nearest of a group.",
        {
            FIELD(ProximityParams, fTargetName, "Target",
                "Name of the object; of a group, the text that its names begin with."),
            FIELD(ProximityParams, fUseShader, "Disturb", "The shader moves the distance."),
            FIELD(ProximityParams, fShaderStrength, "Disturbance",
                "Weight of the shader's value; the limit divides it."),
            FIELD(ProximityParams, fReference, "Measured from", "Where the distance is measured from.")
                .Choices({{"Opt1", "Sample"}, {"Opt2", "Origin"}, {"Opt3", "Hot point"}}),
            FIELD(ProximityParams, fAxisX, "Measure X", "X counts."),
            FIELD(ProximityParams, fAxisY, "Measure Y", "Y counts."),
            FIELD(ProximityParams, fAxisZ, "Measure Z", "Z counts."),
            FIELD(ProximityParams, fMaxDistance, "Limit", "At and beyond this distance the value is 0.")
                .Unit("scene units"),
            FIELD(ProximityParams, fFalloff, "Falloff",
                "Width of the ramp that ends at the limit; 0 makes one ramp of the whole range.")
                .Unit("scene units"),
            FIELD(ProximityParams, fOffset, "Offset", "Subtracted from the distance.").Unit("scene units"),
            FIELD(ProximityParams, fSingleObject, "Single object",
                "One named object; otherwise the nearest of the group."),
            FIELD(ProximityParams, fSubShader, "Shader",
                "What moves the distance. A number above 1 repeats the one before."),
        }};
}
