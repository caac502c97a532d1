#include "shaders/layers/Super_mixer_top.h"
#include "host/parameters/MixerRows.h"

fernwick::ParameterTable Super_mixer_topTable()
{
    return {"Super_mixer_top", {"490D324B-B207-4B1D-A2AF-E8CAB3C9D106"}, kOutputSurface,
        sizeof(Super_mixer_topParams),
        "Mixes up to ten whole surfaces by a control value and a range for each.",
        MixerRows<Super_mixer_topParams>()};
}
