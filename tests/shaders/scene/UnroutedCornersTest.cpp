#include "frame/Query.h"
#include "shaders/scene/Corners.h"
#include "tests/shaders/scene/SceneTest.h"
#include "tests/support/StaticServices.h"

namespace {

constexpr TVector3 kFlat{0, 0, 1};
const float kRightAngle = static_cast<float>(1.5707963267948966f / 3.14);

/// A flat grid of 256 cells an edge. With the default radius of 12 cells and step of 2 a line has 6 probes, of
/// which the first 4 count.
class CornersTest : public UnitTest {
protected:
    MCCountedPtr<Corners> fCorners;
    MCCountedPtr<INormalGrid> fGrid;
    CornersParams fRecord;
    ShadingIn fIn;
    bool fFullArea = true;

    CornersTest()
    {
        *fCorners.Address() = new Corners;
        Query(*static_cast<I3DExShader*>(fCorners.Get()), IID_INormalGrid, fGrid);
        fCorners->ExtensionDataChanged();
        for (int32_t u = 0; u < 256; ++u)
            for (int32_t v = 0; v < 256; ++v)
                EXPECT_TRUE(fGrid->SetNormal(u, v, kFlat));
    }
    float Value(float u = 0.5f, float v = 0.5f)
    {
        fIn.fUV = {u, v};
        *static_cast<CornersParams*>(fCorners->GetExtensionDataBuffer()) = fRecord;
        EXPECT_EQ(fCorners->ExtensionDataChanged(), MC_S_OK);
        return ValueOf(fCorners, fFullArea, fIn);
    }
    /// True when the normal of cell (u, v), and no other, turned by a right angle shows in the sample's value.
    bool Counts(int32_t u, int32_t v, float sampleU, float sampleV)
    {
        fGrid->SetNormal(u, v, {1, 0, 0});
        const float value = Value(sampleU, sampleV);
        fGrid->SetNormal(u, v, kFlat);
        EXPECT_TRUE(value == 0 || value == kRightAngle);
        return value > 0;
    }
};

TEST_F(CornersTest, TheCentreIsTheCellUnderTheSample)
{
    EXPECT_EQ(Value(), 0);
    EXPECT_TRUE(Counts(128, 128, 0.5f, 0.5f));
    EXPECT_FALSE(Counts(128, 128, 0.504f, 0.5f));
    fGrid->SetNormal(128, 128, {0, 0, -3});
    EXPECT_FLOAT_EQ(Value(), 1.000507f); // a little over 1, not clamped
    fGrid->SetNormal(128, 128, {0, 0, 0});
    EXPECT_EQ(Value(), 0); // NaN is passed over
}

TEST_F(CornersTest, ProbesGoOutFromTheGridsCornerAndTheCountsPinThem)
{
    constexpr float kLow = 5 / 256.0f; // the neighbourhood lies 7 cells over the edge: 4 strides
    constexpr float kMid = 0.5f;
    constexpr float kHigh = 250 / 256.0f; // as far over the other
    const std::tuple<int32_t, int32_t, float, float, bool> cases[]
        = {{1, 1, kMid, kMid, true}, {7, 1, kMid, kMid, true}, {9, 1, kMid, kMid, false}, // the first half
            {0, 251, kMid, kMid, true}, {3, 0, kMid, kMid, false}, // down from (1, 1) is the column before
            {6, 251, kMid, kMid, true}, {7, 7, kMid, kMid, true},
            {0, 1, kMid, kMid, false}, // no pinning behind the first probe
            {0, 1, kLow, kMid, true}, {2, 1, kLow, kMid, false}, {7, 1, kLow, kMid, false},   // u stays 0
            {7, 0, kMid, kLow, true}, {7, 1, kMid, kLow, false},                              // v stays 0
            {0, 1, kHigh, kMid, true}, {1, 1, kHigh, kMid, false}, {6, 1, kHigh, kMid, true}, // counted down
            {0, 251, kMid, kHigh, false}, {7, 1, kMid, kHigh, true}, {7, 7, kMid, kHigh, false}}; // v stays 1
    for (const auto& [u, v, sampleU, sampleV, counts] : cases)
        EXPECT_EQ(Counts(u, v, sampleU, sampleV), counts)
            << u << ", " << v << " from " << sampleU << ", " << sampleV;
}

TEST_F(CornersTest, EachStrideThatIsNeededIsCounted)
{
    // Bounds that lie over an edge by up to four cells, for which a step of 2 takes up to two strides. Two strides
    // reach the second cell of each pair, none or one the first.
    const auto cell = [](int32_t place) { return static_cast<float>(place) / 256; };
    const struct {
        int32_t place, strides;
    } kLow[] = {{12, 0}, {11, 1}, {10, 1}, {9, 2}, {8, 2}},
      kHigh[] = {{243, 0}, {244, 1}, {245, 1}, {246, 2}, {247, 2}};
    for (const auto& [place, strides] : kLow) {
        EXPECT_EQ(Counts(3, 1, cell(place), 0.5f), strides == 0) << place;
        EXPECT_EQ(Counts(4, 1, cell(place), 0.5f), strides == 1) << place;
        EXPECT_EQ(Counts(0, 1, cell(place), 0.5f), strides > 0) << place;
        EXPECT_EQ(Counts(0, 252, 0.5f, cell(place)), strides == 1) << place;
        EXPECT_EQ(Counts(0, 254, 0.5f, cell(place)), strides > 0) << place;
    }
    for (const auto& [place, strides] : kHigh) {
        EXPECT_EQ(Counts(0, 1, cell(place), 0.5f), strides > 0) << place; // counted down, however far
        EXPECT_EQ(Counts(0, 251, 0.5f, cell(place)), strides == 0) << place;
        EXPECT_EQ(Counts(0, 253, 0.5f, cell(place)), strides < 2) << place;
        EXPECT_EQ(Counts(0, 255, 0.5f, cell(place)), true) << place;
    }
}

TEST_F(CornersTest, TheGridIsAFaceOfTheObjectBehindItsMembersAndKnowsItsEdge)
{
    const auto face = [this](IMCUnknown& from, const GUID& id) {
        void* out = nullptr;
        EXPECT_EQ(from.QueryInterface(id, &out), MC_S_OK);
        EXPECT_EQ(from.Release(), 2u); // one for each pointer that is kept
        return static_cast<const char*>(out) - reinterpret_cast<const char*>(fCorners.Get());
    };
    constexpr GUID kRecorded // hosts that are built ask by these bytes
        = {0x22DFB5BC, 0x4B4A, 0x49FE, {0xA0, 0xA1, 0xBB, 0x1F, 0xDF, 0xDF, 0xDA, 0xC5}};
    IMCUnknown& shader = *static_cast<I3DExShader*>(fCorners.Get());
    for (IMCUnknown* const from : {&shader, static_cast<IMCUnknown*>(fGrid.Get())}) {
        EXPECT_EQ(face(*from, IID_I3DExShader), 0);
        EXPECT_EQ(face(*from, IID_IMCUnknown), 8);
        EXPECT_EQ(face(*from, IID_IExDataExchanger), 32);
        EXPECT_GT(face(*from, kRecorded), 48 << 20);
        EXPECT_EQ(from->QueryInterface(IID_INormalGrid, nullptr), kMCNoInterface);
    }
    EXPECT_EQ(
        static_cast<char*>(fCorners->GetExtensionDataBuffer()) - reinterpret_cast<char*>(fCorners.Get()), 40);

    const std::pair<int32_t, int32_t> kEdges[] = {{Code("Opt1"), 256}, {Code("Opt2"), 512},
        {Code("Opt3"), 1024}, {Code("Opt4"), 2048}, {Code("Opt5"), 1}};
    for (const auto& [code, edge] : kEdges) {
        const int32_t before = fGrid->GetEdge();
        static_cast<CornersParams*>(fCorners->GetExtensionDataBuffer())->fGridOption = code;
        EXPECT_EQ(fGrid->GetEdge(), before); // it and what follows from it are of the last change
        fCorners->ExtensionDataChanged();
        EXPECT_EQ(fGrid->GetEdge(), edge);
        EXPECT_TRUE(fGrid->SetNormal(edge - 1, edge - 1, kFlat));
        EXPECT_FALSE(fGrid->SetNormal(edge, 0, kFlat) || fGrid->SetNormal(0, edge, kFlat));
    }
}

TEST_F(CornersTest, WithoutProbesAnEarlierSamplesAngleStands)
{
    fRecord.fWidthPercent = 0.3f;
    EXPECT_EQ(Value(), 0); // nothing earlier
    fRecord.fWidthPercent = 5;
    EXPECT_TRUE(Counts(1, 1, 0.5f, 0.5f));
    fRecord.fWidthPercent = 0.3f;
    EXPECT_EQ(Value(), kRightAngle);
    fRecord.fWidthPercent = -5; // less than no probe: not even that place counts
    EXPECT_EQ(Value(), 0);
    fRecord = {5, 5, 50, 0, 0, {}}; // one cell, no radius
    EXPECT_EQ(Value(), kRightAngle);
}

TEST_F(CornersTest, CoordinatesOutsideTheGridCountAsItsNearerEnd)
{
    fGrid->SetNormal(255, 255, {1, 0, 0});
    fGrid->SetNormal(0, 0, {0, 1, 0});
    fRecord.fWidthPercent = 0.5f; // one probe a line, at (1, 1)
    for (const float high : {1.0f, 1.5f, 3.0e38f, kInfinity})
        EXPECT_EQ(Value(high, high), kRightAngle) << high;
    for (const float low : {-0.001f, -7.0f, -kInfinity, kNaN})
        EXPECT_EQ(Value(low, low), kRightAngle) << low;
    EXPECT_FALSE(fGrid->SetNormal(-1, 0, kFlat) || fGrid->SetNormal(0, -1, kFlat));
}

TEST_F(CornersTest, NoWidthOrDivisorLeavesTheArraysOrHangs)
{
    const float numbers[] = {0, 1, -1, 0.4f, -0.4f, 99.9f, 100, 5000, 1.0e9f, 8.3e8f, -3.0e38f, 1.0e-30f,
        kInfinity, -kInfinity, kNaN};
    for (const int32_t option : {Code("Opt1"), Code("Opt4"), 0})
        for (const float width : numbers)
            for (const float divisor : numbers) {
                fRecord = {width, divisor, 50, 0, option, {}};
                EXPECT_GE(Value(0.25f, 0.999f), 0);
                EXPECT_LE(Value(0.999f, 0.25f), 1.001f);
            }
    fRecord = {};
    EXPECT_EQ(Value(), 0);
    fGrid->SetNormal(3, 1, {1, 0, 0});
    EXPECT_EQ(Value(), kRightAngle);
    fRecord.fWidthPercent = 10000;
    fRecord.fStepDivisor = 25600; // a line of so many probes
    Value();
    fRecord = {};
    EXPECT_EQ(Value(), kRightAngle); // the grid is as it was
}

TEST_F(CornersTest, RefusedMemoryGivesNoObject)
{
    fServices.Memory().RefuseAfter(0);
    EXPECT_EQ(new Corners, nullptr);
    EXPECT_EQ(gLiveComponentCount, 1);
}

} // namespace
