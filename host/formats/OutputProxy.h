#pragma once
#include "host/files/OutputFile.h"
#include <OpenImageIO/filesystem.h>
#include <exception>
#include <vector>

namespace fernwick {

/// An output file as OpenImageIO's encoders take it. They, and the libraries behind them, forget failures at times or
/// can't bear exceptions, so the first one is kept. What a stream gets is held in memory until the end, since encoders
/// go back in their files.
class OutputProxy final : public OIIO::Filesystem::IOProxy {
public:
    explicit OutputProxy(OutputFile& file) : IOProxy("", Write), fFile(file) { }

    const char* proxytype() const override { return "fernwick"; }
    size_t read(void* bytes, size_t size) override;
    size_t write(const void* bytes, size_t size) override;
    size_t pread(void* bytes, size_t size, int64_t offset) override;
    size_t pwrite(const void* bytes, size_t size, int64_t offset) override;
    size_t size() const override { return fSize; }

    /// Throws what failed first, if anything did.
    void Require() const;

    /// Gives a stream what it is to get. Throws `FileError`.
    void Finish();

private:
    OutputFile& fFile;
    size_t fSize = 0;
    std::vector<char> fHeld; // of a stream
    std::exception_ptr fFailure;
};

} // namespace fernwick
