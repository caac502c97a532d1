#include "bench/Bench.h"
#include "frame/FloatRemainder.h"
#include "shaders/patterns/Weave.h"

namespace {

float Squared(float number) { return number * number; }

/// A cloth of two by two threads, rounded both ways, without displacement.
struct PlainCloth {
    struct Hit {
        int32_t thread = 0;
        float offset = 0, half = 1, t = 0, along = 0, alongHalf = 1, alongT = 0;
    };

    WeaveParams p;
    Source threads[2], gap;
    ThreadTable table[2];
    ThreadSpans spans[2][kThreadsPerGroup];
    float inverseRepeat[2];
    Hit hits[2]; // what the shader keeps
    float tile[2]{};
    int top = 0;
    TMCColorRGBA layer{};

    PlainCloth(const WeaveParams& params, const Source& warp, const Source& weft, const Source& gapSource)
        : p(params), threads{warp, weft},
          gap(gapSource), inverseRepeat{static_cast<float>(1.0 / params.fRepeatU),
                              static_cast<float>(1.0 / params.fRepeatV)}
    {
        table[0].Build(2, p.fWarpWidth, p.fWarpGap);
        table[1].Build(2, p.fWeftWidth, p.fWeftGap);
        for (int thread = 0; thread < 2; ++thread) {
            const bool warpDives[5] = {!p.fPattern[0][thread], !p.fPattern[1][thread]};
            const bool weftDives[5] = {p.fPattern[thread][0], p.fPattern[thread][1]};
            spans[0][thread].Build(table[1], warpDives);
            spans[1][thread].Build(table[0], weftDives);
        }
    }

    static float Offset(float center, float x)
    {
        return x > center ? -(x - center) : center > x ? center - x : 0;
    }

    Hit Find(int group, float across) const
    {
        Hit hit;
        float previousEnd = 0;
        for (int32_t k = 0; k < table[group].fCount; ++k) {
            const float start = table[group].fEdge[2 * k], end = table[group].fEdge[2 * k + 1];
            if (across >= previousEnd && start > across)
                return hit;
            if (across >= start && end > across) {
                hit.thread = k + 1;
                hit.offset = Offset(table[group].fCenter[k], across);
                hit.half = table[group].fHalfWidth[k];
                hit.t = (across - start) / (end - start);
                return hit;
            }
            previousEnd = end;
        }
        return hit;
    }

    void FindAlong(Hit& hit, int group, float along) const
    {
        const ThreadSpans& own = spans[group][hit.thread - 1];
        const auto& first = own.fSpan[0];
        const auto& last = own.fSpan[own.fCrossings];
        for (int32_t found = 0; own.fCrossings > 0 && found <= own.fCrossings; ++found) {
            const auto& span = own.fSpan[found];
            if (!(along >= span.fStart && span.fEnd > along))
                continue;
            const bool atSeam = found == 0 || found == own.fCrossings;
            const float center = found == 0 ? first.fCenter - last.fHalfLength
                : atSeam                    ? last.fCenter + first.fHalfLength
                                            : span.fCenter;
            hit.alongHalf = atSeam ? first.fHalfLength + last.fHalfLength : span.fHalfLength;
            hit.along = Offset(center, along);
            const double from = found == 0 ? -(last.fHalfLength * 2.0) : span.fStart;
            hit.alongT = static_cast<float>((along - from) / (hit.alongHalf * 2.0));
            return;
        }
    }

    void Sample(const TVector2& uv)
    {
        tile[0] = uv[0];
        tile[1] = uv[1];
        if (tile[0] != 0)
            tile[0] = FloatRemainder(tile[0], inverseRepeat[0]) * static_cast<float>(p.fRepeatU);
        if (tile[1] != 0)
            tile[1] = FloatRemainder(tile[1], inverseRepeat[1]) * static_cast<float>(p.fRepeatV);
        hits[0] = Find(0, tile[0]);
        hits[1] = Find(1, tile[1]);
        if (hits[0].thread == 0 && hits[1].thread == 0) {
            top = -1;
            return;
        }
        const bool warpOnTop = hits[1].thread == 0
            || (hits[0].thread != 0 && p.fPattern[hits[1].thread - 1][hits[0].thread - 1]);
        top = warpOnTop ? 0 : 1;
        FindAlong(hits[top], top, tile[1 - top]);
    }

