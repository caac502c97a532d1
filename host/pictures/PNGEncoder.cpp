#include "host/pictures/PictureEncoder.h"
#include "host/threads/Parallel.h"
#include <algorithm>
#include <bit>
#include <cstring>
#include <new>
#include <zlib.h>

namespace fernwick {

namespace {

// A PNG is written as the standard at w3.org/TR/png-3 has it. Its one zlib stream (RFC 1950) is put together from
// stretches of rows that are compressed side by side: each is a deflate stream (RFC 1951) that ends at a byte, knows
// the bytes before it as its dictionary, and is as long as its place in the picture says, so that neither the threads
// nor the bands show in the file.

constexpr size_t kStretch = 256 << 10; // bytes before compression, at least a row
constexpr size_t kStretchesAtATime = 32;
constexpr size_t kWindow = 32768; // bytes that deflate looks back
/// The fastest level with the search that pays for filtered rows; 6 is 5 % smaller and takes twice the time.
constexpr int kLevel = 4;
constexpr unsigned char kZlibHead[] = {0x78, 0x5e}; // window of 32768 bytes, a fast level

using Bytes = std::vector<unsigned char>;

void Append32(Bytes& bytes, uint32_t number)
{
    for (const int shift : {24, 16, 8, 0})
        bytes.push_back(static_cast<unsigned char>(number >> shift));
}

enum Filter : unsigned char { kNone, kSub, kUp, kAverage, kPaeth };

/// The byte that a filter expects. Numbers of 16 bits are enough, and processors take eight at a time.
unsigned char Predicted(Filter filter, int16_t left, int16_t above, int16_t aboveLeft)
{
    switch (filter) {
    case kNone:
        return 0;
    case kSub:
        return static_cast<unsigned char>(left);
    case kUp:
        return static_cast<unsigned char>(above);
    case kAverage:
        return static_cast<unsigned char>((left + above) / 2);
    case kPaeth:
        break;
    }
    const auto size = [](int number) { return static_cast<int16_t>(number < 0 ? -number : number); };
    const int16_t toLeft = size(above - aboveLeft);
    const int16_t toAbove = size(left - aboveLeft);
    const int16_t toAboveLeft = size(left + above - 2 * aboveLeft);
    const int16_t notLeft = toAbove <= toAboveLeft ? above : aboveLeft;
    return static_cast<unsigned char>(toLeft <= std::min(toAbove, toAboveLeft) ? left : notLeft);
}

/// What one row is after a filter, behind the filter's number.
/// @param row, above  each with `unit` zeros before it
/// @param unit        bytes of a pixel
template <Filter kFilter>
void Apply(
    const unsigned char* row, const unsigned char* above, size_t size, size_t unit, unsigned char* filtered)
{
    *filtered++ = kFilter;
    const unsigned char* const left = row - unit;
    const unsigned char* const aboveLeft = above - unit;
    for (size_t i = 0; i < size; ++i)
        filtered[i]
            = static_cast<unsigned char>(row[i] - Predicted(kFilter, left[i], above[i], aboveLeft[i]));
}

using ApplyFilter = void (*)(const unsigned char*, const unsigned char*, size_t, size_t, unsigned char*);
constexpr ApplyFilter kFilters[] = {Apply<kNone>, Apply<kSub>, Apply<kUp>, Apply<kAverage>, Apply<kPaeth>};

/// The sum of the distances from 0 of bytes that wrap around: the smaller, the better they compress.
/// @param bytes  up to 32 MiB, whose sum fits; adding up in 64 bits takes twice as long
uint32_t Cost(std::span<const unsigned char> bytes)
{
    uint32_t sum = 0;
    for (const unsigned char byte : bytes)
        sum += std::min(byte, static_cast<unsigned char>(-byte));
    return sum;
}

/// One stretch of rows on its way into the file.
struct Stretch {
    Bytes filtered;
    Bytes room;   // for what is compressed
    size_t size;  // of what is compressed
    uint32_t sum; // Adler-32 of what was filtered
};

void Compress(Stretch& stretch, std::span<const unsigned char> before, bool isLast)
{
    z_stream stream = {};
    if (deflateInit2(&stream, kLevel, Z_DEFLATED, -MAX_WBITS, MAX_MEM_LEVEL, Z_FILTERED) != Z_OK)
        throw std::bad_alloc();
    const size_t known = std::min(before.size(), kWindow);
    deflateSetDictionary(&stream, before.data() + before.size() - known, static_cast<uInt>(known));
    constexpr size_t kMarkOfEnd = 16; // bytes, more than an empty block takes
    stretch.room.resize(deflateBound(&stream, stretch.filtered.size()) + kMarkOfEnd);
    stream.next_in = stretch.filtered.data();
    stream.avail_in = static_cast<uInt>(stretch.filtered.size());
    stream.next_out = stretch.room.data();
    stream.avail_out = static_cast<uInt>(stretch.room.size());
    deflate(&stream, isLast ? Z_FINISH : Z_SYNC_FLUSH);
    stretch.size = stream.total_out;
    deflateEnd(&stream);
    stretch.sum = static_cast<uint32_t>(
        adler32_z(adler32_z(0, nullptr, 0), stretch.filtered.data(), stretch.filtered.size()));
}

class PNGEncoder final : public PictureEncoder {
public:
    explicit PNGEncoder(const EncodingJob& encoding)
        : fFile(encoding.file), fThreads(encoding.threads),
          fIsFine(encoding.numbers == PictureNumbers::kUint16), fUnit(fIsFine ? 8 : 4),
          fRowSize(static_cast<size_t>(encoding.shape.region.Width()) * fUnit),
          fRowsLeft(static_cast<size_t>(encoding.shape.region.Height())),
          fRowsOfStretch(std::max<size_t>(kStretch / fRowSize, 1)),
          fRowsAtATime(std::min(kStretchesAtATime * fRowsOfStretch, fRowsLeft)),
          fRows((fRowsAtATime + 1) * (fUnit + fRowSize)), fStretches((fRowsAtATime - 1) / fRowsOfStretch + 1)
    {
        Start(encoding.shape);
    }

