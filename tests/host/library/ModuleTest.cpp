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
                + " bytes; build or install it, or name another with --library or FERNWICK_LIBRARY"));
    }
    for (const std::string& text : {std::string(), whole.substr(0, 20), std::string(1000, 'x')}) {
        Store(place / "other.so", text);
        const std::string error = ErrorOf(place / "other.so");
        EXPECT_THAT(error,
            testing::AllOf(testing::HasSubstr("other.so: can't be loaded: "),
                testing::EndsWith(
                    "; build or install it, or name another with --library or FERNWICK_LIBRARY")));
        EXPECT_EQ(error.find("other.so"), error.rfind("other.so")) << "twice: " << error;
    }
}

TEST(Module, WhatIsNoFileIsCalledByItsName)
{
    const FreshFolder place;
    mkfifo((place / "pipe").c_str(), 0600);
    EXPECT_THAT(ErrorOf(place.Path()), testing::HasSubstr(": can't be loaded: it is a folder; "));
    EXPECT_THAT(ErrorOf(place / "pipe"), testing::HasSubstr(": can't be loaded: it is a pipe; "));
    EXPECT_THAT(ErrorOf("/dev/zero"), testing::HasSubstr(": can't be loaded: it is a device; "));
    EXPECT_THAT(ErrorOf(place / "none"), testing::HasSubstr(": can't be loaded: there is no such file; "));
}

} // namespace
