#pragma once
#include <chrono>
#include <string>

/// A line on the terminal that shows how far a job is and how long it still takes, gone when the job is over. Without a
/// terminal on stderr nothing is shown.
class ProgressBar {
public:
    explicit ProgressBar(std::string label);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// @param share  done so far, 0 to 1
    void Show(double share);

private:
    std::string fLabel;
    bool fIsShown;
    int fPercent = -1; // as shown last
    std::chrono::steady_clock::time_point fStart = std::chrono::steady_clock::now();

    std::string TimeLeft(double share) const;
};
