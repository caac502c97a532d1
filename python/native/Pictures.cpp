#include "python/native/Pictures.h"
#include "host/files/OutputFile.h"
#include "host/pictures/EncodeIntegers.h"
#include "host/pictures/PictureWriter.h"
#include "host/sources/PictureSource.h"
#include "python/native/Arrays.h"
#include "python/native/Region.h"
#include "python/native/Rooms.h"
#include "python/native/Serve.h"
#include <fmt/format.h>
#include <map>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace {

template <class Number>
std::shared_ptr<const fernwick::GivenPicture> Given(
    const py::array& pixels, int width, int height, int channels)
{
    const auto* const numbers = static_cast<const Number*>(pixels.data());
    return std::make_shared<const fernwick::GivenPicture>(
        width, height, channels, std::span(numbers, static_cast<size_t>(pixels.size())));
}

std::shared_ptr<const fernwick::GivenPicture> Given(const py::array& pixels)
{
    constexpr py::ssize_t kLongestSide = 65536;
    const py::ssize_t channels = pixels.ndim() == 3 ? pixels.shape(2) : 1;
    if (pixels.ndim() < 2 || pixels.ndim() > 3 || channels < 1 || channels > 4)
        throw py::value_error("pixels: expected the shape (height, width) or (height, width, 1 to 4)");
    for (const py::ssize_t side : {pixels.shape(0), pixels.shape(1)})
        if (side < 1 || side > kLongestSide)
            throw py::value_error("pixels: expected 1 to 65536 pixels a side");
    const auto width = static_cast<int>(pixels.shape(1));
    const auto height = static_cast<int>(pixels.shape(0));
    if (py::isinstance<py::array_t<uint8_t>>(pixels))
        return Given<uint8_t>(pixels, width, height, static_cast<int>(channels));
    if (py::isinstance<py::array_t<uint16_t>>(pixels))
        return Given<uint16_t>(pixels, width, height, static_cast<int>(channels));
    if (py::isinstance<py::array_t<float>>(pixels))
        return Given<float>(pixels, width, height, static_cast<int>(channels));
    throw py::type_error("pixels: expected numbers of the type uint8, uint16 or float32");
}

