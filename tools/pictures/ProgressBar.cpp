#include "tools/pictures/ProgressBar.h"
#include "tools/Streams.h"
#include <algorithm>
#include <fmt/format.h>

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
        PrintOnStderr("\r\033[K");
}

void ProgressBar::Show(double share)
{
    const int percent = static_cast<int>(share * 100);
    if (!fIsShown || percent == fPercent)
        return;
    fPercent = percent;
    constexpr int kWidth = 40; // of the bar, in characters
    const int filled = percent * kWidth / 100;
    PrintOnStderr(fmt::format("\r[{:=<{}}{: <{}}] {:3} %  {}{}\033[K", "", filled, "", kWidth - filled,
        percent, fLabel, TimeLeft(share)));
}

/// As if the rest took as long as what is done; nothing in the first second, which tells too little.
std::string ProgressBar::TimeLeft(double share) const
{
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - fStart;
    if (passed.count() < 1 || !(share > 0))
        return "";
    const int left = static_cast<int>(std::min(passed.count() * (1 - share) / share + 0.5, 1e8));
    return left < 60 ? fmt::format(", {} s left", left)
                     : fmt::format(", {} min {} s left", left / 60, left % 60);
}
