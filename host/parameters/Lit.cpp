#include "shaders/scene/Lit.h"
#include "host/parameters/Notation.h"
#include "module/ClassIDs.h"

fernwick::ParameterTable LitTable()
{
    return {"Lit", {kLitClassID}, kOutputValue | kOutputColor, sizeof(LitParams),
        "How far a named light reaches the surface, without shadows.",
        {
            FIELD(LitParams, fLightName, "Light", "Name of the light in the scene."),
            FIELD(LitParams, fInvert, "Invert", "1 minus the amount. The colour of the light stays."),
            FIELD(LitParams, fUseLightColor, "Colour of the light",
                "The light's colour instead of grey; the value is then 0."),
            FIELD(LitParams, fFoldAngle, "Fold angle", "Folds the surface angle by a quarter turn."),
            FIELD(LitParams, fAngleRange, "Angles", "Surface angles at which the amount is full and none.")
                .Unit("radians"),
            FIELD(LitParams, fReference, "Measured from", "Where the light is measured from.")
                .Choices({{"Opt1", "Sample"}, {"Opt2", "Origin"}, {"Opt3", "Hot point"}}),
            FIELD(LitParams, fUseMinAngle, "Test lower angle", "Angles below the lower bound get nothing."),
        }};
}
