#include "shaders/layers/Super_mixer_top.h"
#include "host/parameters/MixerRows.h"
#include "module/ClassIDs.h"

fernwick::ParameterTable Super_mixer_topTable()
{
    return {"Super_mixer_top", {kSuper_mixer_topClassID}, kOutputSurface, sizeof(Super_mixer_topParams),
        "Mixes up to ten whole surfaces by a control value and a range for each.",
        MixerRows<Super_mixer_topParams>()};
}
