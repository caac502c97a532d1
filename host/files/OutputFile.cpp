#include "host/files/OutputFile.h"
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <optional>
#include <random>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace fernwick {

namespace {

namespace fs = std::filesystem;

constexpr const char* kStdout = "-";

/// The passing name of a file that isn't finished, or of a folder.
struct Unfinished {
    char name[PATH_MAX];
    std::atomic<bool> isTaken{false};
    std::atomic<bool> mayBeThere{false};
    std::atomic<bool> isFolder{false};
};
constexpr int kMostAtOnce = 64;
Unfinished gUnfinished[kMostAtOnce];
static_assert(std::atomic<bool>::is_always_lock_free); // for signal handlers

[[noreturn]] void Fail(const fs::path& path, int reason)
{
    const std::string name = path == kStdout ? "stdout" : path.string();
    throw FileError(fmt::format("{}: can't be written: {}", name, std::generic_category().message(reason)));
}

/// Looks up what is there under a name, links followed.
/// @return false, with the reason in errno, when there is nothing
bool Look(const fs::path& path, struct stat& found) { return stat(path.c_str(), &found) == 0; }

bool MayWrite(const fs::path& path) { return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0; }

/// The file that a name leads to in the end, which needn't be there.
fs::path EndOf(const fs::path& path)
{
    constexpr int kMostLinks = 40; // as many as the kernel follows
    fs::path end = path;
    std::error_code failure;
    for (int links = 0; fs::is_symlink(end, failure); ++links) {
        if (links == kMostLinks)
            Fail(path, ELOOP);
        end = end.parent_path() / fs::read_symlink(end, failure);
        if (failure)
            Fail(path, failure.value());
    }
    return end;
}

/// An open file, closed with what holds it.
class Descriptor {
public:
    explicit Descriptor(int number) : fNumber(number) { }
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Number() const { return fNumber; }
    /// @return false when the last bytes didn't get to the file
    bool Close()
    {
        const int number = std::exchange(fNumber, -1);
        return number < 0 || close(number) == 0;
    }

private:
    int fNumber;
};

/// @return false, with the reason in errno, when not all bytes could be written
bool WriteAll(int file, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written > 0)
            bytes.remove_prefix(static_cast<size_t>(written));
        else if (written == 0 || errno != EINTR)
            return false;
    }
    return true;
}

struct GiveBack {
    void operator()(Unfinished* slot) const { slot->isTaken = false; }
};
using Slot = std::unique_ptr<Unfinished, GiveBack>;

/// @param reported  what messages call the file
Slot TakeSlot(const fs::path& reported)
{
    for (Unfinished& slot : gUnfinished)
        if (!slot.isTaken.exchange(true))
            return Slot(&slot);
    Fail(reported, EMFILE);
}

/// Makes something under a new name beside a file.
/// @param make  takes the name; answers 0 or more, or -1 with the reason in errno
template <class Make>
int MakeBeside(const fs::path& file, const fs::path& reported, Unfinished& slot, const Make& make)
{
    constexpr size_t kMostOfName = 200; // bytes; what comes behind must fit in too
    constexpr int kAttempts = 8;
    const std::string start = file.filename().string().substr(0, kMostOfName);
    for (int attempt = 1;; ++attempt) {
        const fs::path name
            = file.parent_path() / fmt::format("{}.{:08x}.part", start, std::random_device()());
        if (name.native().size() >= sizeof slot.name)
            Fail(reported, ENAMETOOLONG);
        std::strcpy(slot.name, name.c_str());
        slot.mayBeThere = true; // before it is there, so that there is no moment between
        const int made = make(slot.name);
        if (made >= 0)
            return made;
        const int reason = errno;
        slot.mayBeThere = false;
        if (reason != EEXIST || attempt == kAttempts)
            Fail(reported, reason);
    }
}

/// A file beside another one under a passing name, removed unless it got the other's.
class UnfinishedFile {
public:
    /// @param final     the file that it is to be
    /// @param reported  what messages call it
    UnfinishedFile(fs::path final, const fs::path& reported)
        : fFinal(std::move(final)), fReported(reported), fSlot(TakeSlot(reported)), fFile(Create())
    { }
    ~UnfinishedFile()
    {
        unlink(fSlot->name);
        fSlot->mayBeThere = false;
    }
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;

    int Number() const { return fFile.Number(); }
    void Flush()
    {
        if (fsync(fFile.Number()) != 0)
            Fail(fReported, errno);
    }
    /// Takes over owner and mode of the file that it replaces.
    void Resemble(const struct stat& old)
    {
        // Only the superuser may give a file away; for others it stays theirs.
        [[maybe_unused]] const int ignored = fchown(fFile.Number(), old.st_uid, old.st_gid);
        if (fchmod(fFile.Number(), old.st_mode & 07777) != 0)
            Fail(fReported, errno);
    }
    void Finish()
    {
        if (!fFile.Close() || std::rename(fSlot->name, fFinal.c_str()) != 0)
            Fail(fReported, errno);
    }

private:
    fs::path fFinal;
    fs::path fReported;
    Slot fSlot;
    Descriptor fFile;

    int Create() const
    {
        return MakeBeside(fFinal, fReported, *fSlot,
            [](const char* name) { return open(name, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666); });
    }
};