/// An array of its own, in rows.
py::array Copied(const py::array& pixels)
{
    auto copy = py::reinterpret_steal<py::array>(
        py::module_::import("numpy").attr("array")(pixels, py::arg("order") = "C").release());
    py::detail::array_proxy(copy.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
    return copy;
}

template <class Number>
Number Chosen(const std::map<std::string, Number>& choices, const std::string& name, const char* argument)
{
    if (const auto found = choices.find(name); found != choices.end())
        return found->second;
    std::string text = std::string(argument) + ": expected one of";
    for (const auto& [choice, number] : choices)
        text += (number == choices.begin()->second ? " \"" : ", \"") + choice + '"';
    throw py::value_error(text + ", got \"" + name + '"');
}

py::array ReadPicture(const std::string& path, const std::string& encoding, const std::string& alpha)
{
    using namespace fernwick;
    PictureSettings settings{path};
    settings.fEncoding = Chosen<int32_t>(
        {{"", kEncodedAsUsual}, {"srgb", kEncodedSRGB}, {"linear", kEncodedLinear}}, encoding, "encoding");
    settings.fAlpha = Chosen<int32_t>(
        {{"", kAlphaAsUsual}, {"straight", kAlphaStraight}, {"premultiplied", kAlphaPremultiplied}}, alpha,
        "alpha");
    auto pixels = std::make_unique<std::vector<TMCColorRGBA>>();
    py::ssize_t width = 0;
    py::ssize_t height = 0;
    try {
        Serve(py::none(), [&](Control&) {
            PictureSource picture(settings);
            width = picture.Width();
            height = picture.Height();
            *pixels = picture.TakePixels();
        });
    } catch (const SourceError& error) {
        std::string_view text = error.what();
        constexpr std::string_view kSetting = "file: ";
        text.remove_prefix(text.starts_with(kSetting) ? kSetting.size() : 0);
        throw FileError(std::string(text));
    }
    const float* const numbers = &pixels->data()->fRed;
    return Own({height, width, 4}, std::move(pixels), numbers);
}

fernwick::PictureContent ContentOf(const std::string& name)
{
    using enum fernwick::PictureContent;
    return Chosen<fernwick::PictureContent>(
        {{"color", kColor}, {"normal", kNormal}, {"value", kValue}}, name, "content");
}

/// The pixels of an array that has four numbers each.
std::span<const TMCColorRGBA> PixelsOf(const Floats& pixels)
{
    if (pixels.ndim() != 3 || pixels.shape(2) != 4 || pixels.size() == 0)
        throw py::value_error("pixels: expected the shape (height, width, 4)");
    return {reinterpret_cast<const TMCColorRGBA*>(pixels.data()), static_cast<size_t>(pixels.size()) / 4};
}

void Write(const std::string& path, const Floats& pixels, const std::string& content, int bits, bool straight,
    bool tiled, const std::string& compression, int threads)
{
    const std::span<const TMCColorRGBA> all = PixelsOf(pixels);
    const fernwick::PictureShape shape = fernwick::PictureShape::Whole(
        static_cast<int>(pixels.shape(1)), static_cast<int>(pixels.shape(0)), ContentOf(content));
    const fernwick::PictureLayout layout{bits, straight, tiled, compression};
    Serve(py::none(), [&](Control& control) {
        fernwick::PictureWriter writer(path, shape, layout, threads);
        const auto width = static_cast<size_t>(shape.width);
        const size_t pixelsAtATime = std::max<size_t>((1 << 16) / width, 1) * width; // some milliseconds
        for (size_t first = 0; first < all.size() && !control.fCancel; first += pixelsAtATime)
            writer.Write(all.subspan(first, std::min(pixelsAtATime, all.size() - first)));
        if (!control.fCancel)
            writer.Finish();
    });
}

/// The shape of a picture, of which a region is written.
fernwick::PictureShape ShapeOf(int width, int height, const Region& region, const std::string& content,
    const std::vector<std::string>& layers)
{
    fernwick::PictureShape shape = fernwick::PictureShape::Whole(width, height, ContentOf(content));
    shape.region = PictureRegionOf(region).value_or(shape.region);
    shape.channels = layers;
    return shape;
}

/// A picture file that is written from the top, some rows at a time.
class RowWriter {
public:
    RowWriter(const std::string& path, int width, int height, const Region& region,
        const std::string& content, const std::vector<std::string>& layers, int bits, bool straight,
        bool tiled, const std::string& compression, int threads)
        : RowWriter(path, ShapeOf(width, height, region, content, layers),
            {bits, straight, tiled, compression}, threads)
    { }

    void Write(const Floats& rows, const std::vector<Floats>& layers)
    {
        const std::span<const TMCColorRGBA> pixels = PixelsOf(rows);
        if (rows.shape(1) != fWidth || rows.shape(0) > fRowsLeft)
            throw py::value_error(fmt::format("rows: expected up to {} of {} pixels, got {} of {}", fRowsLeft,
                fWidth, rows.shape(0), rows.shape(1)));
        if (layers.size() != fLayers)
            throw py::value_error(fmt::format("layers: expected {}, got {}", fLayers, layers.size()));
        std::vector<std::vector<float>> numbers;
        for (const Floats& layer : layers) {
            if (layer.ndim() != 2 || layer.shape(0) != rows.shape(0) || layer.shape(1) != fWidth)
                throw py::value_error(
                    fmt::format("layers: expected each of the shape ({}, {})", rows.shape(0), fWidth));
            numbers.emplace_back(layer.data(), layer.data() + layer.size());
        }
        fernwick::PictureWriter& writer = Open();
        fRowsLeft -= rows.shape(0);
        Serve(py::none(), [&](Control&) { writer.Write(pixels, numbers); });
    }

    void Finish()
    {
        if (fRowsLeft > 0)
            throw py::value_error(fmt::format("the picture isn't whole: {} rows are missing", fRowsLeft));
        fernwick::PictureWriter& writer = Open();
        Serve(py::none(), [&](Control&) { writer.Finish(); });
        fWriter.reset();
    }

    void Abandon() { fWriter.reset(); }

private:
    py::ssize_t fWidth;
    py::ssize_t fRowsLeft;
    size_t fLayers;
    std::unique_ptr<fernwick::PictureWriter> fWriter; // null when it is finished or abandoned

    RowWriter(const std::string& path, const fernwick::PictureShape& shape,
        const fernwick::PictureLayout& layout, int threads)
        : fWidth(shape.region.Width()), fRowsLeft(shape.region.Height()), fLayers(shape.channels.size()),
          fWriter(std::make_unique<fernwick::PictureWriter>(path, shape, layout, threads))
    { }

    fernwick::PictureWriter& Open() const
    {
        if (!fWriter)
            throw py::value_error("the picture is closed");
        return *fWriter;
    }
};

py::array Encode(const Floats& pixels, const std::string& content)
{
    const std::span<const TMCColorRGBA> all = PixelsOf(pixels);
    py::array_t<uint8_t> bytes({pixels.shape(0), pixels.shape(1), pixels.shape(2)});
    EncodeBytes(all, ContentOf(content), bytes.mutable_data());
    return bytes;
}

} // namespace

