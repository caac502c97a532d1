#pragma once
#include "frame/I3DExShader.h"
#include "host/validation/Random.h"
#include <array>
#include <cstring>
#include <string>

namespace fernwick::validation {

/// A record between two walls that nobody may write to.
template <class Record> struct Walled {
    Walled()
    {
        fBefore.fill(kBrick);
        fAfter.fill(kBrick);
    }

    bool IsWhole() const
    {
        const auto isWhole = [](const Wall& wall) {
            for (const uint8_t brick : wall)
                if (brick != kBrick)
                    return false;
            return true;
        };
        return isWhole(fBefore) && isWhole(fAfter);
    }

private:
    using Wall = std::array<uint8_t, 64>;
    static constexpr uint8_t kBrick = 0xB7;

    Wall fBefore;

public:
    Record fRecord{};

private:
    Wall fAfter;
};

/// All four shading operations of an object on one sample, each on a copy, with everything that they may write.
class Sheet {
public:
    enum Operation { kValue, kColor, kVector, kSurface, kOperationCount };
    static constexpr Operation kOperations[] = {kValue, kColor, kVector, kSurface};
    static const char* NameOf(Operation operation);
    static constexpr float kUsualNumber = 0.25f;

    /// @param fullArea  what the flags hold before
    /// @param number    what the other results hold before, or are made of
    explicit Sheet(const ShadingIn& sample, bool fullArea = false, float number = kUsualNumber);

    void Ask(I3DExShader& shader, Operation operation);
    /// All four, in their order.
    void Ask(I3DExShader& shader);

    /// What was written that isn't the shader's to write; empty for nothing.
    /// @param sampleChanges  the `SampleChanges` that are the shader's
    std::string WildWrite(uint32_t sampleChanges) const;
    /// The first result that another sheet, which held other contents before, came back with otherwise; empty for
    /// none. For the values, colours and vectors that a class offers; without coverage they may be anything.
    /// @param kinds  the class's `OutputKinds`
    /// @param left   the class's `LeftResults`
    std::string LeftUnset(const Sheet& other, int32_t kinds, uint32_t left) const;
    /// The first operation whose answers differ to the bit; null for none.
    const char* DifferenceFrom(const Sheet& other) const;

    ShadingIn fSample;
    Walled<ShadingIn> fIn[kOperationCount];
    Walled<float> fValue;
    Walled<bool> fValueFullArea;
    Walled<TMCColorRGBA> fColor;
    Walled<bool> fColorFullArea;
    Walled<TVector3> fVector;
    Walled<ShadingOut> fResult;
    float fCoverage[3] = {};
    int32_t fProduced = 0;
};

/// True when two results are equal to the bit; padding doesn't count.
bool SameResult(const ShadingOut& left, const ShadingOut& right);

/// @param instance  not counted
ShadingIn RandomSample(Random& random, IMCUnknown* instance);

} // namespace fernwick::validation
