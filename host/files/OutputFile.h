#pragma once
#include <filesystem>
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

/// Writes a file, which appears whole or not at all: under a name of its own that ends in `.part`, beside the file,
/// flushed to the disk and then renamed. Throws `FileError`. From any thread.
void WriteFile(const std::filesystem::path& path, std::string_view bytes);

/// Whether the name stands for no regular file but for stdout, a pipe or a device.
bool IsStream(const std::filesystem::path& path);

/// Removes the `.part` of a file that is being written, for a process about to end. Safe in signal handlers.
void RemoveUnfinishedFile() noexcept;

} // namespace fernwick
