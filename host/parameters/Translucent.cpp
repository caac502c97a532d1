#include "shaders/scene/Translucent.h"
#include "host/parameters/Notation.h"
#include "module/ClassIDs.h"

fernwick::ParameterTable TranslucentTable()
{
    return {"Translucent", {kTranslucentClassID}, kOutputColor, sizeof(TranslucentParams),
        "Grey by the angle between a light and a viewer as seen from the surface.",
        {
            FIELD(
                TranslucentParams, fCameraName, "Viewer", "Name of the element that stands for the viewer."),
            FIELD(TranslucentParams, fLightName, "Light", "Name of the element that stands for the light."),
            FIELD(TranslucentParams, fInvert, "Invert", "1 minus the level."),
            FIELD(TranslucentParams, fFalloffMode, "Falloff",
                "Whether the ramp is straight or goes through the curve.")
                .Choices({{"LINE", "Straight"}, {"EXPO", "Curve"}}),
            FIELD(TranslucentParams, fAngleRange, "Angles", "Angles at which the ramp starts and ends.")
                .Unit("radians"),
            FIELD(TranslucentParams, fReference, "Seen from", "From where the two are seen.")
                .Choices({{"Opt1", "Sample"}, {"Opt2", "Origin"}, {"Opt3", "Hot point"}}),
            FIELD(TranslucentParams, fCurveHandles, "Curve handles",
                "The two inner control values of the curve, as levels."),
        }};
}
