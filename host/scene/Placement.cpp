#include "host/scene/Placement.h"
#include "frame/Numbers.h"
#include "host/geometry/Cross.h"
#include <cmath>

namespace fernwick {

namespace {

struct Matrix {
    double rows[3][3];
};

Matrix operator*(const Matrix& left, const Matrix& right)
{
    Matrix product{};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            for (int k = 0; k < 3; ++k)
                product.rows[i][j] += left.rows[i][k] * right.rows[k][j];
    return product;
}

Matrix RotationIn(const TTransform3D& place)
{
    Matrix matrix;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            matrix.rows[i][j] = place.fMatrix[i][j];
    return matrix;
}

void StoreRotation(const Matrix& matrix, TTransform3D& place)
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            place.fMatrix[i][j] = static_cast<float>(matrix.rows[i][j]);
}

TVector3 Product(const TTransform3D& place, const TVector3& vector, const TVector3& start)
{
    TVector3 sum;
    for (uint32_t i = 0; i < 3; ++i) {
        double element = start[i];
        for (uint32_t j = 0; j < 3; ++j)
            element += static_cast<double>(place.fMatrix[i][j]) * vector[j];
        sum[i] = static_cast<float>(element);
    }
    return sum;
}

} // namespace

TTransform3D RotatedBy(const TVector3& degrees)
{
    double cosine[3];
    double sine[3];
    for (uint32_t axis = 0; axis < 3; ++axis) {
        cosine[axis] = std::cos(degrees[axis] * kRadiansPerDegree);
        sine[axis] = std::sin(degrees[axis] * kRadiansPerDegree);
    }
    const Matrix aboutX = {{{1, 0, 0}, {0, cosine[0], -sine[0]}, {0, sine[0], cosine[0]}}};
    const Matrix aboutY = {{{cosine[1], 0, sine[1]}, {0, 1, 0}, {-sine[1], 0, cosine[1]}}};
    const Matrix aboutZ = {{{cosine[2], -sine[2], 0}, {sine[2], cosine[2], 0}, {0, 0, 1}}};
    TTransform3D place;
    StoreRotation(aboutZ * aboutY * aboutX, place);
    return place;
}

TTransform3D FacingTo(const TVector3& direction)
{
    TVector3 back = -direction;
    if (Length(back) == 0)
        return {};
    Normalize(back);
    constexpr double kNearlyUpright = 0.9999;
    const TVector3 up = std::fabs(back[1]) < kNearlyUpright ? TVector3(0, 1, 0) : TVector3(0, 0, 1);
    TVector3 right = Cross(up, back);
    Normalize(right);
    const TVector3 above = Cross(back, right);
    TTransform3D place;
    for (uint32_t i = 0; i < 3; ++i) {
        place.fMatrix[i][0] = right[i];
        place.fMatrix[i][1] = above[i];
        place.fMatrix[i][2] = back[i];
    }
    return place;
}

TTransform3D Composed(const TTransform3D& outer, const TTransform3D& inner)
{
    TTransform3D place;
    StoreRotation(RotationIn(outer) * RotationIn(inner), place);
    place.fTranslation = Placed(outer, inner.fTranslation);
    return place;
}

TTransform3D Inverse(const TTransform3D& place)
{
    TTransform3D inverse;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            inverse.fMatrix[i][j] = place.fMatrix[j][i];
    inverse.fTranslation = -Turned(inverse, place.fTranslation);
    return inverse;
}

TVector3 Turned(const TTransform3D& place, const TVector3& direction)
{
    return Product(place, direction, {});
}

TVector3 Placed(const TTransform3D& place, const TVector3& point)
{
    return Product(place, point, place.fTranslation);
}

} // namespace fernwick
