#pragma once
#include "frame/I3DExShader.h"
#include "host/validation/Random.h"
#include <array>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace fernwick::validation {

/// A byte beside a record that was written.
struct WallDamage {
    ptrdiff_t place; ///< from the record's start, bytes
    uint8_t byte;    ///< what is there now
};

/// A record between two walls that nobody may write to.
template <class Record> struct Walled {
    static constexpr uint8_t kBrick = 0xB7;

    Walled()
    {
        fBefore.fill(kBrick);
        fAfter.fill(kBrick);
    }

    /// The first byte of the walls that isn't as it was.
    std::optional<WallDamage> Damage() const
    {
        for (size_t i = 0; i < fBefore.size(); ++i)
            if (fBefore[i] != kBrick)
                return WallDamage{
                    static_cast<ptrdiff_t>(i) - static_cast<ptrdiff_t>(fBefore.size()), fBefore[i]};
        for (size_t i = 0; i < fAfter.size(); ++i)
            if (fAfter[i] != kBrick)
                return WallDamage{static_cast<ptrdiff_t>(sizeof(Record) + i), fAfter[i]};
        return std::nullopt;
    }

private:
    using Wall = std::array<uint8_t, 64>;

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
    /// The `OutputKinds` of a class that offers it.
    static int32_t KindOf(Operation operation);
    static constexpr float kUsualNumber = 0.25f;

    /// @param fullArea  what the flags hold before
    /// @param number    what the other results hold before, or are made of; as usual, a surface result is new
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
    /// The same of the surface. What other contents the sheets held, neither is to show in the fields that are written
    /// nor to be lost in the others.
    /// @param written  names of fields, as in `surface_fields`
    std::string WrongSurface(const Sheet& other, std::string_view written) const;
    /// The first operation whose answers differ to the bit; null for none.
    const char* DifferenceFrom(const Sheet& other) const;
    /// What that operation answered here; of a surface, the first field that differs.
    std::string AnswerUnlike(const Sheet& other) const;
    /// What an operation answered, such as "0.5 with fullArea true and coverage 1"; of a surface, its normal.
    std::string AnswerText(Operation operation) const;

    ShadingIn fSample;
    Walled<ShadingIn> fIn[kOperationCount];
    Walled<float> fValue;
    Walled<bool> fValueFullArea;
    Walled<TMCColorRGBA> fColor;
    Walled<bool> fColorFullArea;
    Walled<TVector3> fVector;
    ShadingOut fResultBefore;
    Walled<ShadingOut> fResult;
    float fCoverage[3] = {};
    int32_t fProduced = 0;

private:
    std::optional<Operation> DifferentOperation(const Sheet& other) const;
};

/// True when two results are equal to the bit; padding doesn't count.
bool SameResult(const ShadingOut& left, const ShadingOut& right);

/// @param instance  not counted
ShadingIn RandomSample(Random& random, IMCUnknown* instance);

} // namespace fernwick::validation
