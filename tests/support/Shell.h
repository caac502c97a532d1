#pragma once
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/wait.h>

/// What a line of the shell answered; stdout and stderr together.
struct ShellAnswer {
    int status = -1;
    std::string text;
};

inline ShellAnswer Shell(const std::string& line)
{
    ShellAnswer answer;
    FILE* const pipe = popen(("(" + line + ") 2>&1").c_str(), "r");
    for (int character = std::fgetc(pipe); character != EOF; character = std::fgetc(pipe))
        answer.text += static_cast<char>(character);
    answer.status = WEXITSTATUS(pclose(pipe));
    return answer;
}

inline std::string FileText(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// Writes a file, and the folders that it lies in.
inline void Store(const std::filesystem::path& file, const std::string& text)
{
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
}
