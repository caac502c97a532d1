#pragma once
#include "host/documents/DocumentFiles.h"
#include "host/documents/GraphDocument.h"
#include "host/documents/Keys.h"

namespace fernwick {

/// The frame of a document that is asked for none.
constexpr double kFirstFrame = 1;

/// Parses the file of a document, of at most 64 MiB, or stdin under the name `-`, whose files are found from the
/// current folder. What it describes isn't looked at. Throws `GraphError`, which names the file.
Json ReadGraphFile(const std::filesystem::path& file);

/// A document over frames: its keyed values (see `Keys`) change from one to the next. The models and pictures that it
/// names are read once for all frames that want them.
class GraphSequence {
public:
    /// @param name    of the document, for texts; may be empty
    /// @param folder  where relative file names start
    /// Throws `GraphError` for keys that can't be used.
    GraphSequence(Json document, std::string name, std::filesystem::path folder);
    /// The same of a file.
    GraphSequence(Json document, const std::filesystem::path& file);

    bool HasKeys() const { return !fKeys.IsEmpty(); }
    /// What its documents read, to give it what a program has instead of files.
    DocumentFiles& Files() { return fFiles; }
    /// The document at a frame. Throws `GraphError`.
    GraphDocument At(double frame);

    GraphSequence(const GraphSequence&) = delete;
    GraphSequence& operator=(const GraphSequence&) = delete;

private:
    std::string fName;
    std::filesystem::path fFolder;
    Json fDocument; // as of the last frame
    Keys fKeys;
    DocumentFiles fFiles;
};

} // namespace fernwick
