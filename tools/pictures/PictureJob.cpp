#include "tools/pictures/PictureJob.h"
#include "tools/Interrupt.h"
#include "tools/Outcome.h"
#include <algorithm>
#include <fmt/format.h>
#include <fstream>

namespace {

/// Bytes that programs can still get; none where the system doesn't tell.
std::optional<uint64_t> FreeMemory()
{
    std::ifstream stream("/proc/meminfo"); // lines such as "MemAvailable:   23841244 kB"
    std::optional<uint64_t> kilobytes;
    std::string name;
    uint64_t number = 0;
    for (std::string rest; stream >> name >> number; std::getline(stream, rest))
        if (name == "MemAvailable:" || name == "SwapFree:")
            kilobytes = kilobytes.value_or(0) + number;
    return kilobytes ? std::optional(*kilobytes * 1024) : std::nullopt;
}

/// Throws when there is no memory for the picture of a job.
void RequireMemory(const fernwick::RenderJob& job)
{
    constexpr double kGigabyte = 1e9;
    const std::optional<uint64_t> free = FreeMemory();
    if (const uint64_t needed = MemoryOf(job); free && needed > *free)
        throw fernwick::RenderError(fmt::format("the picture takes {:.1f} GB of memory while it is rendered, "
                                                "and {:.1f} GB are free; --region renders it in "
                                                "parts",
            static_cast<double>(needed) / kGigabyte, static_cast<double>(*free) / kGigabyte));
}

std::vector<fernwick::SurfaceLayer> LayersOf(const PictureOptions& options)
{
    const auto& names = options.layers;
    if (std::find(names.begin(), names.end(), "all") != names.end())
        return fernwick::SurfaceLayersOf(fernwick::SurfaceLayerGroups());
    return fernwick::SurfaceLayersOf(names);
}

} // namespace

void RequireTarget(const PictureOptions& options)
{
    if (options.file.empty())
        return;
    try {
        fernwick::RequireFit(options.file, options.layout);
    } catch (const fernwick::PictureError& error) {
        throw UsageError(error.what());
    }
    int width = 0;
    int height = 0;
    ReadSize(options.size, width, height);
    if (const auto region = RegionOf(options); region && (region->right > width || region->bottom > height))
        throw UsageError(
            fmt::format("--region {} is beyond the picture of {}x{}", options.region, width, height));
    if (!LayersOf(options).empty() && !fernwick::HoldsLayers(options.file))
        throw UsageError("--layers is for an .exr");
    fernwick::RequireWritable(options.file);
}

fernwick::RenderJob RenderJobOf(const PictureOptions& options, int samples)
{
    fernwick::RenderJob job;
    ReadSize(options.size, job.width, job.height);
    job.samples = samples;
    job.threads = options.threads;
    job.region = RegionOf(options);
    job.layers = LayersOf(options);
    job.cancel = &WatchForInterrupt();
    RequireMemory(job);
    return job;
}
