#include "host/files/OutputFile.h"
#include "tests/support/BakeText.h"
#include "tests/support/Shell.h"
#include <csignal>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace fernwick;

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::StartsWith;
using testing::UnorderedElementsAre;

class OutputFileTest : public testing::Test {
protected:
    const FreshFolder fFolder;

    /// What both say of a file that can't be written.
    static std::string ErrorOf(const fs::path& file)
    {
        std::string answers[2] = {"fine", "fine"};
        try {
            RequireWritable(file);
        } catch (const FileError& error) {
            answers[0] = error.what();
        }
        try {
            WriteFile(file, "new");
        } catch (const FileError& error) {
            answers[1] = error.what();
        }
        EXPECT_EQ(answers[0] == "fine", answers[1] == "fine") << answers[0] << answers[1];
        return answers[0];
    }
};

/// Does something as a user whom the protection of files holds for.
template <class Do> void AsPlainUser(const Do& act)
{
    constexpr uid_t kNobody = 65534;
    const bool isRoot = geteuid() == 0;
    ASSERT_FALSE(isRoot && seteuid(kNobody) != 0);
    act();
    ASSERT_FALSE(isRoot && seteuid(0) != 0);
}

TEST_F(OutputFileTest, LinksAreFollowedAndAReplacedFileKeepsItsMode)
{
    Store(fFolder / "real" / "old", "old");
    fs::permissions(fFolder / "real" / "old", fs::perms(0640));
    fs::create_symlink("real/old", fFolder / "link");
    fs::create_symlink("link", fFolder / "again");
    fs::create_symlink("real/none", fFolder / "dangling");
    for (const std::string name : {"again", "dangling"}) {
        RequireWritable(fFolder / name);
        WriteFile(fFolder / name, name);
        EXPECT_TRUE(fs::is_symlink(fFolder / name));
        EXPECT_EQ(FileText(fFolder / name), name);
    }
    EXPECT_THAT(FilesIn(fFolder / "real"), UnorderedElementsAre("old", "none"));
    EXPECT_EQ(fs::status(fFolder / "real" / "old").permissions(), fs::perms(0640));
    fs::create_symlink("round", fFolder / "round");
    EXPECT_THAT(
        ErrorOf(fFolder / "round"), StartsWith((fFolder / "round").string() + ": can't be written: "));
}

TEST_F(OutputFileTest, IsTriedBeforeTheWorkWithoutATrace)
{
    RequireWritable(fFolder / "new" / "folder" / "file");
    EXPECT_THAT(FilesIn(fFolder.Path()), testing::IsEmpty());
    Store(fFolder / "file", "old");
    fs::create_directory(fFolder / "folder");
    for (const fs::path& bad : {fFolder / "file" / "new", fFolder / "folder", fs::path("/proc/new/file")})
        EXPECT_THAT(ErrorOf(bad), StartsWith(bad.string() + ": "));

    fs::permissions(fFolder.Path(), fs::perms(0777));
    fs::create_directory(fFolder / "closed");
    fs::permissions(fFolder / "closed", fs::perms(0555));
    fs::permissions(fFolder / "file", fs::perms(0444));
    AsPlainUser([this] {
        for (const fs::path& bad :
            {fFolder / "closed" / "new", fFolder / "closed" / "folder" / "new", fFolder / "file"})
            EXPECT_EQ(ErrorOf(bad), bad.string() + ": can't be written: Permission denied");
    });
    EXPECT_EQ(FileText(fFolder / "file"), "old");
    EXPECT_THAT(FilesIn(fFolder.Path()), UnorderedElementsAre("file", "folder", "closed"));
}

TEST_F(OutputFileTest, APipeGetsTheBytes)
{
    const fs::path pipe = fFolder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_TRUE(IsStream(pipe));
    RequireWritable(pipe); // doesn't wait for a reader
    std::string got;
    std::thread reader([&] { got = FileText(pipe); });
    const std::string bytes(300000, 'x');
    WriteFile(pipe, bytes);
    reader.join();
    EXPECT_EQ(got, bytes);
    EXPECT_THAT(FilesIn(fFolder.Path()), ElementsAre("pipe"));
    EXPECT_EQ(ErrorOf("/dev/null"), "fine");
    EXPECT_THROW(WriteFile("/dev/full", "x"), FileError);
}

void EndTidily(int)
{
    RemoveUnfinishedFiles();
    _exit(3);
}

TEST_F(OutputFileTest, AProcessThatEndsInTheMiddleLeavesNothing)
{
    Store(fFolder / "file", "old");
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGTERM, EndTidily);
        WriteFile(fFolder / "file", std::string(size_t{512} << 20, 'x')); // takes a while
        _exit(0);
    }
    while (FilesIn(fFolder.Path()).size() < 2 && FileText(fFolder / "file") == "old")
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    kill(child, SIGTERM);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 3);
    EXPECT_THAT(FilesIn(fFolder.Path()), ElementsAre("file"));
    EXPECT_EQ(FileText(fFolder / "file"), "old");
}

} // namespace