    void Write(int rows, const void* numbers) override
    {
        const auto* bytes = static_cast<const unsigned char*>(numbers);
        for (int y = 0; y < rows; ++y, bytes += fRowSize) {
            AddRow(bytes);
            if (fWaiting == fRowsAtATime || fWaiting == fRowsLeft)
                WriteStretches();
        }
    }

    void Finish() override
    {
        Bytes sum;
        Append32(sum, static_cast<uint32_t>(fSum));
        WriteChunk("IDAT", sum);
        WriteChunk("IEND", {});
    }

private:
    OutputFile& fFile;
    int fThreads;
    bool fIsFine; // 16 bits
    size_t fUnit; // bytes of a pixel
    size_t fRowSize;
    size_t fRowsLeft; // that aren't in the file
    size_t fRowsOfStretch;
    size_t fRowsAtATime;
    size_t fWaiting = 0; // rows
    Bytes fRows;         // the row before those that wait and these, each with a pixel of zeros before it
    std::vector<Stretch> fStretches;
    Bytes fBefore; // what was filtered before, as far as deflate looks back
    uLong fSum = adler32_z(0, nullptr, 0);

    void WriteChunk(const char (&type)[5], std::span<const unsigned char> content)
    {
        Bytes head;
        Append32(head, static_cast<uint32_t>(content.size()));
        head.insert(head.end(), type, type + 4);
        uLong check = crc32_z(0, head.data() + 4, 4);
        if (!content.empty()) // an empty span would begin anew
            check = crc32_z(check, content.data(), content.size());
        Bytes tail;
        Append32(tail, static_cast<uint32_t>(check));
        for (const std::span<const unsigned char> part :
            {std::span<const unsigned char>(head), content, {tail}})
            fFile.Write({reinterpret_cast<const char*>(part.data()), part.size()});
    }

    void Start(const PictureShape& shape);

    const unsigned char* RowAt(size_t y) const { return &fRows[y * (fUnit + fRowSize) + fUnit]; }

    void AddRow(const unsigned char* bytes)
    {
        unsigned char* const row = fRows.data() + ++fWaiting * (fUnit + fRowSize) + fUnit;
        std::memcpy(row, bytes, fRowSize);
        if (fIsFine && std::endian::native == std::endian::little)
            for (size_t i = 0; i < fRowSize; i += 2)
                std::swap(row[i], row[i + 1]);
    }

