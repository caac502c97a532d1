#include "host/sources/PictureSource.h"

// A page reads no files: pictures are given.

namespace fernwick {

PictureSource::PictureSource(const Settings& settings)
{
    throw SourceError(settings.fFile.empty()
            ? "file: expected the name of a picture, got none"
            : "file: there is no picture \"" + settings.fFile.string() + "\"; drop it onto the page");
}

} // namespace fernwick
