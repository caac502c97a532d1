#include "host/shading/TexelSurface.h"

namespace fernwick {

OwnGraph TexelSurface::MakeGraphFor(const Library& library, const GraphDocument& document) const
{
    return MakeGraph(library, document);
}

} // namespace fernwick