    /// Each row gets the filter that makes it the cheapest, the first of those that are equal.
    void FilterRows(size_t first, size_t end, Bytes& filtered) const
    {
        const size_t size = 1 + fRowSize;
        filtered.resize((end - first) * size);
        Bytes trial(size);
        for (size_t y = first; y < end; ++y) {
            unsigned char* const best = &filtered[(y - first) * size];
            uint32_t least = UINT32_MAX;
            for (const ApplyFilter filter : kFilters) {
                if (least == 0)
                    break;
                filter(RowAt(y + 1), RowAt(y), fRowSize, fUnit, trial.data());
                const uint32_t cost = Cost(std::span(trial).subspan(1));
                if (cost >= least)
                    continue;
                least = cost;
                std::copy(trial.begin(), trial.end(), best);
            }
        }
    }

    /// Writes the rows that wait.
    void WriteStretches()
    {
        const bool isLast = fWaiting == fRowsLeft;
        const std::span stretches = std::span(fStretches).first((fWaiting - 1) / fRowsOfStretch + 1);
        const auto count = static_cast<int>(stretches.size());
        RunParallel(count, fThreads, [&](int i) {
            const size_t first = static_cast<size_t>(i) * fRowsOfStretch;
            FilterRows(first, std::min(first + fRowsOfStretch, fWaiting),
                stretches[static_cast<size_t>(i)].filtered);
        });
        RunParallel(count, fThreads, [&](int i) {
            const auto place = static_cast<size_t>(i);
            Compress(
                stretches[place], i == 0 ? fBefore : stretches[place - 1].filtered, isLast && i == count - 1);
        });
        for (const Stretch& stretch : stretches) {
            WriteChunk("IDAT", std::span(stretch.room).first(stretch.size));
            fSum = adler32_combine(fSum, stretch.sum, static_cast<z_off_t>(stretch.filtered.size()));
        }
        fBefore.swap(stretches.back().filtered);
        std::copy_n(RowAt(fWaiting), fRowSize, fRows.data() + fUnit);
        fRowsLeft -= fWaiting;
        fWaiting = 0;
    }
};

void PNGEncoder::Start(const PictureShape& shape)
{
    constexpr std::string_view kSignature = "\x89PNG\r\n\x1a\n";
    constexpr unsigned char kRedGreenBlueAlpha = 6;
    constexpr unsigned char kAbsolute = 3;   // rendering intent
    constexpr uint32_t kGammaOfSRGB = 45455; // 1/2.2, of 100000
    constexpr uint32_t kPrimariesOfSRGB[]
        = {31270, 32900, 64000, 33000, 30000, 60000, 15000, 6000}; // of 100000
    constexpr std::string_view kColorSpace = "oiio:ColorSpace";

    fFile.Write(kSignature);
    const bool isColor = shape.content == PictureContent::kColor;
    Bytes content;
    const auto write = [&](const char(&type)[5]) {
        WriteChunk(type, content);
        content.clear();
    };
    Append32(content, static_cast<uint32_t>(shape.region.Width()));
    Append32(content, static_cast<uint32_t>(shape.region.Height()));
    content.push_back(fIsFine ? 16 : 8);
    content.push_back(kRedGreenBlueAlpha);
    content.insert(content.end(), 3, 0); // deflate, five filters, not interlaced
    write("IHDR");
    Append32(content, isColor ? kGammaOfSRGB : 100000);
    write("gAMA");
    if (isColor) {
        content.push_back(kAbsolute);
        write("sRGB");
        for (const uint32_t number : kPrimariesOfSRGB)
            Append32(content, number);
        write("cHRM");
    }
    Append32(content, static_cast<uint32_t>(shape.region.left));
    Append32(content, static_cast<uint32_t>(shape.region.top));
    content.push_back(0); // pixels
    write("oFFs");
    content.assign(kColorSpace.begin(), kColorSpace.end());
    content.push_back(0);
    for (const char letter : std::string_view(isColor ? "sRGB" : "Linear"))
        content.push_back(static_cast<unsigned char>(letter));
    write("tEXt");
    content.assign(std::begin(kZlibHead), std::end(kZlibHead));
    write("IDAT");
}

} // namespace

std::unique_ptr<PictureEncoder> MakePNGEncoder(const EncodingJob& encoding)
{
    return std::make_unique<PNGEncoder>(encoding);
}

} // namespace fernwick
