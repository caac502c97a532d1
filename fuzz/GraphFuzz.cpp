// Bytes are the text of a graph document. It is refused with a GraphError, or it can be made live and shaded.
#include "host/json/JsonNode.h"
#include "host/library/Library.h"
#include "host/shading/Graph.h"
#include "host/validation/Sheet.h"
#include <string_view>

using namespace fernwick;

namespace {

constexpr size_t kMostCalls = 1000; // of shaders by shaders, for one sample

/// A document may name any file of the machine. Here it reads those of one folder.
bool KeepInFolder(Json& json)
{
    bool changed = false;
    if (json.is_structured())
        for (auto& [key, value] : json.items()) {
            changed = KeepInFolder(value) || changed;
            if (key != "file" || !value.is_string())
                continue;
            const auto name = std::filesystem::path(value.get<std::string>()).filename();
            value = name == ".." ? "." : name.string();
            changed = true;
        }
    return changed;
}

std::string WithOwnFiles(const std::string& text)
{
    Json json = Json::parse(text, nullptr, false);
    return !json.is_discarded() && KeepInFolder(json)
        ? json.dump(-1, ' ', false, Json::error_handler_t::replace)
        : text;
}

/// How many shaders answer when one is asked: who is plugged in twice answers twice.
size_t CallsOf(const GraphDocument& document)
{
    std::vector<size_t> calls;
    for (size_t i = 0; i <= document.OutputIndex(); ++i) {
        size_t sum = 1;
        for (const size_t below : PluggedIn(document.Shaders()[i]))
            sum = std::min(sum + calls[below], kMostCalls + 1);
        calls.push_back(sum);
    }
    return calls.back();
}

void Shade(const Graph& graph)
{
    validation::Random random(1);
    for (int i = 0; i < 8; ++i) {
        const ShadingIn sample = validation::RandomSample(random, graph.Instance());
        ShadingIn in = sample;
        float value = 0;
        bool fullArea = false;
        graph.Output().ShadeValue(value, fullArea, in);
        in = sample;
        TMCColorRGBA color = {0, 0, 0, 0};
        graph.Output().ShadeColor(color, fullArea, in);
        in = sample;
        ShadingOut result;
        graph.Output().ShadeSurface(result, in);
        if (I3DExShader* const extension = graph.OutputExtension()) {
            in = sample;
            TVector3 vector;
            extension->ShadeVector(vector, in);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const Library library(FERNWICK_MODULE);
    const std::string text(reinterpret_cast<const char*>(data), size);
    try {
        const GraphDocument document = GraphDocument::Parse(WithOwnFiles(text), FERNWICK_FUZZ_FILES);
        const Graph graph(library, document);
        if (CallsOf(document) <= kMostCalls)
            Shade(graph);
    } catch (const GraphError&) {
        return 0;
    }
    return 0;
}
