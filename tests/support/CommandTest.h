#pragma once
#include "tests/support/BakeText.h"
#include "tests/support/Shell.h"
#include <cstdlib>

struct Answer {
    int status;
    std::string out;
    std::string error;
};

/// A test that runs the built command, in a folder of its own.
class CommandTest : public testing::Test {
protected:
    const FreshFolder fPlace;
    const std::filesystem::path fFolder = fPlace / "work"; // where the command runs
    const std::string fKey = FERNWICK_EXAMPLES "/key.json";

    CommandTest()
    {
        std::filesystem::create_directory(fFolder);
        unsetenv("FERNWICK_LIBRARY");
    }

    /// Runs the built command.
    /// @param before  what stands before it on the shell's line, such as settings of the environment
    Answer Run(const std::string& arguments, const std::string& before = "",
        const std::string& command = FERNWICK_COMMAND) const
    {
        const std::filesystem::path error = fPlace / "error";
        const ShellAnswer answer = Shell("cd '" + fFolder.string() + "' && " + before + " '" + command + "' "
            + arguments + " 2>'" + error.string() + "'");
        return {answer.status, answer.text, FileText(error)};
    }
};
