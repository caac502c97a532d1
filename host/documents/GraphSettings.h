#pragma once
#include "host/documents/SettingText.h"
#include <vector>

namespace fernwick {

/// What is changed in a graph, as a command line takes it.
struct GraphSettings {
    std::vector<std::string> sets;  ///< such as `drop.fWaves=5`; a later one counts
    std::vector<std::string> plugs; ///< such as `key.fSubShader=ramp:v`
};

/// Changes a document that isn't read yet. A field is that of the shader with the longest name that fits before it,
/// else of the output; sources are plugged in before fields are set. Relative files are found from the current
/// folder. A document that is no graph is left as it is, for who reads it to refuse. Throws `SettingError`.
/// @param tell  of what is given twice
void Apply(const GraphSettings& settings, Json& document, const TellSlip& tell);

} // namespace fernwick
