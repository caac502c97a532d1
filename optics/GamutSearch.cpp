#include "optics/GamutSearch.h"
#include <algorithm>
#include <cmath>
#include <optional>

namespace {

/// A box around points. One that begins with a NaN overlaps none; later ones widen nothing.
struct LabBox {
    Float3 fMin;
    Float3 fMax;

    explicit LabBox(const Float3& point) : fMin(point), fMax(point) { }
    void Add(const Float3& point)
    {
        for (size_t i = 0; i < 3; ++i) {
            if (point[i] < fMin[i])
                fMin[i] = point[i];
            if (point[i] > fMax[i])
                fMax[i] = point[i];
        }
    }
    bool Overlaps(const LabBox& other) const
    {
        for (size_t i = 0; i < 3; ++i) {
            if (!(fMin[i] <= other.fMax[i] && other.fMin[i] <= fMax[i]))
                return false;
        }
        return true;
    }
};

/// Fills what is unset of the line at parameter t.
void FillLine(Float3& line, float t, const GamutQuery& query)
{
    for (size_t i = 0; i < 3; ++i) {
        if (line[i] == kUnset)
            line[i] = query.LabP1[i] + t * (query.LabP2[i] - query.LabP1[i]);
    }
}

/// Fills an unset corner of the face at (s, r).
void FillCorner(Float3& corner, float s, float r, const GamutQuery& query)
{
    if (std::find(corner.begin(), corner.end(), kUnset) == corner.end())
        return;
    const Float3 xyz = query.x4 * s + query.x5 * r - query.x3 * (s + r - 1);
    const float fx = LabCurve(xyz[0] / query.Ref[0]);
    const float fy = LabCurve(xyz[1] / query.Ref[1]);
    const float fz = LabCurve(xyz[2] / query.Ref[2]);
    // kept: L* in this form rounds otherwise than 116 fy - 16
    corner = {4 * (29 * fy - 4), 500 * (fx - fy), 200 * (fy - fz)};
}

/// Fills the corners that the eight halves of a cell share, once instead of for each of them.
void FillSharedCorners(std::array<GamutCell, 8>& volumes, const GamutQuery& query)
{
    GamutCell& lowLow = volumes[0b000];
    GamutCell& lowHigh = volumes[0b001];
    GamutCell& highLow = volumes[0b010];
    GamutCell& highHigh = volumes[0b011];
    FillCorner(lowLow.fCornerMinMax, lowLow.fUMin, lowLow.fVMax, query);
    FillCorner(lowLow.fCornerMaxMin, lowLow.fUMax, lowLow.fVMin, query);
    FillCorner(lowLow.fCornerMaxMax, lowLow.fUMax, lowLow.fVMax, query);
    FillCorner(highHigh.fCornerMinMax, highHigh.fUMin, highHigh.fVMax, query);
    FillCorner(highHigh.fCornerMaxMin, highHigh.fUMax, highHigh.fVMin, query);
    highHigh.fCornerMinMin = lowHigh.fCornerMaxMin = highLow.fCornerMinMax = lowLow.fCornerMaxMax;
    lowHigh.fCornerMinMin = lowLow.fCornerMinMax;
    lowHigh.fCornerMaxMax = highHigh.fCornerMinMax;
    highLow.fCornerMinMin = lowLow.fCornerMaxMin;
    highLow.fCornerMaxMax = highHigh.fCornerMaxMin;
    for (size_t i = 0; i < 4; ++i) { // the other half of the line has the same faces
        volumes[4 + i].fCornerMinMin = volumes[i].fCornerMinMin;
        volumes[4 + i].fCornerMinMax = volumes[i].fCornerMinMax;
        volumes[4 + i].fCornerMaxMin = volumes[i].fCornerMaxMin;
        volumes[4 + i].fCornerMaxMax = volumes[i].fCornerMaxMax;
    }
}

float Midpoint(float min, float max) { return static_cast<float>((min + max) / 2.0); }

bool IsShare(float number) { return number >= 0 && number <= 1; }

bool IsInTriangle(const LineHit& hit)
{
    return IsShare(hit.t) && hit.alpha + hit.beta <= 1 && hit.beta >= 0 && hit.alpha >= 0;
}

bool IsInQuad(const LineHit& hit) { return IsShare(hit.t) && IsShare(hit.alpha) && IsShare(hit.beta); }

/// A hit of the triangle at the low corner.
Residue FromLowCorner(const GamutCell& cell, const LineHit& hit)
{
    return {cell.fTMin + hit.t * (cell.fTMax - cell.fTMin),
        cell.fUMin + hit.alpha * (cell.fUMax - cell.fUMin), cell.fVMin + hit.beta * (cell.fVMax - cell.fVMin),
        cell.fFace, hit.fPoint};
}

/// A hit of the triangle at the high corner.
Residue FromHighCorner(const GamutCell& cell, const LineHit& hit)
{
    // kept: t is mirrored like u and v, though the line runs the same way; nothing reads it
    return {cell.fTMax + hit.t * (cell.fTMin - cell.fTMax),
        cell.fUMax + hit.alpha * (cell.fUMin - cell.fUMax), cell.fVMax + hit.beta * (cell.fVMin - cell.fVMax),
        cell.fFace, hit.fPoint};
}

/// The cell's part of the face is taken as two flat triangles.
std::optional<Residue> HitLeaf(const GamutCell& cell)
{
    const LineHit low = IntersectLineTriangle(
        cell.fLine0, cell.fLine1, cell.fCornerMinMin, cell.fCornerMaxMin, cell.fCornerMinMax);
    if (IsInTriangle(low))
        return FromLowCorner(cell, low);

    const LineHit high = IntersectLineTriangle(
        cell.fLine0, cell.fLine1, cell.fCornerMaxMax, cell.fCornerMinMax, cell.fCornerMaxMin);
    if (IsInTriangle(high))
        return FromHighCorner(cell, high);

    // In the quad but outside both triangles: on the diagonal, or where the two planes part.
    if (!IsInQuad(low) && !IsInQuad(high))
        return std::nullopt;
    const float lowSum = std::fabs(low.alpha) + std::fabs(low.beta);
    const float highSum = std::fabs(high.alpha) + std::fabs(high.beta);
    // An undefined low hit fails this test like any other.
    const bool takeLow = !std::isnan(lowSum) && !(lowSum > highSum);
    return takeLow ? FromLowCorner(cell, low) : FromHighCorner(cell, high);
}

Residue SearchLeaf(const GamutCell& cell, GamutSearch& search)
{
    const auto hit = HitLeaf(cell);
    if (!hit) {
        search.fMissed = true;
        return {.fFace = cell.fFace};
    }
    search.fFound = true;
    return *hit;
}

} // namespace

