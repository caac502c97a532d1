#include "host/formats/OutputProxy.h"
#include <algorithm>
#include <cstring>

namespace fernwick {

size_t OutputProxy::read(void* bytes, size_t size)
{
    const size_t count = pread(bytes, size, m_pos);
    m_pos += static_cast<int64_t>(count);
    return count;
}

size_t OutputProxy::write(const void* bytes, size_t size)
{
    const size_t count = pwrite(bytes, size, m_pos);
    m_pos += static_cast<int64_t>(count);
    return count;
}

size_t OutputProxy::pread(void* bytes, size_t size, int64_t offset)
{
    const auto start = static_cast<size_t>(offset);
    if (start >= fSize || fFailure)
        return 0;
    const size_t count = std::min(size, fSize - start);
    if (fFile.IsStream()) {
        std::memcpy(bytes, fHeld.data() + start, count);
        return count;
    }
    try {
        return fFile.ReadAt(offset, {static_cast<char*>(bytes), count});
    } catch (...) {
        fFailure = std::current_exception();
        return 0;
    }
}

size_t OutputProxy::pwrite(const void* bytes, size_t size, int64_t offset)
{
    const auto start = static_cast<size_t>(offset);
    if (fFailure || size == 0)
        return 0;
    try {
        if (fFile.IsStream()) {
            fHeld.resize(std::max(fHeld.size(), start + size));
            std::memcpy(fHeld.data() + start, bytes, size);
        } else {
            fFile.WriteAt(offset, {static_cast<const char*>(bytes), size});
        }
    } catch (...) {
        fFailure = std::current_exception();
        return 0;
    }
    fSize = std::max(fSize, start + size);
    return size;
}

void OutputProxy::Require() const
{
    if (fFailure)
        std::rethrow_exception(fFailure);
}

void OutputProxy::Finish()
{
    Require();
    if (fFile.IsStream())
        fFile.Write({fHeld.data(), fHeld.size()});
}

} // namespace fernwick
