#pragma once
#include "host/sources/PictureSource.h"

namespace fernwick {

/// What a picture file holds: linear light with a straight alpha.
struct FilePicture {
    int fWidth;
    int fHeight;
    std::vector<TMCColorRGBA> fPixels; ///< row 0 at the top
};

/// Reads a file of any of the usual formats that OpenImageIO knows, up to 16384 by 16384 pixels. One that is cut off or
/// damaged is refused. Throws `SourceError`. Done by `host/formats`.
FilePicture ReadPictureFile(const PictureSettings& settings);

} // namespace fernwick