LineHit IntersectLineTriangle(
    const Float3& x1, const Float3& x2, const Float3& q1, const Float3& q2, const Float3& q3)
{
    const Float3 way = x2 - x1;
    const auto [t, alpha, beta] = SolveByCramer(way, q1 - q2, q1 - q3, q1 - x1);
    return {x1 + way * t, t, alpha, beta};
}

GamutCell TestCell(GamutCell cell, const GamutQuery& query)
{
    FillLine(cell.fLine0, cell.fTMin, query);
    FillLine(cell.fLine1, cell.fTMax, query);
    LabBox line(cell.fLine0);
    line.Add(cell.fLine1);

    FillCorner(cell.fCornerMinMin, cell.fUMin, cell.fVMin, query);
    FillCorner(cell.fCornerMinMax, cell.fUMin, cell.fVMax, query);
    FillCorner(cell.fCornerMaxMin, cell.fUMax, cell.fVMin, query);
    FillCorner(cell.fCornerMaxMax, cell.fUMax, cell.fVMax, query);
    LabBox face(cell.fCornerMinMin);
    face.Add(cell.fCornerMinMax);
    face.Add(cell.fCornerMaxMin);
    face.Add(cell.fCornerMaxMax);

    cell.fHit = line.Overlaps(face) ? 1 : 0;
    return cell;
}

