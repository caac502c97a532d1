#include "tools/Wrap.h"
#include <sys/ioctl.h>
#include <unistd.h>

size_t TerminalWidth()
{
    constexpr size_t kUsual = 80;
    winsize size{};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsual;
}

std::vector<std::string> Wrapped(std::string_view text, size_t width)
{
    std::vector<std::string> lines;
    while (text.size() > width) {
        size_t blank = text.rfind(' ', width);
        if (blank == std::string_view::npos)
            blank = text.find(' ', width);
        if (blank == std::string_view::npos)
            break;
        lines.emplace_back(text.substr(0, blank));
        text.remove_prefix(blank + 1);
    }
    lines.emplace_back(text);
    return lines;
}
