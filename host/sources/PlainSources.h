#pragma once
#include "host/parameters/FieldValue.h"
#include "host/sources/SourceBase.h"
#include <algorithm>

namespace fernwick {

// The sources that are computed.

struct ColorSettings {
    TMCColorRGBA fColor = {1, 1, 1, 1};
};

/// The same colour everywhere.
class PlainColor final : public ColorSource {
public:
    using Settings = ColorSettings;

    explicit PlainColor(const Settings& settings) : fSettings(settings) { }
    TMCColorRGBA ColorAt(const TVector2&) const override { return fSettings.fColor; }

private:
    Settings fSettings;
};

struct ValueSettings {
    float fValue = 0.5f;
};

/// The same number everywhere.
class PlainValue final : public ValueSource {
public:
    using Settings = ValueSettings;

    explicit PlainValue(const Settings& settings) : fSettings(settings) { }
    float ValueAt(const TVector2&) const override { return fSettings.fValue; }

private:
    Settings fSettings;
};

struct CheckerSettings {
    TMCColorRGBA fEven = {0, 0, 0, 1};
    TMCColorRGBA fOdd = {1, 1, 1, 1};
    int32_t fCountU = 8;
    int32_t fCountV = 8;
};

class Checker final : public ColorSource {
public:
    using Settings = CheckerSettings;

    explicit Checker(const Settings& settings) : fSettings(settings) { }
    TMCColorRGBA ColorAt(const TVector2& uv) const override
    {
        const double number = Number(uv[0], fSettings.fCountU) + Number(uv[1], fSettings.fCountV);
        return std::fmod(number, 2.0) == 0 ? fSettings.fEven : fSettings.fOdd;
    }

private:
    Settings fSettings;

    static double Number(float coordinate, int32_t count)
    {
        return std::floor(static_cast<double>(coordinate) * count);
    }
};

enum Direction : int32_t { kAlongU = 0, kAlongV = 1 };

struct RampSettings {
    int32_t fAlong = kAlongU;
    float fFrom = 0;
    float fTo = 1;
};

/// A number that grows evenly across the UV square, and goes on growing outside it.
class Ramp final : public ValueSource {
public:
    using Settings = RampSettings;
    static constexpr int32_t kKinds = kOutputValue | kOutputColor;

    explicit Ramp(const Settings& settings) : fSettings(settings) { }
    uint32_t GetOutputKinds() override { return kKinds; }
    float ValueAt(const TVector2& uv) const override
    {
        const float share = uv[static_cast<uint32_t>(fSettings.fAlong)];
        return fSettings.fFrom + (fSettings.fTo - fSettings.fFrom) * share;
    }

private:
    Settings fSettings;
};

struct GradientSettings {
    int32_t fAlong = kAlongU;
    std::vector<TMCColorRGBA> fColors = {{0, 0, 0, 1}, {1, 1, 1, 1}};
};

/// Colours at even distances across the UV square, mixed between neighbours; the outermost go on outside it.
class Gradient final : public ColorSource {
public:
    using Settings = GradientSettings;

    explicit Gradient(const Settings& settings) : fSettings(settings)
    {
        if (settings.fColors.size() < 2)
            throw SourceError("colors: expected two colours or more");
    }
    TMCColorRGBA ColorAt(const TVector2& uv) const override
    {
        const size_t spans = fSettings.fColors.size() - 1;
        const float share = std::clamp(uv[static_cast<uint32_t>(fSettings.fAlong)], 0.0f, 1.0f);
        const float position = share * static_cast<float>(spans);
        const size_t span = std::min(static_cast<size_t>(position), spans - 1);
        TMCColorRGBA left = fSettings.fColors[span];
        TMCColorRGBA right = fSettings.fColors[span + 1];
        left *= static_cast<float>(span + 1) - position;
        right *= position - static_cast<float>(span);
        return left += right;
    }

private:
    Settings fSettings;
};

} // namespace fernwick
