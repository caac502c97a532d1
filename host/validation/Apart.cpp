#include "host/validation/Apart.h"
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace fernwick::validation {

namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void Fail(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

/// What both processes see.
struct Shared {
    Activity activity;
    bool isDone; ///< the job came to its end, which a process that ends well may not have
};

class SharedMemory {
public:
    SharedMemory()
        : fMemory(mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))
    {
        if (fMemory == MAP_FAILED)
            Fail("mmap");
    }
    ~SharedMemory() { munmap(fMemory, sizeof(Shared)); }
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    Shared& operator*() const { return *static_cast<Shared*>(fMemory); }

private:
    void* fMemory;
};

void WriteAll(int file, const std::string& text)
{
    for (size_t done = 0; done < text.size();) {
        const ssize_t written = write(file, text.data() + done, text.size() - done);
        if (written < 0 && errno != EINTR)
            _exit(1); // nobody listens any more
        if (written > 0)
            done += static_cast<size_t>(written);
    }
}

/// Tells when a process has had its time. To be asked every `kTick`; what is missed of it, as while both processes are
/// stopped, doesn't count.
class Watch {
public:
    static constexpr std::chrono::milliseconds kTick{50};

    Watch(pid_t process, std::chrono::milliseconds limit)
        : fProcess(static_cast<int>(syscall(SYS_pidfd_open, process, 0))), fLimit(limit)
    {
        if (fProcess < 0)
            Fail("pidfd_open");
        errno = clock_getcpuclockid(process, &fClock);
        if (errno != 0)
            Fail("clock_getcpuclockid");
    }
    ~Watch() { close(fProcess); }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    /// Can be read from when the process has ended.
    int End() const { return fProcess; }

    /// Why the process is to be ended; empty as long as it may run.
    std::string Overrun()
    {
        const Clock::time_point now = Clock::now();
        const auto passed = std::min<std::chrono::nanoseconds>(now - fAsked, 2 * kTick);
        fAsked = now;
        fRan += passed;
        fStoodStill += passed;
        timespec computed{};
        clock_gettime(fClock, &computed);
        const auto processor
            = std::chrono::seconds(computed.tv_sec) + std::chrono::nanoseconds(computed.tv_nsec);
        if (processor != fComputed)
            fStoodStill = {};
        fComputed = processor;
        if (fComputed > fLimit)
            return "still ran after " + Text(fLimit) + " of processor time";
        if (const auto limit = std::max(fLimit, kLeastRest); fStoodStill > limit)
            return "stood still for " + Text(limit);
        if (const auto limit = kPatience * std::max(fLimit, kLeastRest); fRan > limit)
            return "still ran after " + Text(limit);
        return "";
    }

    std::chrono::nanoseconds Time() const { return fComputed + fStoodStill; }

private:
    static constexpr std::chrono::milliseconds kLeastRest{3000};
    static constexpr int kPatience = 10;

    int fProcess;
    clockid_t fClock{};
    std::chrono::milliseconds fLimit;
    Clock::time_point fAsked = Clock::now();
    std::chrono::nanoseconds fRan{};
    std::chrono::nanoseconds fStoodStill{};
    std::chrono::nanoseconds fComputed{};

    static std::string Text(std::chrono::milliseconds time)
    {
        return fmt::format("{} s", static_cast<double>(time.count()) / 1000);
    }
};

bool IsTrue(const std::atomic<bool>* flag) { return flag != nullptr && *flag; }

/// Reads until the process has ended, whoever holds the other end.
/// @return why it is to be ended before; empty for not, or when it is cancelled
std::string ReadAll(int file, Watch& watch, const std::atomic<bool>* cancel, std::string& text)
{
    pollfd waits[] = {{file, POLLIN, 0}, {watch.End(), POLLIN, 0}};
    while (!IsTrue(cancel)) {
        if (poll(waits, std::size(waits), static_cast<int>(Watch::kTick.count())) > 0) {
            char buffer[4096];
            const ssize_t got = waits[0].revents != 0 ? read(file, buffer, sizeof buffer) : -1;
            if (got > 0)
                text.append(buffer, static_cast<size_t>(got));
            else if (got == 0)
                waits[0] = {-1, 0, 0}; // closed, which a module may do too
            else if (waits[1].revents != 0)
                return "";
        }
        if (std::string overrun = watch.Overrun(); !overrun.empty())
            return overrun;
    }
    return "";
}

/// What comes from outside to end a command isn't for a module to see: whoever waits for this process ends it.
void LeaveSignalsToParent(pid_t parent)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) // it went before
        _exit(1);
    std::signal(SIGINT, SIG_IGN);
    for (const int number : {SIGTERM, SIGHUP, SIGQUIT, SIGALRM, SIGXCPU, SIGPIPE})
        std::signal(number, SIG_DFL);
}

std::string SignalName(int number)
{
    const char* const name = sigabbrev_np(number);
    return name != nullptr ? std::string("SIG") + name : "signal " + std::to_string(number);
}

std::string TroubleOf(int status, bool isDone)
{
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGVTALRM)
        return "hung";
    if (WIFSIGNALED(status))
        return "crashed with " + SignalName(WTERMSIG(status));
    if (WEXITSTATUS(status) != 0 || !isDone)
        return "ended the process with status " + std::to_string(WEXITSTATUS(status));
    return "";
}

} // namespace

void Activity::Set(const char* doing) { std::snprintf(text, sizeof text, "%s", doing); }

void LimitProcessorTime(std::chrono::microseconds limit)
{
    const auto whole = std::chrono::duration_cast<std::chrono::seconds>(limit);
    const itimerval timer{{0, 0}, {whole.count(), (limit - whole).count()}};
    setitimer(ITIMER_VIRTUAL, &timer, nullptr);
}

Ending RunApart(const std::function<void(const Teller&, Activity&)>& job, std::chrono::milliseconds limit,
    const std::atomic<bool>* cancel)
{
    const SharedMemory memory;
    Shared& shared = *memory;
    int ends[2];
    if (pipe(ends) != 0)
        Fail("pipe");
    std::fflush(nullptr);
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0)
        Fail("fork");
    if (child == 0) {
        close(ends[0]);
        LeaveSignalsToParent(parent);
        const rlimit noCore{0, 0};
        setrlimit(RLIMIT_CORE, &noCore);
        dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
        job([&](const std::string& line) { WriteAll(ends[1], line + '\n'); }, shared.activity);
        shared.isDone = true;
        _exit(0);
    }
    close(ends[1]);
    Ending ending{};
    Watch watch(child, limit);
    ending.trouble = ReadAll(ends[0], watch, cancel, ending.lines);
    close(ends[0]);
    const bool isLeft = !ending.trouble.empty() || IsTrue(cancel);
    if (isLeft)
        kill(child, SIGKILL);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) { }
    if (!isLeft)
        ending.trouble = TroubleOf(status, shared.isDone);
    ending.activity = shared.activity;
    ending.time = watch.Time();
    return ending;
}

} // namespace fernwick::validation
