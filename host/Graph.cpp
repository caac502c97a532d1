#include "host/Graph.h"
#include "frame/SubShader.h"
#include "host/Library.h"
#include <fmt/format.h>

namespace fernwick {

Graph::Graph(const Library& library, const GraphDocument& document)
{
    if (document.Scene())
        fScene = MakeCounted<Scene>(*document.Scene());
    for (size_t i = 0; i <= document.OutputIndex(); ++i)
        fShaders.push_back(Make(library, document.Shaders()[i]));
}

I3DExShader* Graph::OutputExtension() const
{
    const MCCountedPtr<ShaderWrapper>& wrapper = fShaders.back().fWrapper;
    return wrapper ? &wrapper->Shader() : nullptr;
}

IMCUnknown* Graph::Instance() const { return fScene ? &fScene->ShadedObject() : nullptr; }

Graph::LiveShader Graph::Make(const Library& library, const DocumentShader& shader) const
{
    const ParameterTable& table = *shader.fTable;
    if (shader.fSource)
        return {shader.fSource, {}};
    const auto wrapper = ShaderWrapper::Make(library, table.fClassIDs.front());
    if (!wrapper)
        throw GraphError(fmt::format("{}: the library doesn't make a {}", shader.fName, table.fName));
    IExDataExchanger& exchanger = wrapper->Exchanger();
    if (exchanger.GetParamsBufferSize() != table.fRecordSize)
        throw GraphError(fmt::format("{}: the library's {} has a record of {} bytes, expected {}",
            shader.fName, table.fName, exchanger.GetParamsBufferSize(), table.fRecordSize));

    char* const record = static_cast<char*>(exchanger.GetExtensionDataBuffer());
    for (const FieldSetting& setting : shader.fSettings) {
        WriteField(setting, record);
        if (const auto* const plugged = std::get_if<PluggedShader>(&setting.fValue)) {
            auto& slot = *reinterpret_cast<SubShaderSlot*>(record + setting.fField->fOffset);
            slot = plugged->fIndex ? fShaders[*plugged->fIndex].fFace.Get() : nullptr;
        }
    }
    const MCErr status = exchanger.ExtensionDataChanged();
    if (status != MC_S_OK)
        throw GraphError(
            fmt::format("{}: the shader refused its parameters with {:#010x}", shader.fName, status));
    return {MCCountedPtr<IShellShader>(wrapper.Get()), wrapper};
}

} // namespace fernwick