    TMCColorRGBA Color(ShadingIn& in)
    {
        Sample(in.fUV);
        if (top < 0) {
            gap.Color(layer, in);
            return layer;
        }
        if (top == 1)
            in.fUV = {in.fUV[1], in.fUV[0]};
        threads[top].Color(layer, in);
        const Hit& hit = hits[top];
        const float along = Squared(hit.along) / Squared(hit.alongHalf * p.fProfileAlong);
        const float across = Squared(hit.offset) / Squared(hit.half * p.fProfileAcross);
        const float darkening = static_cast<float>(1.0 - (along + across));
        return {layer.fRed * darkening, layer.fGreen * darkening, layer.fBlue * darkening, layer.fAlpha};
    }

    static TVector3 Bent(const TVector3& v, TVector3 a, float scale, float sine)
    {
        a *= 1.0f / scale;
        a *= 2.0f;
        const float cosine = std::cos(std::asin(sine));
        const float rest = static_cast<float>(1.0 - cosine);
        return {(cosine + rest * a[0] * a[0]) * v[0] + (rest * a[0] * a[1] - a[2] * sine) * v[1]
                + (rest * a[0] * a[2] + a[1] * sine) * v[2],
            (rest * a[0] * a[1] + a[2] * sine) * v[0] + (cosine + rest * a[1] * a[1]) * v[1]
                + (rest * a[1] * a[2] - a[0] * sine) * v[2],
            (rest * a[0] * a[2] - a[1] * sine) * v[0] + (rest * a[1] * a[2] + a[0] * sine) * v[1]
                + (cosine + rest * a[2] * a[2]) * v[2]};
    }

    TVector3 Vector(const ShadingIn& in)
    {
        Sample(in.fUV);
        if (top < 0)
            return in.fNormalLocal;
        const TVector3& acrossAxis = top == 0 ? in.fDerivV : in.fDerivU;
        const TVector3& alongAxis = top == 0 ? in.fDerivU : in.fDerivV;
        const float sign = top == 0 ? 1.0f : -1.0f;
        TVector3 bent = Bent(in.fNormalGlobal, alongAxis, p.fProfileAlong, sign * hits[top].along);
        Normalize(bent);
        return Bent(bent, acrossAxis, p.fProfileAcross, -sign * hits[top].offset);
    }
};

} // namespace

void AddWeave()
{
    const MeasuredShader<WeaveParams> weave("Weave");
    WeaveParams& params = weave.Record();
    const Source warp(kOutputColor), weft(kOutputColor), gap(kOutputColor);
    params.fWarpSubShader[0] = warp.Face();
    params.fWeftSubShader[0] = weft.Face();
    params.fGapSubShader = gap.Face();
    params.fRoundAcross = params.fRoundAlong = true;
    params.fWarpWidth[0] = 3;
    params.fWeftWidth[0] = 2;
    params.fRepeatU = params.fRepeatV = 4;
    weave.Changed();

    PlainCloth plain(params, warp, weft, gap);
    const Samples samples = MakeSamples();
    const auto coordinates = std::make_shared<std::vector<TVector2>>();
    for (const ShadingIn& in : *samples)
        coordinates->push_back(in.fUV);
    const auto sampleAt = [=](size_t i) -> ShadingIn& { // anew: a sample keeps the coordinates of its thread
        ShadingIn& in = (*samples)[i];
        in.fUV = (*coordinates)[i];
        return in;
    };
    AddComparison(
        Section::kShading, "Weave ShadeColor, rounded", [=](size_t i) { return weave.Color(sampleAt(i)); },
        [=](size_t i) mutable { return plain.Color(sampleAt(i)); });
    AddComparison(
        Section::kShading, "Weave ShadeVector, rounded", [=](size_t i) { return weave.Vector(sampleAt(i)); },
        [=](size_t i) mutable { return plain.Vector(sampleAt(i)); });

    AddWork(Section::kChange + "/Weave, another gap" + kMeasured, [weave] {
        WeaveParams& record = weave.Record();
        record.fWarpGap = 3 - record.fWarpGap;
        weave.Changed();
    });
}
