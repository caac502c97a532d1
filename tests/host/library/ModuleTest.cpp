#include "tests/support/BakeText.h"
#include "tests/support/Shell.h"
#include <sys/stat.h>

using namespace fernwick;

namespace {

std::string ErrorOf(const std::filesystem::path& path)
{
    try {
        const Library library(path);
    } catch (const LibraryError& error) {
        return error.what();
    }
    return "opened";
}

/// What lies behind the end of a file stops the program when it is touched.
TEST(Module, AFileThatIsCutOffIsRefusedBeforeItIsMapped)
{
    const FreshFolder place;
    const std::string whole = FileText(FERNWICK_MODULE);
    for (const size_t length : {64u, 100u, 5000u, 20000u}) {
        Store(place / "cut.so", whole.substr(0, length));
        EXPECT_THAT(ErrorOf(place / "cut.so"),
            testing::EndsWith("cut.so: can't be loaded: the file is cut off after " + std::to_string(length)
                + " bytes; build or copy it anew"));
    }
    for (const std::string& text : {std::string(), whole.substr(0, 20), std::string(1000, 'x')}) {
        Store(place / "other.so", text);
        EXPECT_THAT(ErrorOf(place / "other.so"), testing::HasSubstr("other.so: can't be loaded: "));
    }
}

TEST(Module, WhatIsNoFileIsCalledByItsName)
{
    const FreshFolder place;
    mkfifo((place / "pipe").c_str(), 0600);
    EXPECT_THAT(ErrorOf(place.Path()), testing::HasSubstr(": can't be loaded: it is a folder; name "));
    EXPECT_THAT(ErrorOf(place / "pipe"), testing::HasSubstr(": can't be loaded: it is a pipe; "));
    EXPECT_THAT(ErrorOf("/dev/zero"), testing::HasSubstr(": can't be loaded: it is a device; "));
    EXPECT_THAT(ErrorOf(place / "none"), testing::HasSubstr(": no such file; "));
}

} // namespace
