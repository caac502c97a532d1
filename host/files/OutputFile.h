#pragma once
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <stdexcept>
#include <string_view>

namespace fernwick {

/// A file that can't be written. The text names the file and the reason.
class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Every file of the host is written this way. The name `-` stands for stdout. A symbolic link is followed, and a file
// that is there already keeps its mode and, where that is allowed, its owner; one that is protected from writing isn't
// replaced. What is no regular file, such as a pipe or a device, gets the bytes as they come.

/// Tries whether `WriteFile` could write the file: whether its folder takes a file, and the disk a page of it. To be
/// asked before long work. Folders may be missing that `MakeFolderOf` can make. Throws `FileError`.
void RequireWritable(const std::filesystem::path& path);

/// Makes the folders that a file lies in where they are missing. Throws `FileError`.
void MakeFolderOf(const std::filesystem::path& path);

/// A file that is being written. It appears whole or not at all: it lies under a name of its own that ends in `.part`
/// beside the place where it belongs, is flushed to the disk when it is finished and then renamed. One that isn't
/// finished vanishes with this object. A stream gets the bytes as they come; opening a pipe waits for its reader. All
/// operations throw `FileError`. One thread at a time; up to 64 files at once.
class OutputFile {
public:
    explicit OutputFile(const std::filesystem::path& path);
    ~OutputFile();

    /// Whether the file takes bytes at its end only, and gives none back.
    bool IsStream() const;

    /// Adds bytes behind those that were written last.
    void Write(std::string_view bytes);

    /// Writes over what is there, or beyond it.
    /// @param offset  from the start, in bytes; of no stream
    void WriteAt(int64_t offset, std::string_view bytes);

    /// @param offset  from the start, in bytes; of no stream
    /// @return how many bytes were read; fewer than asked for at the end of the file
    size_t ReadAt(int64_t offset, std::span<char> bytes) const;

    /// To be called once, as the last.
    void Finish();

private:
    struct State;
    std::unique_ptr<State> fState;
};

/// A folder for passing files beside a file, which vanishes with this object and all files in it. Throws `FileError`.
class PassingFolder {
public:
    explicit PassingFolder(const std::filesystem::path& file);
    ~PassingFolder();

    const std::filesystem::path& Path() const;

private:
    struct State;
    std::unique_ptr<State> fState;
};

/// Writes a file as `OutputFile` does. Throws `FileError`. From any thread.
void WriteFile(const std::filesystem::path& path, std::string_view bytes);

/// Whether the name stands for no regular file but for stdout, a pipe or a device.
bool IsStream(const std::filesystem::path& path);

/// Removes the `.part` of every file that is being written, and the passing folders, for a process about to end. Safe
/// in signal handlers.
void RemoveUnfinishedFiles() noexcept;

} // namespace fernwick
