#include "host/documents/GraphSequence.h"
#include "host/files/RegularFile.h"
#include <cerrno>
#include <fmt/format.h>
#include <fstream>
#include <system_error>

namespace fernwick {

namespace {

constexpr size_t kMostBytes = 64 << 20; // of a file

bool IsStdin(const std::filesystem::path& file) { return file == "-"; }

/// What texts call a file.
std::string NameOf(const std::filesystem::path& file) { return IsStdin(file) ? "stdin" : file.string(); }

/// All of a file, or of a pipe that ends.
std::string TextOf(const std::filesystem::path& file)
{
    const auto fail = [&file](const std::string& reason) {
        throw GraphError(fmt::format("{}: can't be read: {}", file.string(), reason));
    };
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    std::error_code failure;
    if (!stream || std::filesystem::is_directory(file, failure)) {
        const int reason = errno;
        const std::string other = WhyNoFile(file);
        fail(other.empty() ? std::generic_category().message(reason) : other);
    }
    std::string text;
    std::vector<char> piece(1 << 20);
    while (stream.read(piece.data(), static_cast<std::streamsize>(piece.size())), stream.gcount() > 0) {
        text.append(piece.data(), static_cast<size_t>(stream.gcount()));
        if (text.size() > kMostBytes)
            fail(fmt::format("it goes on behind {} MiB, and a graph is shorter", kMostBytes >> 20));
    }
    return text;
}

/// Runs what throws a `GraphError`, with a name before its text.
template <class Make> auto Named(const std::string& name, const Make& make)
{
    try {
        return make();
    } catch (const GraphError& error) {
        if (name.empty())
            throw;
        throw GraphError(fmt::format("{}: {}", name, error.what()));
    }
}

} // namespace

Json ReadGraphFile(const std::filesystem::path& file)
{
    const std::string text = TextOf(IsStdin(file) ? "/dev/stdin" : file);
    return Named(NameOf(file), [&text] { return ParseJson(text); });
}

GraphSequence::GraphSequence(Json document, std::string name, std::filesystem::path folder)
    : fName(std::move(name)), fFolder(std::move(folder)), fDocument(std::move(document)),
      fKeys(Named(fName, [this] { return Keys(fDocument); }))
{ }

GraphSequence::GraphSequence(Json document, const std::filesystem::path& file)
    : GraphSequence(std::move(document), NameOf(file), std::filesystem::absolute(file).parent_path())
{ }

GraphDocument GraphSequence::At(double frame)
{
    const bool isOneOfMany = HasKeys() && !fName.empty();
    return Named(isOneOfMany ? fmt::format("{}, frame {}", fName, frame) : fName, [this, frame] {
        fKeys.Store(frame);
        fFiles.BeginFrame();
        return GraphDocument::Make(fDocument, fFolder, fFiles);
    });
}

} // namespace fernwick
