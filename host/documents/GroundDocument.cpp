#include "host/documents/GroundDocument.h"
#include "host/json/Nearest.h"
#include "host/sources/Sources.h"
#include <fmt/format.h>

namespace fernwick {

Ground ReadGround(const std::string& over)
{
    const std::string source = over.substr(0, over.find(':'));
    if (FindSource(source) == nullptr) {
        const std::string hint = NearestHint(source, SourceNames());
        std::error_code ignored;
        if (!hint.empty() && !std::filesystem::exists(over, ignored))
            throw GraphError(fmt::format("--over: there is no source or file \"{}\"{}", over, hint));
        try {
            return {ReadGraphFile(over), over};
        } catch (const GraphError& error) {
            if (over.ends_with(".json"))
                throw;
            throw GraphError(fmt::format("{}; a picture is given as picture:{}", error.what(), over));
        }
    }
    const std::string name = "--over";
    Json document = {{"shaders", {{name, SourceOf(over, "--over", name)}}}, {"output", name}};
    try {
        [[maybe_unused]] const std::string text = document.dump(); // throws for what isn't UTF-8
    } catch (const Json::exception&) {
        throw SettingError("--over: the text isn't UTF-8");
    }
    return {std::move(document), {}};
}

std::unique_ptr<GraphSequence> MakeGround(Ground ground)
{
    if (!ground.fFile.empty())
        return std::make_unique<GraphSequence>(std::move(ground.fDocument), ground.fFile);
    try {
        auto made = std::make_unique<GraphSequence>(std::move(ground.fDocument), "", "");
        made->At(kFirstFrame); // reads a picture now
        return made;
    } catch (const GraphError& error) {
        throw SettingError(error.what());
    }
}

} // namespace fernwick