PyPicture::PyPicture(const py::array& pixels) : fArray(Copied(pixels)), fPicture(Given(fArray)) { }

void AddPictures(py::module_& module)
{
    py::class_<PyPicture>(module, "Picture")
        .def(py::init<const py::array&>(), py::arg("pixels"))
        .def("array", [](const PyPicture& picture) { return picture.fArray; });
    module.def("read_picture", &ReadPicture, py::arg("path"), py::arg("encoding"), py::arg("alpha"));
    module.def("write_picture", &Write, py::arg("path"), py::arg("pixels"), py::arg("content"),
        py::arg("bits"), py::arg("straight"), py::arg("tiled"), py::arg("compression"), py::arg("threads"));
    module.def("encode", &Encode, py::arg("pixels"), py::arg("content"));
    py::class_<RowWriter>(module, "RowWriter")
        .def(py::init<const std::string&, int, int, const Region&, const std::string&,
                 const std::vector<std::string>&, int, bool, bool, const std::string&, int>(),
            py::arg("path"), py::arg("width"), py::arg("height"), py::arg("region"), py::arg("content"),
            py::arg("layers"), py::arg("bits"), py::arg("straight"), py::arg("tiled"), py::arg("compression"),
            py::arg("threads"))
        .def("write", &RowWriter::Write, py::arg("rows"), py::arg("layers"))
        .def("finish", &RowWriter::Finish)
        .def("abandon", &RowWriter::Abandon);
    module.def(
        "require_fit",
        [](const std::string& path, int bits, bool straight, bool tiled, const std::string& compression) {
            fernwick::RequireFit(path, {bits, straight, tiled, compression});
        },
        py::arg("path"), py::arg("bits") = 0, py::arg("straight") = false, py::arg("tiled") = false,
        py::arg("compression") = "");
    module.def(
        "require_writable", [](const std::string& path) { fernwick::RequireWritable(path); },
        py::arg("path"));
    module.def(
        "is_stream", [](const std::string& path) { return fernwick::IsStream(path); }, py::arg("path"));
    module.def(
        "holds_layers", [](const std::string& path) { return fernwick::HoldsLayers(path); }, py::arg("path"));
    module.def("compressions", [] {
        return std::vector<std::string>(fernwick::Compressions().begin(), fernwick::Compressions().end());
    });
}
