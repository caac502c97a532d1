#include "host/validation/Apart.h"
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace fernwick::validation {

namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void Fail(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

/// Memory that both processes see.
class SharedActivity {
public:
    SharedActivity()
        : fMemory(mmap(nullptr, sizeof(Activity), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))
    {
        if (fMemory == MAP_FAILED)
            Fail("mmap");
    }
    ~SharedActivity() { munmap(fMemory, sizeof(Activity)); }
    SharedActivity(const SharedActivity&) = delete;
    SharedActivity& operator=(const SharedActivity&) = delete;

    Activity& operator*() const { return *static_cast<Activity*>(fMemory); }

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

/// @return false when the time is up before the other end closes
bool ReadAll(int file, Clock::time_point end, std::string& text)
{
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd wait{file, POLLIN, 0};
        if (left <= 0 || poll(&wait, 1, static_cast<int>(left)) == 0)
            return false;
        char buffer[4096];
        const ssize_t got = read(file, buffer, sizeof buffer);
        if (got == 0)
            return true;
        if (got > 0)
            text.append(buffer, static_cast<size_t>(got));
    }
}

std::string SignalName(int number)
{
    const char* const name = sigabbrev_np(number);
    return name != nullptr ? std::string("SIG") + name : "signal " + std::to_string(number);
}

std::string TroubleOf(int status)
{
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGVTALRM)
        return "hung";
    if (WIFSIGNALED(status))
        return "crashed with " + SignalName(WTERMSIG(status));
    if (WEXITSTATUS(status) != 0)
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

Ending RunApart(const std::function<void(const Teller&, Activity&)>& job, std::chrono::milliseconds limit)
{
    const SharedActivity activity;
    int ends[2];
    if (pipe(ends) != 0)
        Fail("pipe");
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0)
        Fail("fork");
    if (child == 0) {
        close(ends[0]);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const rlimit noCore{0, 0};
        setrlimit(RLIMIT_CORE, &noCore);
        dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
        job([&](const std::string& line) { WriteAll(ends[1], line + '\n'); }, *activity);
        _exit(0);
    }
    close(ends[1]);
    Ending ending{};
    const bool ended = ReadAll(ends[0], Clock::now() + limit, ending.lines);
    close(ends[0]);
    if (!ended)
        kill(child, SIGKILL);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) { }
    ending.trouble = ended ? TroubleOf(status)
                           : "still ran after " + std::to_string(limit.count() / 1000.0).substr(0, 5) + " s";
    ending.activity = *activity;
    return ending;
}

} // namespace fernwick::validation
