#include "host/sources/Sources.h"
#include "host/sources/PictureSource.h"
#include "host/sources/PlainSources.h"
#include "host/sources/SurfaceSource.h"
#include <algorithm>

namespace fernwick {

namespace {

template <class Source> typename Source::Settings RecordOf(std::span<const FieldSetting> settings)
{
    typename Source::Settings record;
    for (const FieldSetting& setting : settings)
        WriteField(setting, &record);
    return record;
}

template <class Source> MCCountedPtr<IShellShader> Make(std::span<const FieldSetting> settings)
{
    return MCCountedPtr<IShellShader>(MakeCounted<Source>(RecordOf<Source>(settings)).Get());
}

struct Maker {
    std::string_view name;
    MCCountedPtr<IShellShader> (*make)(std::span<const FieldSetting> settings);
};

constexpr Maker kMakers[] = {
    {"color", &Make<PlainColor>},
    {"value", &Make<PlainValue>},
    {"picture", &Make<PictureSource>},
    {"checker", &Make<Checker>},
    {"ramp", &Make<Ramp>},
    {"gradient", &Make<Gradient>},
    {"surface", &Make<SurfaceSource>},
};

} // namespace

MCCountedPtr<IShellShader> MakeSource(const SourceKind& kind, std::span<const FieldSetting> settings)
{
    return std::find_if(std::begin(kMakers), std::end(kMakers), [&kind](const Maker& maker) {
        return maker.name == kind.fTable.fName;
    })->make(settings);
}

MCCountedPtr<IShellShader> MakePictureSource(
    const GivenPicture& picture, std::span<const FieldSetting> settings)
{
    return MCCountedPtr<IShellShader>(
        MakeCounted<PictureSource>(RecordOf<PictureSource>(settings), picture).Get());
}

} // namespace fernwick
