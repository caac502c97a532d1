#include "optics/Complex.h"
#include "frame/Numbers.h"
#include <cmath>

namespace {

constexpr float kRealCrossover = 0.6417f;
constexpr float kImaginaryCrossover = 1.5f;

Complex ArcsineOnRealAxis(float x)
{
    if (std::fabs(x) <= 1)
        return {std::asin(x), 0};
    // Roots and logarithm in double, of sums in float.
    const auto height = [](float t) {
        const double root = std::sqrt(static_cast<double>(t - 1)) * std::sqrt(static_cast<double>(1 + t));
        return static_cast<float>(std::log(t + root));
    };
    if (x > 1)
        return {kHalfPiInFloat, -height(x)};
    return {-kHalfPiInFloat, height(-x)};
}

} // namespace

Complex operator/(Complex z, Complex w)
{
    const float squared = w.re * w.re + w.im * w.im;
    const float f = static_cast<float>(1.0 / squared);
    return {(z.re * w.re + z.im * w.im) * f, (z.im * w.re - z.re * w.im) * f};
}

Complex Sine(Complex z)
{
    if (z.im == 0)
        return {std::sin(z.re), 0};
    return {std::sin(z.re) * std::cosh(z.im), std::cos(z.re) * std::sinh(z.im)};
}

Complex Cosine(Complex z)
{
    if (z.im == 0)
        return {std::cos(z.re), 0};
    return {std::cos(z.re) * std::cosh(z.im), std::sin(z.re) * std::sinh(-z.im)};
}

Complex SquaredMagnitude(Complex z) { return {z.re * z.re + z.im * z.im, 0}; }

Complex Arcsine(Complex z)
{
    if (z.im == 0)
        return ArcsineOnRealAxis(z.re);

    const float X = std::fabs(z.re);
    const float Y = std::fabs(z.im);
    const float r = std::hypot(X + 1, Y);
    const float s = std::hypot(X - 1, Y);
    const float A = (r + s) / 2;
    const float B = X / A;
    const float Y2 = Y * Y;
    const float T = s + (1 - X);

    float re;
    if (B <= kRealCrossover) {
        re = std::asin(B);
    } else {
        const float P = A + X;
        if (X <= 1)
            re = std::atan(X / std::sqrt(P / 2 * (Y2 / (r + X + 1) + T)));
        else
            re = std::atan(X / (Y * std::sqrt((P / (r + X + 1) + P / (s + (X - 1))) / 2)));
    }

    float im;
    if (A <= kImaginaryCrossover) {
        const float M = X < 1 ? (Y2 / (r + (X + 1)) + Y2 / T) / 2 : (Y2 / (r + (X + 1)) + s + (X - 1)) / 2;
        const float sum = 1 + M + std::sqrt(M * (A + 1));
        im = static_cast<float>(std::log(static_cast<double>(sum)));
    } else {
        im = std::log(A + std::sqrt(A * A - 1));
    }
    return {std::copysign(re, z.re), std::copysign(im, z.im)};
}
