#include <algorithm>
#include <array>
#include <cmath>
#include <embree3/rtcore.h>
#include <limits>
#include <numeric>
#include <vector>

// Embree isn't built for WebAssembly. Here is what the host asks of it: scenes of triangles, of shapes that meet rays by
// themselves, and of such scenes at their places, each with a tree of boxes over it.

namespace {

using Vector = std::array<double, 3>;

Vector Cross(const Vector& a, const Vector& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
double Dot(const Vector& a, const Vector& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
Vector Sum(const Vector& a, const Vector& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
Vector Difference(const Vector& a, const Vector& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }

Vector OriginOf(const RTCRay& ray) { return {ray.org_x, ray.org_y, ray.org_z}; }
Vector DirectionOf(const RTCRay& ray) { return {ray.dir_x, ray.dir_y, ray.dir_z}; }

struct Box {
    Vector least = {HUGE_VAL, HUGE_VAL, HUGE_VAL};
    Vector most = {-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};

    void Add(const Vector& point)
    {
        for (size_t axis = 0; axis < 3; ++axis) {
            least[axis] = std::min(least[axis], point[axis]);
            most[axis] = std::max(most[axis], point[axis]);
        }
    }
    void Add(const Box& box)
    {
        Add(box.least);
        Add(box.most);
    }
    double Middle(size_t axis) const { return least[axis] + most[axis]; } // doubled

    /// Where a ray enters it, or infinity. A box without thickness is met too.
    double Entry(const Vector& origin, const Vector& inverse, double nearest, double farthest) const
    {
        for (size_t axis = 0; axis < 3; ++axis) {
            const double first = (least[axis] - origin[axis]) * inverse[axis];
            const double second = (most[axis] - origin[axis]) * inverse[axis];
            if (std::isnan(first) || std::isnan(second)) // along a side, and on it
                continue;
            constexpr double kMore = 1e-12; // for what was rounded
            nearest = std::max(nearest, std::min(first, second) - kMore * std::fabs(first));
            farthest = std::min(farthest, std::max(first, second) + kMore * std::fabs(second));
        }
        return nearest <= farthest ? nearest : HUGE_VAL;
    }
};

/// Rows of a rigid transform, and what it moves by.
struct Place {
    std::array<Vector, 3> rows;
    Vector offset;

    Vector Turned(const Vector& a) const { return {Dot(rows[0], a), Dot(rows[1], a), Dot(rows[2], a)}; }
    Vector Placed(const Vector& a) const { return Sum(Turned(a), offset); }
};

Place Inverse(const Place& place)
{
    const auto& [x, y, z] = place.rows;
    const double size = 1 / Dot(Cross(x, y), z);
    const Vector columns[] = {Cross(y, z), Cross(z, x), Cross(x, y)};
    Place inverse;
    for (size_t row = 0; row < 3; ++row)
        for (size_t column = 0; column < 3; ++column)
            inverse.rows[row][column] = columns[column][row] * size;
    const Vector back = inverse.Turned(place.offset);
    inverse.offset = {-back[0], -back[1], -back[2]};
    return inverse;
}

} // namespace

struct RTCGeometryTy {
    RTCGeometryType fType;
    int fCount = 1;
    void* fUser = nullptr;
    RTCBoundsFunction fBounds = nullptr;
    RTCIntersectFunctionN fIntersect = nullptr;
    std::vector<float> fPoints;
    const unsigned* fTriangles = nullptr;
    size_t fTriangleCount = 0;
    RTCScene fInstanced = nullptr;
    Place fToWorld;
    Place fToLocal;

    size_t Count() const { return fType == RTC_GEOMETRY_TYPE_TRIANGLE ? fTriangleCount : 1; }
    Vector Corner(size_t triangle, size_t corner) const
    {
        const float* const point = &fPoints[size_t{3} * fTriangles[3 * triangle + corner]];
        return {point[0], point[1], point[2]};
    }
    Box BoxOf(size_t primitive) const;
    void Meet(size_t primitive, unsigned number, RTCIntersectContext& context, RTCRayHit& query) const;

private:
    void MeetTriangle(
        size_t triangle, unsigned number, const RTCIntersectContext& context, RTCRayHit& query) const;
};

struct RTCSceneTy {
    struct Item {
        unsigned geometry;
        unsigned primitive;
        Box box;
    };
    /// The items from `first` on, or two nodes, of which this one's follower is the left.
    struct Node {
        Box box;
        unsigned first;
        unsigned count; ///< 0 for two nodes
        unsigned right;
    };

    std::vector<RTCGeometry> fGeometries;
    std::vector<Item> fItems;
    std::vector<Node> fNodes;

    ~RTCSceneTy()
    {
        for (RTCGeometry const geometry : fGeometries)
            delete geometry;
    }
    void Commit()
    {
        fItems.clear();
        fNodes.clear();
        for (unsigned i = 0; i < fGeometries.size(); ++i)
            for (size_t primitive = 0; primitive < fGeometries[i]->Count(); ++primitive)
                fItems.push_back({i, static_cast<unsigned>(primitive), fGeometries[i]->BoxOf(primitive)});
        if (!fItems.empty())
            Split(0, fItems.size());
    }
    void Meet(RTCIntersectContext& context, RTCRayHit& query) const
    {
        if (fNodes.empty())
            return;
        const Vector direction = DirectionOf(query.ray);
        const Vector inverse = {1 / direction[0], 1 / direction[1], 1 / direction[2]};
        MeetNode(0, OriginOf(query.ray), inverse, context, query);
    }

private:
    void Split(size_t first, size_t last)
    {
        constexpr size_t kMost = 4; // items of a leaf
        const size_t place = fNodes.size();
        fNodes.push_back({{}, static_cast<unsigned>(first), static_cast<unsigned>(last - first), 0});
        Box middles;
        for (size_t i = first; i < last; ++i) {
            const Box& box = fItems[i].box;
            fNodes[place].box.Add(box);
            middles.Add(Vector{box.Middle(0), box.Middle(1), box.Middle(2)});
        }
        if (last - first <= kMost)
            return;
        size_t longest = 0;
        for (size_t axis = 1; axis < 3; ++axis)
            if (middles.most[axis] - middles.least[axis] > middles.most[longest] - middles.least[longest])
                longest = axis;
        const size_t middle = first + (last - first) / 2;
        const auto at = [this](size_t i) { return fItems.begin() + static_cast<std::ptrdiff_t>(i); };
        std::nth_element(at(first), at(middle), at(last), [longest](const Item& left, const Item& right) {
            return left.box.Middle(longest) < right.box.Middle(longest);
        });
        fNodes[place].count = 0;
        Split(first, middle);
        fNodes[place].right = static_cast<unsigned>(fNodes.size());
        Split(middle, last);
    }
    void MeetNode(size_t place, const Vector& origin, const Vector& inverse, RTCIntersectContext& context,
        RTCRayHit& query) const
    {
        const Node& node = fNodes[place];
        for (size_t i = node.first; i < node.first + node.count; ++i)
            fGeometries[fItems[i].geometry]->Meet(fItems[i].primitive, fItems[i].geometry, context, query);
        if (node.count > 0)
            return;
        const auto entry = [&](size_t child) {
            return fNodes[child].box.Entry(origin, inverse, query.ray.tnear, query.ray.tfar);
        };
        size_t order[] = {place + 1, node.right};
        double entries[] = {entry(order[0]), entry(order[1])};
        if (entries[1] < entries[0]) {
            std::swap(order[0], order[1]);
            std::swap(entries[0], entries[1]);
        }
        for (size_t i = 0; i < 2; ++i)
            if (entries[i] <= query.ray.tfar && entries[i] != HUGE_VAL)
                MeetNode(order[i], origin, inverse, context, query);
    }
};

Box RTCGeometryTy::BoxOf(size_t primitive) const
{
    Box box;
    if (fType == RTC_GEOMETRY_TYPE_TRIANGLE) {
        for (size_t corner = 0; corner < 3; ++corner)
            box.Add(Corner(primitive, corner));
    } else if (fType == RTC_GEOMETRY_TYPE_USER) {
        RTCBounds bounds;
        const RTCBoundsFunctionArguments arguments = {fUser, static_cast<unsigned>(primitive), 0, &bounds};
        fBounds(&arguments);
        box.Add(Vector{bounds.lower_x, bounds.lower_y, bounds.lower_z});
        box.Add(Vector{bounds.upper_x, bounds.upper_y, bounds.upper_z});
    } else if (!fInstanced->fNodes.empty()) {
        const Box& local = fInstanced->fNodes.front().box;
        for (int corner = 0; corner < 8; ++corner) {
            Vector point;
            for (size_t axis = 0; axis < 3; ++axis)
                point[axis] = (corner >> axis & 1) != 0 ? local.most[axis] : local.least[axis];
            box.Add(fToWorld.Placed(point));
        }
    }
    return box;
}

void RTCGeometryTy::Meet(
    size_t primitive, unsigned number, RTCIntersectContext& context, RTCRayHit& query) const
{
    if (fType == RTC_GEOMETRY_TYPE_TRIANGLE)
        return MeetTriangle(primitive, number, context, query);
    if (fType == RTC_GEOMETRY_TYPE_USER) {
        int isValid = -1;
        const RTCIntersectFunctionNArguments arguments = {&isValid, fUser, static_cast<unsigned>(primitive),
            &context, reinterpret_cast<RTCRayHitN*>(&query), 1, number};
        return fIntersect(&arguments);
    }
    const RTCRay world = query.ray;
    const Vector origin = fToLocal.Placed(OriginOf(world));
    const Vector direction = fToLocal.Turned(DirectionOf(world));
    RTCRay& ray = query.ray;
    ray.org_x = static_cast<float>(origin[0]);
    ray.org_y = static_cast<float>(origin[1]);
    ray.org_z = static_cast<float>(origin[2]);
    ray.dir_x = static_cast<float>(direction[0]);
    ray.dir_y = static_cast<float>(direction[1]);
    ray.dir_z = static_cast<float>(direction[2]);
    context.instID[0] = number;
    fInstanced->Meet(context, query);
    context.instID[0] = RTC_INVALID_GEOMETRY_ID;
    const float distance = ray.tfar;
    ray = world;
    ray.tfar = distance;
}

/// By the ray's side of each edge. Two triangles that share an edge find the same number of opposite sign for it, so that
/// no ray passes between them.
void RTCGeometryTy::MeetTriangle(
    size_t triangle, unsigned number, const RTCIntersectContext& context, RTCRayHit& query) const
{
    const Vector origin = OriginOf(query.ray);
    const Vector direction = DirectionOf(query.ray);
    Vector corners[3];
    for (size_t i = 0; i < 3; ++i)
        corners[i] = Difference(Corner(triangle, i), origin);
    double sides[3]; // of the edge across from each corner
    for (size_t i = 0; i < 3; ++i) {
        const Vector& from = corners[(i + 1) % 3];
        const Vector& to = corners[(i + 2) % 3];
        sides[i] = Dot(Cross(Difference(to, from), Sum(to, from)), direction);
    }
    const auto [least, most] = std::minmax({sides[0], sides[1], sides[2]});
    if (least < 0 && most > 0)
        return;
    const Vector normal = Cross(Difference(corners[1], corners[0]), Difference(corners[2], corners[0]));
    const double sum = sides[0] + sides[1] + sides[2];
    const double distance = Dot(corners[0], normal) / Dot(normal, direction);
    if (sum == 0 || !(distance >= query.ray.tnear && distance <= query.ray.tfar))
        return;
    query.ray.tfar = static_cast<float>(distance);
    query.hit.u = static_cast<float>(sides[1] / sum);
    query.hit.v = static_cast<float>(sides[2] / sum);
    query.hit.geomID = number;
    query.hit.primID = static_cast<unsigned>(triangle);
    query.hit.instID[0] = context.instID[0];
}

RTCDevice rtcNewDevice(const char*) { return nullptr; }

RTCScene rtcNewScene(RTCDevice) { return new RTCSceneTy; }
void rtcReleaseScene(RTCScene scene) { delete scene; }
void rtcSetSceneFlags(RTCScene, RTCSceneFlags) { }
void rtcCommitScene(RTCScene scene) { scene->Commit(); }
void rtcIntersect1(RTCScene scene, RTCIntersectContext* context, RTCRayHit* query)
{
    scene->Meet(*context, *query);
}

RTCGeometry rtcNewGeometry(RTCDevice, RTCGeometryType type)
{
    return new RTCGeometryTy{.fType = type, .fPoints = {}, .fToWorld = {}, .fToLocal = {}};
}
void rtcCommitGeometry(RTCGeometry) { }
void rtcReleaseGeometry(RTCGeometry) { } // that of a scene goes with it
unsigned rtcAttachGeometry(RTCScene scene, RTCGeometry geometry)
{
    scene->fGeometries.push_back(geometry);
    return static_cast<unsigned>(scene->fGeometries.size() - 1);
}
void rtcAttachGeometryByID(RTCScene scene, RTCGeometry geometry, unsigned) // comes in order
{
    rtcAttachGeometry(scene, geometry);
}

void rtcSetGeometryUserPrimitiveCount(RTCGeometry, unsigned) { } // always one
void rtcSetGeometryUserData(RTCGeometry geometry, void* user) { geometry->fUser = user; }
void rtcSetGeometryBoundsFunction(RTCGeometry geometry, RTCBoundsFunction bounds, void*)
{
    geometry->fBounds = bounds;
}
void rtcSetGeometryIntersectFunction(RTCGeometry geometry, RTCIntersectFunctionN intersect)
{
    geometry->fIntersect = intersect;
}
void* rtcSetNewGeometryBuffer(
    RTCGeometry geometry, RTCBufferType, unsigned, RTCFormat, size_t stride, size_t count)
{
    geometry->fPoints.resize(stride / sizeof(float) * count);
    return geometry->fPoints.data();
}
void rtcSetSharedGeometryBuffer(RTCGeometry geometry, RTCBufferType, unsigned, RTCFormat,
    const void* triangles, size_t, size_t, size_t count)
{
    geometry->fTriangles = static_cast<const unsigned*>(triangles);
    geometry->fTriangleCount = count;
}
void rtcSetGeometryInstancedScene(RTCGeometry geometry, RTCScene scene) { geometry->fInstanced = scene; }
void rtcSetGeometryTransform(RTCGeometry geometry, unsigned, RTCFormat, const void* transform)
{
    const auto* const numbers = static_cast<const float*>(transform);
    for (size_t row = 0; row < 3; ++row) {
        for (size_t column = 0; column < 3; ++column)
            geometry->fToWorld.rows[row][column] = numbers[4 * row + column];
        geometry->fToWorld.offset[row] = numbers[4 * row + 3];
    }
    geometry->fToLocal = Inverse(geometry->fToWorld);
}
