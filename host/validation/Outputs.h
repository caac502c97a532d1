#pragma once
#include <cstdio>
#include <string>
#include <unistd.h>

namespace fernwick::validation {

/// Listens to both outputs of the process, in place of whoever does, as long as it lives.
class Outputs {
public:
    Outputs() : fFile(std::tmpfile()), fSaved{dup(STDOUT_FILENO), dup(STDERR_FILENO)}
    {
        std::fflush(nullptr);
        for (const int output : {STDOUT_FILENO, STDERR_FILENO})
            dup2(fileno(fFile), output);
    }
    ~Outputs()
    {
        std::fflush(nullptr);
        for (const int output : {0, 1}) {
            dup2(fSaved[output], output == 0 ? STDOUT_FILENO : STDERR_FILENO);
            close(fSaved[output]);
        }
        std::fclose(fFile);
    }
    Outputs(const Outputs&) = delete;
    Outputs& operator=(const Outputs&) = delete;

    /// All that was printed so far.
    std::string Heard() const
    {
        std::fflush(nullptr);
        char buffer[256];
        std::string text;
        ssize_t got = 0;
        for (off_t place = 0; (got = pread(fileno(fFile), buffer, sizeof buffer, place)) > 0; place += got)
            text.append(buffer, static_cast<size_t>(got));
        return text;
    }

private:
    FILE* fFile;
    int fSaved[2];
};

} // namespace fernwick::validation
