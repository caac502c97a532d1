#pragma once
#include <array>
#include <cstddef>
#include <tuple>

/// Three numbers, counted from 0. They are initialised, compared and taken apart like the array that they are.
template <class Real> struct Triple : std::array<Real, 3> { };

template <class Real> struct std::tuple_size<Triple<Real>> : std::tuple_size<std::array<Real, 3>> { };
template <size_t kPart, class Real>
struct std::tuple_element<kPart, Triple<Real>> : std::tuple_element<kPart, std::array<Real, 3>> { };

/// Three components of a colour, in the order of the space's name: X Y Z, x y Y, L a b or R G B.
using Float3 = Triple<float>;

template <class Real> constexpr Triple<Real> operator+(const Triple<Real>& left, const Triple<Real>& right)
{
    return {left[0] + right[0], left[1] + right[1], left[2] + right[2]};
}

template <class Real> constexpr Triple<Real> operator-(const Triple<Real>& left, const Triple<Real>& right)
{
    return {left[0] - right[0], left[1] - right[1], left[2] - right[2]};
}

template <class Real> constexpr Triple<Real> operator*(const Triple<Real>& left, Real factor)
{
    return {left[0] * factor, left[1] * factor, left[2] * factor};
}

/// Determinant of the matrix with these three columns.
template <class Real>
constexpr Real Determinant(const Triple<Real>& a, const Triple<Real>& b, const Triple<Real>& c)
{
    return a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0])
        + a[2] * (b[0] * c[1] - b[1] * c[0]);
}

/// The three amounts of the columns a, b, c that add up to `sum`, by Cramer's rule. Columns in one plane give
/// infinite or undefined amounts.
template <class Real>
constexpr Triple<Real> SolveByCramer(
    const Triple<Real>& a, const Triple<Real>& b, const Triple<Real>& c, const Triple<Real>& sum)
{
    const Real whole = Determinant(a, b, c);
    return {Determinant(sum, b, c) / whole, Determinant(a, sum, c) / whole, Determinant(a, b, sum) / whole};
}
