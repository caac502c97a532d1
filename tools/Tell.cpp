#include "tools/Tell.h"
#include "host/json/Printable.h"
#include "tools/Streams.h"
#include <algorithm>
#include <fmt/core.h>

void Tell(std::string_view text)
{
    std::string shown;
    for (size_t end = text.find("\n  "); end != std::string::npos; end = text.find("\n  ")) {
        shown += fernwick::Printable(text.substr(0, end)) + '\n';
        text.remove_prefix(end + 1);
    }
    PrintOnStderr(fmt::format("fernwick: {}{}\n", shown, fernwick::Printable(text)));
}

void TellDoubts(const std::vector<std::string>& doubts)
{
    constexpr size_t kMost = 20;
    const size_t shown = std::min(doubts.size(), kMost);
    for (size_t i = 0; i < shown; ++i)
        Tell(doubts[i]);
    if (shown < doubts.size())
        Tell(fmt::format("{} more fields hold what isn't expected", doubts.size() - shown));
}
