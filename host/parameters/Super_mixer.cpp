#include "shaders/layers/Super_mixer.h"
#include "host/parameters/MixerRows.h"
#include "module/ClassIDs.h"

fernwick::ParameterTable Super_mixerTable()
{
    auto rows = MixerRows<Super_mixerParams>();
    rows.insert(rows.begin() + 1,
        FIELD(Super_mixerParams, fCombineMode, "Combination",
            "Ranges: the layers whose range holds the control. Sum: all layers, unweighted. Any other code: "
            "none.")
            .Choices({{"MXMD", "Ranges"}, {"ADMD", "Sum"}}));
    return {"Super_mixer", {kSuper_mixerClassID}, kOutputColor, sizeof(Super_mixerParams),
        "Mixes up to ten layers of colour by a control value and a range for each.", rows};
}
