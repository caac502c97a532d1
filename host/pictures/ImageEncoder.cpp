#include "host/files/PictureAttributes.h"
#include "host/pictures/OutputProxy.h"
#include "host/pictures/PictureEncoder.h"
#include <OpenImageIO/imageio.h>
#include <mutex>
#include <thread>

namespace fernwick {

namespace {

/// The present time would make equal pictures unequal files.
constexpr const char* kNoTime = "1970:01:01 00:00:00";

/// What an encoder needs to know of the picture.
OIIO::ImageSpec SpecOf(const PictureEncoding& encoding)
{
    const PictureShape& shape = encoding.shape;
    OIIO::ImageSpec spec(shape.region.Width(), shape.region.Height(), 4,
        encoding.layout.bits == 16 ? OIIO::TypeDesc::HALF : OIIO::TypeDesc::FLOAT);
    spec.x = shape.region.left;
    spec.y = shape.region.top;
    spec.full_width = shape.width;
    spec.full_height = shape.height;
    for (const std::string& name : shape.channels) {
        ++spec.nchannels;
        spec.channelnames.push_back(name);
    }
    spec.attribute("DateTime", kNoTime);
    spec.attribute(kAlphaAttribute, encoding.layout.straight ? kStraightAlpha : kPremultipliedAlpha);
    return spec;
}

class ImageEncoder final : public PictureEncoder {
public:
    ImageEncoder(const PictureEncoding& encoding, PictureFormat)
        : fProxy(encoding.file), fSpec(SpecOf(encoding)), fY(fSpec.y)
    {
        const int threads
            = encoding.threads > 0 ? encoding.threads : static_cast<int>(std::thread::hardware_concurrency());
        OIIO::attribute("exr_threads", threads);
        fOutput = OIIO::ImageOutput::create("openexr", &fProxy);
        if (!fOutput)
            throw PictureError(OIIO::geterror());
        Require(fOutput->open(".exr", fSpec));
    }

    void Write(int rows, const void* numbers) override
    {
        Require(fOutput->write_scanlines(fY, fY + rows, 0, OIIO::TypeDesc::FLOAT, numbers));
        fY += rows;
    }

    void Finish() override
    {
        Require(fOutput->close());
        fProxy.Finish();
    }

private:
    OutputProxy fProxy;
    OIIO::ImageSpec fSpec;
    std::unique_ptr<OIIO::ImageOutput> fOutput;
    int fY;

    void Require(bool done) const
    {
        fProxy.Require();
        if (!done)
            throw PictureError(fOutput->geterror());
    }
};

} // namespace

std::unique_ptr<PictureEncoder> MakeImageEncoder(const PictureEncoding& encoding, PictureFormat format)
{
    return std::make_unique<ImageEncoder>(encoding, format);
}

} // namespace fernwick
