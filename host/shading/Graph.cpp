#include "host/shading/Graph.h"
#include "frame/SubShader.h"
#include "host/shading/MakeShader.h"
#include <fmt/format.h>

namespace fernwick {

std::vector<bool> NeededFor(const GraphDocument& document, std::span<const size_t> shaders)
{
    std::vector<bool> needed(document.Shaders().size());
    for (const size_t shader : shaders)
        needed[shader] = true;
    for (size_t i = needed.size(); i-- > 0;) // each lies behind those that it plugs in
        if (needed[i])
            for (const size_t below : PluggedIn(document.Shaders()[i]))
                needed[below] = true;
    return needed;
}

Graph::Graph(const Library& library, const GraphDocument& document) : fOutputIndex(document.OutputIndex())
{
    if (document.Scene())
        fScene = MakeCounted<Scene>(*document.Scene());
    for (size_t i = 0; i <= fOutputIndex; ++i)
        fShaders.push_back(Make(library, document.Shaders()[i]));
}

Graph::Graph(const Library& library, const GraphDocument& document, const MCCountedPtr<Scene>& scene,
    const std::vector<bool>& needed)
    : fScene(scene), fOutputIndex(document.OutputIndex())
{
    for (const DocumentShader& shader : document.Shaders())
        fShaders.push_back(needed.empty() || needed[fShaders.size()] ? Make(library, shader) : LiveShader());
}

I3DExShader* Graph::Extension(size_t index) const
{
    const MCCountedPtr<ShaderWrapper>& wrapper = fShaders[index].fWrapper;
    return wrapper ? &wrapper->Shader() : nullptr;
}

IMCUnknown* Graph::Instance() const { return fScene ? &fScene->ShadedObject() : nullptr; }

Graph::LiveShader Graph::Make(const Library& library, const DocumentShader& shader) const
{
    const ParameterTable& table = *shader.fTable;
    if (shader.fSource)
        return {shader.fSource, {}};
    const auto wrapper = MakeShader(library, table);
    if (!wrapper)
        throw GraphError(fmt::format("{}: the library doesn't make a {}", shader.fName, table.fName));
    IExDataExchanger& exchanger = wrapper->Exchanger();
    // A class without a route may not tell the size of its record.
    if (!table.fClassIDs.empty() && exchanger.GetParamsBufferSize() != table.fRecordSize)
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
    wrapper->SetTitle(TitleOf(shader, record));
    const MCErr status = exchanger.ExtensionDataChanged();
    if (status != MC_S_OK)
        throw GraphError(
            fmt::format("{}: the shader refused its parameters with {:#010x}", shader.fName, status));
    return {MCCountedPtr<IShellShader>(wrapper.Get()), wrapper};
}

} // namespace fernwick
