#include "shaders/patterns/Drip.h"
#include "host/parameters/Notation.h"
#include "module/ClassIDs.h"

fernwick::ParameterTable DripTable()
{
    return {"Drip", {kDripClassID}, kOutputValue | kOutputVector, sizeof(DripParams),
        "The ring that a drop makes on water, with an optional second one.",
        {
            FIELD(DripParams, fCenterU, "Centre U", "Centre of the ring.").Unit("UV"),
            FIELD(DripParams, fCenterV, "Centre V", "Centre of the ring.").Unit("UV"),
            FIELD(DripParams, fAmplitude, "Amplitude", "Height of the ripple around the base level."),
            FIELD(DripParams, fRingWidth, "Ring width",
                "Radial width; with a proportional width the factor by which the ring grows.")
                .Unit("UV"),
            FIELD(DripParams, fBaseLevel, "Base level", "Value outside the ring."),
            FIELD(DripParams, fRingStart, "Ring start", "Inner radius.").Unit("UV"),
            FIELD(DripParams, fWaves, "Waves", "Cosine half cycles from the ring's middle to its edge."),
            FIELD(DripParams, fRippled, "Rippled", "A damped ripple; otherwise a flat band."),
            FIELD(DripParams, fProportional, "Proportional width", "The width grows with the radius."),
            FIELD(DripParams, fSecondRing, "Second ring",
                "Draws a second ring, which covers the first where it lies."),
            FIELD(DripParams, fSecondAmplitude, "Second amplitude",
                "Factor of amplitude and width of the second ring; negative turns its ripple over."),
            FIELD(DripParams, fSecondStart, "Second start", "Factor of the inner radius of the second ring."),
            FIELD(DripParams, fShowCenter, "Show centre",
                "A cross on the centre instead of the rings, for placing it."),
        }};
}
