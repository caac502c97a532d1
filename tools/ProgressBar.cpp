#include "tools/ProgressBar.h"
#include <fmt/core.h>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

bool StderrIsTerminal()
{
#ifdef _WIN32
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

} // namespace

ProgressBar::ProgressBar(std::string label) : fLabel(std::move(label)), fIsShown(StderrIsTerminal())
{
    if (fIsShown)
        Show(0);
}

ProgressBar::~ProgressBar()
{
    if (fIsShown)
        fmt::print(stderr, "\r\033[K");
}

void ProgressBar::Show(double share)
{
    const int percent = static_cast<int>(share * 100);
    if (!fIsShown || percent == fPercent)
        return;
    fPercent = percent;
    constexpr int kWidth = 40; // of the bar, in characters
    const int filled = percent * kWidth / 100;
    fmt::print(stderr, "\r[{:=<{}}{: <{}}] {:3} %  {}", "", filled, "", kWidth - filled, percent, fLabel);
}