std::array<GamutCell, 8> SplitCell(const GamutCell& cell, GamutSearch& search)
{
    const float t = Midpoint(cell.fTMin, cell.fTMax);
    const float u = Midpoint(cell.fUMin, cell.fUMax);
    const float v = Midpoint(cell.fVMin, cell.fVMax);

    std::array<GamutCell, 8> volumes;
    for (size_t i = 0; i < 8; ++i) {
        const bool highT = (i & 4) != 0;
        const bool highU = (i & 2) != 0;
        const bool highV = (i & 1) != 0;
        GamutCell& child = volumes[i];
        child.fTMin = highT ? t : cell.fTMin;
        child.fTMax = highT ? cell.fTMax : t;
        child.fUMin = highU ? u : cell.fUMin;
        child.fUMax = highU ? cell.fUMax : u;
        child.fVMin = highV ? v : cell.fVMin;
        child.fVMax = highV ? cell.fVMax : v;
        child.fLevel = cell.fLevel - 1;
        child.fFace = cell.fFace;

        // What lies on the parent's own corners is inherited, the rest stays unset.
        Float3 GamutCell::*const line = highT ? &GamutCell::fLine1 : &GamutCell::fLine0;
        Float3 GamutCell::*const corner = highU
            ? (highV ? &GamutCell::fCornerMaxMax : &GamutCell::fCornerMaxMin)
            : (highV ? &GamutCell::fCornerMinMax : &GamutCell::fCornerMinMin);
        child.*line = cell.*line;
        child.*corner = cell.*corner;
    }
    search.fCellCount += 8;
    return volumes;
}

Residue SearchCell(const GamutCell& cell, const GamutQuery& query, GamutSearch& search)
{
    if (search.fFound)
        return {};
    if (cell.fLevel <= 0) // a negative level, from a negative depth, ends here too
        return SearchLeaf(cell, search);

    // The half of the line nearer the anchor first: the order decides which of two crossings is found.
    constexpr size_t kVisitingOrder[] = {0b100, 0b110, 0b101, 0b111, 0b000, 0b001, 0b010, 0b011};
    auto volumes = SplitCell(cell, search);
    FillSharedCorners(volumes, query);
    Residue residue;
    for (const size_t i : kVisitingOrder) {
        if (search.fFound)
            break;
        const GamutCell child = TestCell(volumes[i], query);
        if (child.fHit == 1)
            residue = SearchCell(child, query, search);
    }
    return residue;
}

Residue ProjectToGamut(const ColorSystem& system, const Float3& color, float factor, float anchorA,
    float anchorB, int32_t depth, GamutSearch& search)
{
    const Float3 black = XyYToXYZ(system.xyYBlack);
    const Float3 red = XyYToXYZ(system.xyYRed);
    const Float3 green = XyYToXYZ(system.xyYGreen);
    const Float3 blue = XyYToXYZ(system.xyYBlue);
    const Float3 white = XyYToXYZ(system.xyYWhite);
    const Float3 yellow = red + green - black;
    const Float3 magenta = red + blue - black;
    const Float3 cyan = green + blue - black;
    const Float3 faces[6][3] = {{black, red, blue}, {black, blue, green}, {green, cyan, yellow},
        {black, green, red}, {red, yellow, magenta}, {blue, magenta, cyan}};

    const Float3 lab = XYZToLab(color, white);
    GamutQuery query = {lab, {lab[0] * factor, anchorA, anchorB}, {}, {}, {}, white};
    GamutCell root;
    root.fLevel = depth;

    Residue residue;
    for (int32_t face = 1; face <= 6; ++face) {
        const auto& [origin, uEnd, vEnd] = faces[face - 1];
        query.x3 = origin;
        query.x4 = uEnd;
        query.x5 = vEnd;
        root.fFace = face;
        if (!(search.fSkipBottomFace && face == 4))
            residue = SearchCell(root, query, search);
        if (search.fFound) {
            residue.fFace = face;
            return residue;
        }
    }
    return {1, 0, 0, 1, residue.fLab};
}

Float3 FaceColor(const Residue& residue)
{
    const float u = residue.u;
    const float v = residue.v;
    switch (residue.fFace) {
    case 1:
        return {u, 0, v};
    case 2:
        return {0, v, u};
    case 3:
        return {v, 1, u};
    case 4:
        return {v, u, 0};
    case 5:
        return {1, u, v};
    case 6:
        return {u, v, 1};
    default:
        return {0, 0, 0};
    }
}
