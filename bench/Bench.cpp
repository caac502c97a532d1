#include "bench/Bench.h"
#include <atomic>
#include <cstdlib>
#include <new>
#include <random>

namespace {

std::atomic<int64_t> gAllocations{0};

class SourceShader final : public fernwick::Component<IShellShader, IID_IShellShader> {
public:
    explicit SourceShader(uint32_t kinds) : fKinds(kinds) { }

    void GetShadingFlags(ShadingFlags& flags) override { flags.fNeeds |= kNeedsUV; }
    uint32_t GetOutputKinds() override { return fKinds; }
    int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) override
    {
        result.fColor = {in.fUV[0], in.fUV[1], 0.25f, 1};
        result.fThirdColor = {in.fUV[1], 0.5f, in.fUV[0]};
        return 1;
    }
    float ShadeValue(float& value, bool&, ShadingIn& in) override
    {
        value = in.fUV[0];
        return kFullCoverage;
    }
    float ShadeColor(TMCColorRGBA& color, bool&, ShadingIn& in) override
    {
        color = {in.fUV[0], in.fUV[1], 0.25f, 1};
        return kFullCoverage;
    }

private:
    uint32_t fKinds;
};

} // namespace

// Replaced for the whole process, the loaded library included, to count.
void* operator new(size_t size)
{
    ++gAllocations;
    if (void* const memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }

fernwick::Library& MeasuredLibrary()
{
    static fernwick::Library library(FERNWICK_MODULE);
    return library;
}

int64_t Allocations() { return gAllocations + MeasuredLibrary().HostUtilities().Memory().Allocations(); }

Source::Source(uint32_t kinds) : fFace(new SourceShader(kinds))
{
    *fOwner.Address() = fFace; // with its first reference
}

Samples MakeSamples(IMCUnknown* instance)
{
    std::mt19937 random(1);
    const auto number = [&](float low, float high) {
        return low + (high - low) * static_cast<float>(random() >> 8) / 16777216.0f;
    };
    const auto vector = [&](float reach) {
        return TVector3(number(-reach, reach), number(-reach, reach), number(-reach, reach));
    };
    auto samples = std::make_shared<std::vector<ShadingIn>>(kSampleCount);
    for (ShadingIn& in : *samples) {
        in.fPointGlobal = vector(10);
        in.fPointLocal = vector(1);
        in.fNormalGlobal = vector(1);
        Normalize(in.fNormalGlobal);
        in.fNormalLocal = in.fNormalGlobal;
        in.fUV = {number(0, 1), number(0, 1)};
        in.fDerivU = {1, 0, 0};
        in.fDerivV = {0, 1, 0};
        in.fInstance = instance;
    }
    return samples;
}
