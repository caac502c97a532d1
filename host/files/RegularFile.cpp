#include "host/files/RegularFile.h"
#include <fstream>

namespace fernwick {

std::string WhyNoFile(const std::filesystem::path& path)
{
    std::error_code failure;
    switch (std::filesystem::status(path, failure).type()) {
    case std::filesystem::file_type::regular:
        return std::ifstream(path).is_open() ? "" : "it can't be opened; is it yours to read?";
    case std::filesystem::file_type::not_found:
        return "there is no such file";
    case std::filesystem::file_type::directory:
        return "it is a folder";
    case std::filesystem::file_type::fifo:
    case std::filesystem::file_type::socket:
        return "it is a pipe; write what comes out of it to a file first";
    case std::filesystem::file_type::character:
    case std::filesystem::file_type::block:
        return "it is a device";
    default:
        return failure ? failure.message() : "it is no file";
    }
}

} // namespace fernwick
