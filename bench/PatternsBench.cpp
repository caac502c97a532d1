#include "bench/Bench.h"
#include "frame/FloatRemainder.h"
#include "frame/Numbers.h"
#include "shaders/patterns/Drip.h"
#include "shaders/patterns/Spoke.h"

namespace {

struct PlainSpoke {
    SpokeParams p;
    float sector = static_cast<float>(360.0 / p.fCount);
    float halfSector = sector / 2;
    float hardPart = 1 - p.fSoftness;
    float radius = 0, du = 0, dv = 0, sine = 0, halfWidth = 0, angle = 0, t = 0;

    float operator()(const TVector2& uv)
    {
        du = uv[0] - p.fCenterU;
        dv = uv[1] - p.fCenterV;
        if (du == 0 && dv == 0)
            return 0;
        radius = std::sqrt(du * du + dv * dv);
        float value = 0;
        if (p.fConstantWidth) {
            sine = static_cast<float>(p.fWidth / 20.0f * kRadiansPerDegree / radius);
            if (sine > 1) {
                if (!p.fFillCenter)
                    return 0;
                value = 1;
            }
            halfWidth = static_cast<float>(kDegreesPerRadian * std::asin(sine) / 2.0);
        } else {
            halfWidth = static_cast<float>((p.fWidth - radius * p.fTaper) / 2.0);
        }
        if (radius < p.fInnerRadius || radius > p.fOuterRadius * 1.4142135623730951)
            return value;
        angle = static_cast<float>((std::atan2(du, dv) + kPi) * kDegreesPerRadian + p.fRotation);
        angle = FloatRemainder(angle, sector);
        if (angle > halfSector - halfWidth && halfSector >= angle)
            t = (halfSector - angle) / halfWidth;
        else if (angle > halfSector && halfSector + halfWidth >= angle)
            t = (angle - halfSector) / halfWidth;
        else
            return value;
        value = hardPart > t ? p.fIntensity : (1 - (t - hardPart) / (1 - hardPart)) * p.fIntensity;
        if (p.fInnerFade > radius)
            value *= (radius - p.fInnerRadius) / (p.fInnerFade - p.fInnerRadius);
        else if (radius > p.fOuterFade)
            value *= (p.fOuterRadius - radius) / (p.fOuterRadius - p.fOuterFade);
        return value;
    }
};

struct PlainDrip {
    DripParams p;

    float radius = 0;

    static constexpr float kOutside = -100;

    float Ring(float start, float width, float amplitude) const
    {
        const float ratio = width != 0 ? static_cast<float>(1.0 + width) : 1.1f;
        const float end = p.fProportional ? start * ratio : start + width;
        const float span = p.fProportional ? end - start : width;
        if (radius < start || radius > end)
            return kOutside;
        if (!p.fRippled)
            return p.fBaseLevel + amplitude;
        const float phase = std::fabs(static_cast<float>(6.28318530717959 * ((radius - start) / span) - kPi));
        const float wave = amplitude * std::cos(phase * static_cast<float>(p.fWaves));
        return static_cast<float>(p.fBaseLevel + wave * (-0.3183098861837907 * phase + 1.0));
    }
    float operator()(const TVector2& uv)
    {
        const float du = uv[0] - p.fCenterU, dv = uv[1] - p.fCenterV;
        if (p.fShowCenter) {
            const double a = std::fabs(du), b = std::fabs(dv);
            return (a < 0.2 && b < 0.02) || (b < 0.2 && a < 0.02) ? 1.0f : 0.0f;
        }
        radius = std::sqrt(du * du + dv * dv);
        float value = Ring(p.fRingStart, p.fRingWidth, p.fAmplitude);
        if (value == kOutside)
            value = p.fBaseLevel;
        if (p.fSecondRing) {
            const float second = Ring(p.fRingStart * p.fSecondStart,
                p.fRingWidth * std::fabs(p.fSecondAmplitude), p.fAmplitude * p.fSecondAmplitude);
            if (second != kOutside)
                value = second;
        }
        return value;
    }
};

template <class Plain, class Params>
void AddPattern(const std::string& row, const MeasuredShader<Params>& shader)
{
    shader.Changed();
    const Samples samples = MakeSamples();
    AddComparison(
        Section::kShading, row, [=](size_t i) { return shader.Value((*samples)[i]); },
        [plain = Plain{shader.Record()}, samples](size_t i) mutable { return plain((*samples)[i].fUV); });
}

} // namespace

void AddPatterns()
{
    const MeasuredShader<SpokeParams> wheel("Spoke");
    AddPattern<PlainSpoke>("Spoke ShadeValue, constant angle", wheel);
    const MeasuredShader<SpokeParams> bars("Spoke");
    bars.Record().fConstantWidth = true;
    bars.Record().fWidth = 100;
    AddPattern<PlainSpoke>("Spoke ShadeValue, parallel sides", bars);

    const MeasuredShader<DripParams> ring("Drip");
    AddPattern<PlainDrip>("Drip ShadeValue, one ring", ring);
    const MeasuredShader<DripParams> rings("Drip");
    rings.Record().fRingWidth = 0.4f;
    rings.Record().fWaves = 5;
    rings.Record().fSecondRing = true;
    AddPattern<PlainDrip>("Drip ShadeValue, two wide rings", rings);

    const MeasuredShader<DripParams> cross("Drip");
    cross.Record().fShowCenter = true;
    AddPattern<PlainDrip>("Drip ShadeValue, the cross", cross);

    const Samples samples = MakeSamples();
    AddComparison(
        Section::kShading, "Drip ShadeVector", [=](size_t i) { return ring.Vector((*samples)[i]); },
        [=](size_t i) { return (*samples)[i].fNormalGlobal; });
}
