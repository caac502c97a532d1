#pragma once
#include <array>
#include <cmath>
#include <cstddef>

namespace fernwick {

/// Up to `kDegree` numbers, ascending.
template <size_t kDegree> class Roots {
public:
    void Add(double root) { fRoots[fCount++] = root; }
    const double* begin() const { return fRoots.data(); }
    const double* end() const { return fRoots.data() + fCount; }

private:
    std::array<double, kDegree> fRoots{};
    size_t fCount = 0;
};

template <size_t kCount> double ValueAt(const std::array<double, kCount>& coefficients, double x)
{
    double sum = 0;
    for (size_t i = kCount; i-- > 0;)
        sum = sum * x + coefficients[i];
    return sum;
}

/// The one root between `low` and `high`, where the values have different signs, by bisection.
template <size_t kCount>
double RootBetween(const std::array<double, kCount>& coefficients, double low, double high)
{
    const bool rises = ValueAt(coefficients, low) < 0;
    const double enough = 1e-15 * (high - low);
    for (;;) {
        const double middle = low + (high - low) / 2;
        if (!(middle > low && middle < high && high - low > enough))
            return middle;
        ((ValueAt(coefficients, middle) < 0) == rises ? low : high) = middle;
    }
}

/// The real roots of a polynomial, ascending, where it changes its sign: it is monotone between the roots of its
/// derivative. One that only touches 0 is found or not as rounding has it. Not finite coefficients give none.
/// @param coefficients  that of x to the power i at index i
template <size_t kCount> Roots<kCount - 1> RealRoots(const std::array<double, kCount>& coefficients)
{
    Roots<kCount - 1> roots;
    if constexpr (kCount == 2) {
        if (const double root = -coefficients[0] / coefficients[1]; std::isfinite(root))
            roots.Add(root);
    } else {
        const double leading = coefficients[kCount - 1];
        std::array<double, kCount - 1> slope{};
        double largest = 0;
        for (size_t i = 0; i + 1 < kCount; ++i) {
            slope[i] = static_cast<double>(i + 1) * coefficients[i + 1];
            largest = std::fmax(largest, std::fabs(coefficients[i] / leading));
        }
        if (!(largest < 1e150)) { // of a lower degree
            std::array<double, kCount - 1> lower{};
            for (size_t i = 0; i + 1 < kCount; ++i)
                lower[i] = coefficients[i];
            for (const double root : RealRoots(lower))
                roots.Add(root);
            return roots;
        }
        const double bound = 1 + largest; // Cauchy's, of all roots
        double low = -bound;
        const auto search = [&](double high) {
            if ((ValueAt(coefficients, low) < 0) != (ValueAt(coefficients, high) < 0))
                roots.Add(RootBetween(coefficients, low, high));
            low = high;
        };
        for (const double turn : RealRoots(slope))
            search(turn);
        search(bound);
    }
    return roots;
}

} // namespace fernwick
