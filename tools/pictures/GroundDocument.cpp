#include "tools/pictures/GroundDocument.h"
#include "host/json/Nearest.h"
#include "host/sources/Sources.h"
#include "tools/Names.h"
#include "tools/Outcome.h"
#include "tools/pictures/FieldSettings.h"
#include <filesystem>
#include <fmt/format.h>

std::unique_ptr<fernwick::GraphSequence> MakeGround(const std::string& over)
{
    const std::string source = over.substr(0, over.find(':'));
    if (fernwick::FindSource(source) == nullptr) {
        const std::string hint = fernwick::NearestHint(source, SourceNames());
        std::error_code ignored;
        if (!hint.empty() && !std::filesystem::exists(over, ignored))
            throw fernwick::GraphError(
                fmt::format("--over: there is no source or file \"{}\"{}", over, hint));
        try {
            return std::make_unique<fernwick::GraphSequence>(fernwick::ReadGraphFile(over), over);
        } catch (const fernwick::GraphError& error) {
            if (over.ends_with(".json"))
                throw;
            throw fernwick::GraphError(
                fmt::format("{}; a picture is given as picture:{}", error.what(), over));
        }
    }
    const std::string name = "--over";
    fernwick::Json document = {{"shaders", {{name, SourceOf(over, "--over", name)}}}, {"output", name}};
    try {
        [[maybe_unused]] const std::string text = document.dump(); // throws for what isn't UTF-8
        auto ground = std::make_unique<fernwick::GraphSequence>(std::move(document), "", "");
        ground->At(fernwick::kFirstFrame); // reads a picture now
        return ground;
    } catch (const fernwick::GraphError& error) {
        throw UsageError(error.what());
    } catch (const fernwick::Json::exception&) {
        throw UsageError("--over: the text isn't UTF-8");
    }
}
