#pragma once
#include "host/documents/GraphSequence.h"
#include "python/native/Meshes.h"
#include <map>
#include <mutex>

/// A graph over frames, and the models that it is baked onto. One thread at a time reads files by it.
struct SequenceState {
    SequenceState(fernwick::Json document, std::string name, const std::filesystem::path& folder)
        : fFolder(folder), fSequence(std::move(document), std::move(name), folder)
    { }

    std::mutex fMutex;
    std::filesystem::path fFolder;
    fernwick::GraphSequence fSequence;
    fernwick::DocumentFiles fModels; ///< that it is baked onto
    std::map<const fernwick::Geometry*, std::filesystem::path>
        fMeshes; ///< given ones, and the files they stand for
};

/// A graph at one frame.
struct PyDocument {
    fernwick::GraphDocument fGraph;
    std::vector<std::filesystem::path> fFiles; ///< that were read for it, at this frame or one before
    std::shared_ptr<SequenceState> fState;
};
