#include "host/shading/MakeShader.h"
#include "module/UnroutedClassIDs.h"

namespace fernwick {

MCCountedPtr<ShaderWrapper> MakeShader(const Library& library, const ParameterTable& table)
{
    const GUID* const unrouted = UnroutedClassID(table.fName);
    return unrouted != nullptr ? ShaderWrapper::Make(library.Unrouted(), *unrouted)
                               : ShaderWrapper::Make(library, table.fClassIDs.front());
}

} // namespace fernwick
