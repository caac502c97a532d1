#include "host/validation/Apart.h"
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

using namespace fernwick::validation;
using namespace std::chrono_literals;

namespace {

void Compute(std::chrono::nanoseconds time)
{
    const auto processorTime = [] {
        timespec now{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
        return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
    };
    for (const auto end = processorTime() + time; processorTime() < end;) { }
}

std::string TroubleOf(const std::function<void()>& job, std::chrono::milliseconds limit)
{
    const auto told = [&](const Teller& teller, Activity& activity) {
        activity.Set("it was tried");
        job();
        teller("done");
    };
    const Ending ending = RunApart(told, limit);
    EXPECT_EQ(ending.lines, ending.trouble.empty() ? "done\n" : "");
    EXPECT_STREQ(ending.activity.text, "it was tried");
    return ending.trouble;
}

TEST(Apart, WhatComputesOrWaitsForEverIsEnded)
{
    EXPECT_EQ(TroubleOf([] { Compute(1h); }, 200ms), "still ran after 0.2 s of processor time");
    EXPECT_EQ(TroubleOf([] { pause(); }, 200ms), "stood still for 3 s");
}

/// As a process fares on a machine that has little time for it.
TEST(Apart, TheTimeThatTheMachineTakesDoesntCount)
{
    const auto piecemeal = [] {
        for (int i = 0; i < 20; ++i) {
            Compute(5ms);
            std::this_thread::sleep_for(50ms);
        }
    };
    EXPECT_EQ(TroubleOf(piecemeal, 300ms), "");
}

TEST(Apart, AProcessThatEndsBeforeItsJobIsTold)
{
    EXPECT_EQ(TroubleOf([] { _exit(0); }, 10s), "ended the process with status 0");
    EXPECT_EQ(TroubleOf([] { std::abort(); }, 10s), "crashed with SIGABRT");
    const auto leaveChild = [] {
        if (fork() != 0)
            return;
        close(STDERR_FILENO); // of whoever waits for this test
        sleep(5);
        _exit(0);
    };
    EXPECT_EQ(TroubleOf(leaveChild, 100ms), "");
}

TEST(Apart, CtrlCIsForTheOneWhoWaits)
{
    EXPECT_EQ(TroubleOf([] { std::raise(SIGINT); }, 10s), "");
    const std::atomic<bool> cancelled{true};
    const Ending ending = RunApart([](const Teller&, Activity&) { pause(); }, 1h, &cancelled);
    EXPECT_EQ(ending.trouble, "");
}

} // namespace
