#include "tests/support/Shell.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <vector>

namespace {

std::vector<std::string> LinesOf(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

TEST(MinimalHostTest, DrawsAWheelOfSixSpokes)
{
    const ShellAnswer answer = Shell("'" FERNWICK_MINIMAL_HOST "' '" FERNWICK_MODULE "'");
    EXPECT_EQ(answer.status, 0);
    const std::vector<std::string> lines = LinesOf(answer.text);
    ASSERT_EQ(lines.size(), 24u);
    for (size_t row = 0; row < 24; ++row) {
        EXPECT_EQ(lines[row].size(), 48u);
        EXPECT_EQ(lines[row], lines[23 - row]);
    }
    // A gap straight up, and from there to the right a spoke, a gap and a spoke.
    EXPECT_EQ(lines[4][24], ' ');
    EXPECT_EQ(lines[3][34], '@');
    EXPECT_EQ(lines[7][45], ' ');
    EXPECT_EQ(lines[11][40], '@');
    EXPECT_NE(Shell("'" FERNWICK_MINIMAL_HOST "' missing.so").status, 0);
}

TEST(MinimalHostTest, ThePageShowsTheFile)
{
    EXPECT_THAT(FileText(FERNWICK_SOURCE "/docs/hosting.md"),
        testing::HasSubstr("```cpp\n" + FileText(FERNWICK_SOURCE "/examples/minimal_host.cpp") + "```\n"));
}

} // namespace