/// Removes a folder and the files in it, by nothing that a signal handler may not call.
void RemoveFolder(const char* name)
{
    struct Entry { // as the kernel lays it out
        uint64_t number;
        int64_t next;
        uint16_t size;
        unsigned char type;
        char name[NAME_MAX + 1];
    };
    const int folder = open(name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return;
    alignas(Entry) char entries[4096];
    for (long size; (size = syscall(SYS_getdents64, folder, entries, sizeof entries)) > 0;)
        for (long at = 0; at < size;) {
            const auto& entry = *reinterpret_cast<const Entry*>(entries + at);
            unlinkat(folder, entry.name, 0);
            at += entry.size;
        }
    close(folder);
    rmdir(name);
}

void RequireStream(const fs::path& path)
{
    if (path != kStdout && !MayWrite(path))
        Fail(path, errno);
    const int flags = path == kStdout ? fcntl(STDOUT_FILENO, F_GETFL) : O_WRONLY;
    if (flags < 0 || (flags & O_ACCMODE) == O_RDONLY)
        Fail(path, EBADF);
}

/// Throws when what is there under the name may not be replaced.
/// @return whether there is a file
bool RequireReplaceable(const fs::path& path, struct stat& old)
{
    if (!Look(path, old)) {
        if (errno != ENOENT)
            Fail(path, errno);
        return false;
    }
    if (S_ISDIR(old.st_mode))
        throw FileError(path.string() + ": is a folder");
    if (!MayWrite(path))
        Fail(path, errno);
    return true;
}

/// The innermost folder that is there of those that a file is to lie in.
fs::path FolderThatIs(const fs::path& file)
{
    struct stat found;
    fs::path folder = file.parent_path();
    while (!folder.empty() && !Look(folder, found) && errno == ENOENT)
        folder = folder.parent_path();
    return folder;
}

} // namespace

bool IsStream(const fs::path& path)
{
    struct stat found;
    return path == kStdout || (Look(path, found) && !S_ISREG(found.st_mode) && !S_ISDIR(found.st_mode));
}

void RequireWritable(const fs::path& path)
{
    if (IsStream(path))
        return RequireStream(path);
    struct stat old;
    RequireReplaceable(path, old);
    const fs::path end = EndOf(path);
    constexpr size_t kPage = 4096; // bytes; a full disk may still take a name
    UnfinishedFile trial(FolderThatIs(end) / end.filename(), path);
    if (!WriteAll(trial.Number(), std::string(kPage, '\0')))
        Fail(path, errno);
    trial.Flush();
}

void MakeFolderOf(const fs::path& path)
{
    const fs::path folder = EndOf(path).parent_path();
    std::error_code failure;
    if (!folder.empty())
        fs::create_directories(folder, failure);
    if (failure)
        throw FileError(fmt::format("{}: its folder can't be made: {}", path.string(), failure.message()));
}

struct OutputFile::State {
    fs::path path;
    std::optional<Descriptor> stream;         // closed by itself; none for stdout
    std::optional<UnfinishedFile> unfinished; // none for a stream
    std::optional<struct stat> old;

    int Number() const
    {
        if (unfinished)
            return unfinished->Number();
        return stream ? stream->Number() : STDOUT_FILENO;
    }
};

OutputFile::OutputFile(const fs::path& path) : fState(std::make_unique<State>())
{
    fState->path = path;
    if (path == kStdout) {
        if (std::fflush(stdout) != 0)
            Fail(path, errno);
    } else if (fernwick::IsStream(path)) {
        if (fState->stream.emplace(open(path.c_str(), O_WRONLY | O_CLOEXEC)).Number() < 0)
            Fail(path, errno);
    } else {
        struct stat old;
        if (RequireReplaceable(path, old))
            fState->old = old;
        fState->unfinished.emplace(EndOf(path), path);
    }
}

OutputFile::~OutputFile() = default;

bool OutputFile::IsStream() const { return !fState->unfinished; }

void OutputFile::Write(std::string_view bytes)
{
    if (!WriteAll(fState->Number(), bytes))
        Fail(fState->path, errno);
}

void OutputFile::WriteAt(int64_t offset, std::string_view bytes)
{
    if (lseek(fState->Number(), offset, SEEK_SET) < 0)
        Fail(fState->path, errno);
    Write(bytes);
}

size_t OutputFile::ReadAt(int64_t offset, std::span<char> bytes) const
{
    const ssize_t count = pread(fState->Number(), bytes.data(), bytes.size(), offset);
    if (count < 0)
        Fail(fState->path, errno);
    return static_cast<size_t>(count);
}

void OutputFile::Finish()
{
    if (fState->stream && !fState->stream->Close())
        Fail(fState->path, errno);
    if (!fState->unfinished)
        return;
    fState->unfinished->Flush();
    if (fState->old)
        fState->unfinished->Resemble(*fState->old);
    fState->unfinished->Finish();
}

struct PassingFolder::State {
    Slot slot;
    fs::path path = {};

    ~State()
    {
        std::error_code ignored;
        fs::remove_all(path, ignored);
        slot->mayBeThere = false;
        slot->isFolder = false;
    }
};

PassingFolder::PassingFolder(const fs::path& file) : fState(new State{TakeSlot(file)})
{
    fState->slot->isFolder = true;
    MakeBeside(EndOf(file), file, *fState->slot, [](const char* name) { return mkdir(name, 0777); });
    fState->path = fState->slot->name;
}

PassingFolder::~PassingFolder() = default;

const fs::path& PassingFolder::Path() const { return fState->path; }

void WriteFile(const fs::path& path, std::string_view bytes)
{
    OutputFile file(path);
    file.Write(bytes);
    file.Finish();
}

void RemoveUnfinishedFiles() noexcept
{
    for (const Unfinished& slot : gUnfinished)
        if (slot.mayBeThere) {
            if (slot.isFolder)
                RemoveFolder(slot.name);
            else
                unlink(slot.name);
        }
}

} // namespace fernwick
