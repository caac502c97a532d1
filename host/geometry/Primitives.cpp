#include "host/geometry/Primitives.h"
#include "frame/Numbers.h"
#include "host/geometry/EmbreeDevice.h"
#include "host/geometry/Polynomial.h"
#include <algorithm>
#include <cmath>
#include <optional>

namespace fernwick {

namespace {

struct Vector {
    double x;
    double y;
    double z;
};

Vector operator+(const Vector& a, const Vector& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Vector operator*(double factor, const Vector& a) { return {factor * a.x, factor * a.y, factor * a.z}; }
double Dot(const Vector& a, const Vector& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
TVector3 Rounded(const Vector& a)
{
    return {static_cast<float>(a.x), static_cast<float>(a.y), static_cast<float>(a.z)};
}

/// The sum of factor times (vector times its transpose).
struct ShapeSum {
    double rows[3][3] = {};

    void Add(double factor, const Vector& left, const Vector& right)
    {
        const double down[] = {left.x, left.y, left.z};
        const double along[] = {right.x, right.y, right.z};
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                rows[i][j] += factor * down[i] * along[j];
    }
    ShapeMatrix Rounded() const
    {
        ShapeMatrix shape;
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                shape.fRows[i][j] = static_cast<float>(rows[i][j]);
        return shape;
    }
};

struct Frame {
    Vector point;
    Vector normal;
    Vector derivU;
    Vector derivV;
};

struct Place {
    double distance;
    double u;
    double v;
};

/// Of a ray, both inclusive, in lengths of its direction.
struct Limits {
    double least;
    double most;
};

/// The first place of a ray within limits.
/// @param find   calls back with distances, ascending, until that returns true
/// @param place  gives the place at a distance; nothing where the shape has none
template <class Find, class PlaceAt>
std::optional<Place> FirstPlace(const Limits& limits, const Find& find, const PlaceAt& placeAt)
{
    std::optional<Place> found;
    find([&](double distance) {
        if (distance >= limits.least && distance <= limits.most)
            found = placeAt(distance);
        return found || distance > limits.most;
    });
    return found;
}

/// 0 to 1 from an angle of -pi to pi.
double Turn(double angle) { return angle / (2 * kPi) + 0.5; }

struct Sphere {
    double radius;

    Vector Corner() const { return {radius, radius, radius}; }
    Frame At(double u, double v) const
    {
        const double around = (u - 0.5) * 2 * kPi;
        const double up = (v - 0.5) * kPi;
        const Vector normal
            = {std::cos(up) * std::sin(around), std::sin(up), std::cos(up) * std::cos(around)};
        return {radius * normal, normal,
            2 * kPi * radius * std::cos(up) * Vector{std::cos(around), 0, -std::sin(around)},
            kPi * radius
                * Vector{-std::sin(up) * std::sin(around), std::cos(up), -std::sin(up) * std::cos(around)}};
    }
    ShapeSum ShapeAt(double u, double v) const
    {
        ShapeSum sum;
        const Vector normal = At(u, v).normal;
        for (const Vector& axis : {Vector{1, 0, 0}, Vector{0, 1, 0}, Vector{0, 0, 1}})
            sum.Add(1 / radius, axis, axis);
        sum.Add(-1 / radius, normal, normal);
        return sum;
    }
    std::optional<Place> Meet(const Vector& origin, const Vector& direction, const Limits& limits) const
    {
        const Polynomial<3> beyond
            = {Dot(origin, origin) - radius * radius, 2 * Dot(origin, direction), Dot(direction, direction)};
        return FirstPlace(
            limits, [&](const auto& take) { FindRoot(beyond, take); },
            [&](double t) {
                const Vector point = origin + t * direction;
                return std::optional<Place>({t, Turn(std::atan2(point.x, point.z)),
                    std::asin(std::clamp(point.y / radius, -1.0, 1.0)) / kPi + 0.5});
            });
    }
};

struct Torus {
    double ring;
    double tube;

    Vector Corner() const { return {ring + tube, ring + tube, tube}; }
    Frame At(double u, double v) const
    {
        const double along = (u - 0.5) * 2 * kPi;
        const double around = (v - 0.5) * 2 * kPi;
        const Vector out = {std::cos(along), std::sin(along), 0};
        const Vector normal = std::cos(around) * out + Vector{0, 0, std::sin(around)};
        const double width = ring + tube * std::cos(around);
        return {ring * out + tube * normal, normal, 2 * kPi * width * Vector{-out.y, out.x, 0},
            2 * kPi * tube * (-std::sin(around) * out + Vector{0, 0, std::cos(around)})};
    }
    ShapeSum ShapeAt(double u, double v) const
    {
        const Frame frame = At(u, v);
        const double around = (v - 0.5) * 2 * kPi;
        ShapeSum sum;
        sum.Add(std::cos(around) / (ring + tube * std::cos(around)) / Dot(frame.derivU, frame.derivU),
            frame.derivU, frame.derivU);
        sum.Add(1 / tube / Dot(frame.derivV, frame.derivV), frame.derivV, frame.derivV);
        return sum;
    }
    /// Roots of (|p|^2 + ring^2 - tube^2)^2 = 4 ring^2 (x^2 + y^2) along the ray, counted from the point nearest
    /// to the centre, which keeps the quartic's coefficients small.
    std::optional<Place> Meet(const Vector& origin, const Vector& direction, const Limits& limits) const
    {
        const double square = Dot(direction, direction);
        const double nearest = -Dot(origin, direction) / square;
        const Vector start = origin + nearest * direction;
        const auto [low, high] = LimitsFrom(start, direction);
        if (!(low < high))
            return std::nullopt;
        const double constant = Dot(start, start) + ring * ring - tube * tube;
        const double middle = 2 * Dot(start, direction); // 0 but for rounding
        const double scale = 4 * ring * ring;
        const auto flat = [](const Vector& a, const Vector& b) { return a.x * b.x + a.y * b.y; };
        const Polynomial<5> beyond = {constant * constant - scale * flat(start, start),
            2 * constant * middle - 2 * scale * flat(start, direction),
            middle * middle + 2 * constant * square - scale * flat(direction, direction), 2 * middle * square,
            square * square};
        return FirstPlace(
            limits,
            [&, from = low, to = high](const auto& take) {
                FindRootWithin(beyond, from, to, [&](double t) { return take(nearest + t); });
            },
            [&](double distance) {
                const Vector point = start + (distance - nearest) * direction;
                const double out = std::sqrt(flat(point, point)) - ring;
                return std::optional<Place>(
                    {distance, Turn(std::atan2(point.y, point.x)), Turn(std::atan2(point.z, out))});
            });
    }

private:
    /// Where a ray can meet it at most: in a ball and between two planes that enclose it, with a little to spare.
    /// @param start  the point of the ray nearest to the centre, from which lengths are counted
    Limits LimitsFrom(const Vector& start, const Vector& direction) const
    {
        constexpr double kMore = 1 + 1e-6;
        const double reach = kMore * (ring + tube);
        const double half = std::sqrt((reach * reach - Dot(start, start)) / Dot(direction, direction));
        Limits limits = {-half, half}; // NaN for a ray that misses the ball
        if (direction.z != 0) {
            const double below = (-kMore * tube - start.z) / direction.z;
            const double above = (kMore * tube - start.z) / direction.z;
            limits.least = std::max(limits.least, std::min(below, above));
            limits.most = std::min(limits.most, std::max(below, above));
        }
        return limits;
    }
};

/// A rectangle bent along both diagonals; `bend` is 0 for a flat one.
struct Saddle {
    double width;
    double height;
    double bend; // z = bend (x^2 - y^2)

    Vector Corner() const { return {width / 2, height / 2, std::fabs(bend) * width * width / 4}; }
    Frame At(double u, double v) const
    {
        const double x = (u - 0.5) * width;
        const double y = (v - 0.5) * height;
        const double slopeX = 2 * bend * x;
        const double slopeY = -2 * bend * y;
        const double length = std::sqrt(1 + slopeX * slopeX + slopeY * slopeY);
        return {{x, y, bend * (x * x - y * y)}, 1 / length * Vector{-slopeX, -slopeY, 1},
            width * Vector{1, 0, slopeX}, height * Vector{0, 1, slopeY}};
    }
    /// The normal is (-zx, -zy, 1) / w; its derivative along x is (-zxx, 0, 0) / w - normal wx / w, of which the
    /// part across the surface falls away, and likewise along y.
    ShapeSum ShapeAt(double u, double v) const
    {
        const Frame frame = At(u, v);
        const Vector& normal = frame.normal;
        const auto flattened = [&normal](const Vector& a) { return a + -Dot(a, normal) * normal; };
        ShapeSum sum;
        sum.Add(-2 * bend * normal.z, flattened({1, 0, 0}), flattened({1, 0, 0}));
        sum.Add(2 * bend * normal.z, flattened({0, 1, 0}), flattened({0, 1, 0}));
        return sum;
    }
    std::optional<Place> Meet(const Vector& origin, const Vector& direction, const Limits& limits) const
    {
        const Polynomial<3> above = {bend * (origin.x * origin.x - origin.y * origin.y) - origin.z,
            2 * bend * (origin.x * direction.x - origin.y * direction.y) - direction.z,
            bend * (direction.x * direction.x - direction.y * direction.y)};
        return FirstPlace(
            limits, [&](const auto& take) { FindRoot(above, take); },
            [&](double t) {
                const Vector point = origin + t * direction;
                const double u = point.x / width + 0.5;
                const double v = point.y / height + 0.5;
                return u >= 0 && u <= 1 && v >= 0 && v <= 1 ? std::optional<Place>({t, u, v}) : std::nullopt;
            });
    }
};

template <class Shape> class Primitive final : public Geometry {
public:
    explicit Primitive(const Shape& shape) : fShape(shape)
    {
        const RTCGeometry geometry = rtcNewGeometry(EmbreeDevice(), RTC_GEOMETRY_TYPE_USER);
        rtcSetGeometryUserPrimitiveCount(geometry, 1);
        rtcSetGeometryUserData(geometry, this);
        rtcSetGeometryBoundsFunction(geometry, &Bound, nullptr);
        rtcSetGeometryIntersectFunction(geometry, &Intersect);
        rtcCommitGeometry(geometry);
        rtcAttachGeometry(fRays, geometry);
        rtcReleaseGeometry(geometry);
        rtcCommitScene(fRays);
    }

    SurfacePoint PointAt(const SurfaceHit& hit) const override
    {
        const Frame frame = fShape.At(hit.fU, hit.fV);
        return {Rounded(frame.point), Rounded(frame.normal), {hit.fU, hit.fV}, Rounded(frame.derivU),
            Rounded(frame.derivV)};
    }
    ShapeMatrix ShapeAt(const SurfaceHit& hit) const override
    {
        return fShape.ShapeAt(hit.fU, hit.fV).Rounded();
    }
    TBBox3D Bounds() const override
    {
        const TVector3 corner = Rounded(fShape.Corner());
        return {-corner, corner};
    }
    void LayOutNormals(
        int edge, const std::function<void(int u, int v, const TVector3& normal)>& lay) const override
    {
        for (int u = 0; u < edge; ++u)
            for (int v = 0; v < edge; ++v)
                lay(u, v, Rounded(fShape.At((u + 0.5) / edge, (v + 0.5) / edge).normal));
    }

private:
    Shape fShape;

    static void Bound(const RTCBoundsFunctionArguments* arguments)
    {
        const TBBox3D box = static_cast<const Primitive*>(arguments->geometryUserPtr)->Bounds();
        // A little more, so that a flat box and a ray along its side meet.
        const float margin = static_cast<float>(1e-4 * Length(box.fMax - box.fMin));
        *arguments->bounds_o = {box.fMin[0] - margin, box.fMin[1] - margin, box.fMin[2] - margin, 0,
            box.fMax[0] + margin, box.fMax[1] + margin, box.fMax[2] + margin, 0};
    }

    static void Intersect(const RTCIntersectFunctionNArguments* arguments)
    {
        if (arguments->valid[0] == 0) // rays come one at a time
            return;
        auto& query = *reinterpret_cast<RTCRayHit*>(arguments->rayhit);
        RTCRay& ray = query.ray;
        const Shape& shape = static_cast<const Primitive*>(arguments->geometryUserPtr)->fShape;
        const std::optional<Place> place = shape.Meet(
            {ray.org_x, ray.org_y, ray.org_z}, {ray.dir_x, ray.dir_y, ray.dir_z}, {ray.tnear, ray.tfar});
        if (!place)
            return;
        ray.tfar = static_cast<float>(place->distance);
        query.hit.u = static_cast<float>(place->u);
        query.hit.v = static_cast<float>(place->v);
        query.hit.geomID = arguments->geomID;
        query.hit.primID = arguments->primID;
        query.hit.instID[0] = arguments->context->instID[0];
    }
};

} // namespace

std::shared_ptr<const Geometry> MakeSphere(float radius)
{
    return std::make_shared<Primitive<Sphere>>(Sphere{radius});
}

std::shared_ptr<const Geometry> MakeTorus(float ringRadius, float tubeRadius)
{
    return std::make_shared<Primitive<Torus>>(Torus{ringRadius, tubeRadius});
}

std::shared_ptr<const Geometry> MakeSaddle(float width, float height)
{
    return std::make_shared<Primitive<Saddle>>(
        Saddle{width, width, 4.0 * height / (static_cast<double>(width) * width)});
}

std::shared_ptr<const Geometry> MakePlane(float width, float height)
{
    return std::make_shared<Primitive<Saddle>>(Saddle{width, height, 0});
}

} // namespace fernwick
