#pragma once
#include <array>
#include <cmath>
#include <cstddef>

namespace fernwick {

/// A polynomial by its coefficients, that of x to the power i at index i.
template <size_t kCount> using Polynomial = std::array<double, kCount>;

template <size_t kCount> double ValueAt(const Polynomial<kCount>& polynomial, double x)
{
    double sum = 0;
    for (size_t i = kCount; i-- > 0;)
        sum = sum * x + polynomial[i];
    return sum;
}

template <size_t kCount> Polynomial<kCount - 1> SlopeOf(const Polynomial<kCount>& polynomial)
{
    Polynomial<kCount - 1> slope{};
    for (size_t i = 1; i < kCount; ++i)
        slope[i - 1] = static_cast<double>(i) * polynomial[i];
    return slope;
}

/// The one root between `low` and `high`, where the values have different signs, by Newton's method; where a step of it
/// leads out of what is left between the two, or isn't half of the last one, by a bisection.
template <size_t kCount>
double RootBetween(
    const Polynomial<kCount>& polynomial, const Polynomial<kCount - 1>& slope, double low, double high)
{
    const bool rises = ValueAt(polynomial, low) < 0;
    const double enough = 1e-12 * (high - low); // the next step would be the square of it
    const double least = 1e-15 * (high - low);
    double lastStep = high - low;
    for (double x = low + (high - low) / 2;;) {
        const double value = ValueAt(polynomial, x);
        ((value < 0) == rises ? low : high) = x;
        const double step = -value / ValueAt(slope, x);
        if (std::fabs(step) <= enough)
            return x + step;
        if (x + step > low && x + step < high && std::fabs(step) < lastStep / 2) {
            lastStep = std::fabs(step);
            x += step;
        } else {
            lastStep = high - low;
            x = low + (high - low) / 2;
            if (!(x > low && x < high && lastStep > least))
                return x;
        }
    }
}

/// Calls `take` with the roots between `low` and `high`, ascending, until it returns true. A root is where the
/// polynomial changes its sign: it is monotone between the roots of its derivative. One that only touches 0 is found or
/// not as rounding has it.
/// @return whether `take` returned true
template <size_t kCount, class Take>
bool FindRootWithin(const Polynomial<kCount>& polynomial, double low, double high, const Take& take)
{
    if constexpr (kCount == 2) {
        const double root = -polynomial[0] / polynomial[1];
        return root > low && root < high && take(root);
    } else {
        const Polynomial<kCount - 1> slope = SlopeOf(polynomial);
        double start = low;
        bool isBelow = ValueAt(polynomial, low) < 0;
        const auto search = [&](double end) {
            const double from = start;
            const bool wasBelow = isBelow;
            start = end;
            isBelow = ValueAt(polynomial, end) < 0;
            return isBelow != wasBelow && take(RootBetween(polynomial, slope, from, end));
        };
        return FindRootWithin(slope, low, high, search) || search(high);
    }
}

/// `FindRootWithin` of all real roots. Not finite coefficients give none.
template <size_t kCount, class Take> bool FindRoot(const Polynomial<kCount>& polynomial, const Take& take)
{
    if constexpr (kCount == 2) {
        const double root = -polynomial[0] / polynomial[1];
        return std::isfinite(root) && take(root);
    } else {
        double largest = 0;
        for (size_t i = 0; i + 1 < kCount; ++i)
            largest = std::fmax(largest, std::fabs(polynomial[i] / polynomial[kCount - 1]));
        if (!(largest < 1e150)) { // of a lower degree
            Polynomial<kCount - 1> lower{};
            for (size_t i = 0; i + 1 < kCount; ++i)
                lower[i] = polynomial[i];
            return FindRoot(lower, take);
        }
        const double bound = 1 + largest; // Cauchy's, of all roots
        return FindRootWithin(polynomial, -bound, bound, take);
    }
}

} // namespace fernwick
