#pragma once
#include "frame/DebugReport.h"
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

/// Two floats: a UV coordinate, or a lower and an upper bound. Zero by default.
class TVector2 {
public:
    constexpr TVector2() = default;
    constexpr TVector2(float first, float second) : fElements{first, second} { }

    /// An index of 2 or more raises "elemNum<2" and gives the last element.
    float& operator[](uint32_t elemNum) { return fElements[Checked(elemNum)]; }
    float operator[](uint32_t elemNum) const { return fElements[Checked(elemNum)]; }

    friend bool operator==(const TVector2& left, const TVector2& right)
    {
        return left.fElements[0] == right.fElements[0] && left.fElements[1] == right.fElements[1];
    }

private:
    float fElements[2] = {};

    static uint32_t Checked(uint32_t elemNum)
    {
        if (elemNum < 2)
            return elemNum;
        MC_REPORT("elemNum<2");
        return 1;
    }
};
static_assert(sizeof(TVector2) == 8);

/// Three floats: a point, a direction or a normal. Zero by default.
class TVector3 {
public:
    static const TVector3 kZero;

    constexpr TVector3() = default;
    constexpr TVector3(float x, float y, float z) : fElements{x, y, z} { }

    /// An index of 3 or more raises "elemNum<3" and gives the last element.
    float& operator[](uint32_t elemNum) { return fElements[Checked(elemNum)]; }
    float operator[](uint32_t elemNum) const { return fElements[Checked(elemNum)]; }

    TVector3& operator+=(const TVector3& other)
    {
        for (int i = 0; i < 3; ++i)
            fElements[i] += other.fElements[i];
        return *this;
    }
    TVector3& operator-=(const TVector3& other)
    {
        for (int i = 0; i < 3; ++i)
            fElements[i] -= other.fElements[i];
        return *this;
    }
    TVector3& operator*=(float weight)
    {
        for (float& element : fElements)
            element *= weight;
        return *this;
    }
    friend TVector3 operator+(TVector3 left, const TVector3& right) { return left += right; }
    friend TVector3 operator-(TVector3 left, const TVector3& right) { return left -= right; }
    friend TVector3 operator-(const TVector3& vector)
    {
        return {-vector.fElements[0], -vector.fElements[1], -vector.fElements[2]};
    }
    friend bool operator==(const TVector3& left, const TVector3& right)
    {
        return left.fElements[0] == right.fElements[0] && left.fElements[1] == right.fElements[1]
            && left.fElements[2] == right.fElements[2];
    }

private:
    float fElements[3] = {};

    static uint32_t Checked(uint32_t elemNum)
    {
        if (elemNum < 3)
            return elemNum;
        MC_REPORT("elemNum<3");
        return 2;
    }
};
inline constexpr TVector3 TVector3::kZero{};
static_assert(sizeof(TVector3) == 12);

/// The dot product in double, from the float components.
inline double Dot(const TVector3& left, const TVector3& right)
{
    return static_cast<double>(left[0]) * right[0] + static_cast<double>(left[1]) * right[1]
        + static_cast<double>(left[2]) * right[2];
}

/// The length in double, from the float components.
inline double Length(const TVector3& vector) { return std::sqrt(Dot(vector, vector)); }

/// Scales by 1 / length, a factor in float; a vector whose length isn't above 0 stays as it is. A factor that float
/// can't hold, of a length below 2.9e-39 or past the greatest float, becomes infinite or 0.
inline void ScaleByReciprocalLength(TVector3& vector)
{
    const double length = Length(vector);
    if (length > 0)
        vector *= 1.0f / static_cast<float>(length);
}

/// Makes the length 1, by the same factor where float can hold it and by a division in double where not; a vector whose
/// length isn't above 0 stays as it is.
inline void Normalize(TVector3& vector)
{
    const double length = Length(vector);
    constexpr double kGreatest = std::numeric_limits<float>::max();
    if (length <= kGreatest && 1.0f / static_cast<float>(length) <= kGreatest) {
        ScaleByReciprocalLength(vector);
    } else if (length > 0) {
        for (uint32_t i = 0; i < 3; ++i)
            vector[i] = static_cast<float>(vector[i] / length);
    }
}

/// The matrix times the column vector: each row dotted with it, in float.
inline TVector3 Transformed(const float (&rows)[3][3], const TVector3& vector)
{
    TVector3 product;
    for (uint32_t i = 0; i < 3; ++i)
        product[i] = rows[i][0] * vector[0] + rows[i][1] * vector[1] + rows[i][2] * vector[2];
    return product;
}

/// The angle between two directions of any length in radians, 0 to pi: an arc cosine in double, rounded to
/// float. A quotient that rounding pushed past 1 or -1 counts as 1 or -1; a zero vector gives NaN.
inline float AngleBetween(const TVector3& left, const TVector3& right)
{
    const double quotient = Dot(left, right) / (Length(left) * Length(right));
    const double cosine = quotient > 1 ? 1 : quotient < -1 ? -1 : quotient;
    return static_cast<float>(std::acos(cosine));
}

/// A rotation and a translation; identity and zero by default.
struct TTransform3D {
    float fMatrix[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}; ///< row by row
    TVector3 fTranslation;
};
static_assert(sizeof(TTransform3D) == 48 && offsetof(TTransform3D, fTranslation) == 36);
