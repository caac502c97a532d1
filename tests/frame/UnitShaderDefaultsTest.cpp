#include "frame/ShaderBase.h"
#include "frame/TMCException.h"
#include "tests/support/FakeOuter.h"
#include "tests/support/StaticServices.h"
#include <array>
#include <cstring>
#include <map>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

template <class Base> class Bare final : public Base {
public:
    uint32_t Release() override { return TBasicUnknown::ReleaseComponent(this); }
};

/// A shader that supplies nothing, plain until `fOuter` aggregates it.
class UnitShaderDefaultsTest : public UnitTest {
protected:
    FakeOuter fOuter;
    Bare<TBasicShader>* fBare = new Bare<TBasicShader>;
    I3DExShader& fShader = *fBare;
    IExDataExchanger& fExchanger = *fBare;
    ShadingIn fIn;

    UnitShaderDefaultsTest() { fOuter.fInner = &fShader; }
    ~UnitShaderDefaultsTest() override { Aggregate(); }

    void Aggregate() { fBare->SetOuterUnknown(fOuter.Unknown()); }
};

TEST_F(UnitShaderDefaultsTest, OperationsThatNobodySuppliesKeepTheirAnswers)
{
    I3DExShader& s = fShader;
    IExDataExchanger& e = fExchanger;
    ShadingFlags flags;
    void* const p = nullptr;
    for (const MCErr result :
        {s.ReportNeeds(flags), s.ReservedNotImplementedA(p, p, p), s.ReservedNotImplementedB(p, p),
            s.ReservedNotImplementedC(p, p), s.ReservedNotImplementedD(p, p, p), s.ReservedNotImplementedE(p),
            s.ReservedNotImplementedF(p), e.ReservedExchangeA(1, p), e.ReservedExchangeB(1, p),
            e.ReservedExchangeC(1, p, p), e.ReservedExchangeD(), static_cast<MCErr>(e.HandleEvent(3, p, p))})
        EXPECT_EQ(result, kMCNotImplemented);
    EXPECT_EQ(flags.fNeeds, 0);
    EXPECT_EQ(flags.fDependencyBits, 0xFFFF);
    EXPECT_EQ(e.ReservedExchangeE(), kMCNotSupported);
    EXPECT_EQ(e.ReservedExchangeF(p), kMCNotSupported);
    EXPECT_TRUE(
        s.QueryBooleanTrait() && s.ReservedTrueA() && s.ReservedTrueB(0) && e.ReservedExchangeTrue(p));
    EXPECT_FALSE(s.ReservedFalseA(this) || s.ReservedFalseB(this, this) || s.ReservedFalseC(1)
        || s.ReservedFalseD(1, this, this));
    EXPECT_THAT((std::vector<int32_t>{s.GetOutputKinds(), s.ReservedZeroA(), s.ReservedZeroB(5),
                    e.ReservedExchangeZeroA(), e.ReservedExchangeZeroB(),
                    static_cast<int32_t>(e.ExtensionDataChanged())}),
        testing::Each(0));
    EXPECT_EQ(s.ReservedMinusOne(5), -1);
    EXPECT_EQ(s.GetUnitScale(), 1.0f);
    EXPECT_EQ(Luminance(s.GetWhite()), 1.0f);
    EXPECT_THAT(TakeReports(), IsEmpty());

    s.ObsoleteCallA(p, p);
    s.ObsoleteCallB(p, p);
    EXPECT_EQ(e.GetExtensionDataBuffer(), nullptr);
    EXPECT_THAT(TakeReports(),
        ElementsAre("Should not be called", "Should not be called",
            "TBasicDataExchanger::GetExtensionDataBuffer() should NEVER be called"));
    EXPECT_THROW(e.GetParamsBufferSize(), TMCException);

    auto* const base = new Bare<ShaderBase>;
    EXPECT_EQ(base->HandleEvent(12345, p, p), 1);
    base->Release();
}

TEST_F(UnitShaderDefaultsTest, ShadingThatIsNotOfferedLeavesWhatItWasHanded)
{
    bool fullArea = true;
    float value = 7;
    TVector3 vector{7, 8, 9};
    TMCColorRGBA color{9, 9, 9, 9};
    EXPECT_EQ(fShader.ShadeValue(value, fullArea, fIn), 1.0f);
    EXPECT_EQ(fShader.ShadeVector(vector, fIn), 1.0f);
    EXPECT_EQ(fShader.ShadeColor(color, fullArea, fIn), 1.0f);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(vector, TVector3(7, 8, 9));
    EXPECT_THAT(color, IsColor(0, 0, 0, 1)); // the colour alone is set
    EXPECT_TRUE(fullArea);
}

TEST_F(UnitShaderDefaultsTest, OutArgumentsAreClearedOrCounted)
{
    void* places[3] = {this, this, this};
    fExchanger.CloneExtension(&places[0], nullptr);
    EXPECT_EQ(fExchanger.ReservedExchangeOut(&places[1]), &places[1]);
    EXPECT_EQ(fShader.ClearOutPointer(nullptr, nullptr, &places[2]), 1);
    EXPECT_THAT(places, testing::Each(nullptr));

    FakeOuter object;
    IMCUnknown* out = nullptr;
    EXPECT_TRUE(fShader.StoreCountedOut(&out, object.Unknown(), nullptr));
    EXPECT_EQ(out, object.Unknown());
    EXPECT_EQ(object.fCount, 2u);
    EXPECT_EQ(fShader.ClearCountedOut(0, nullptr, &out), nullptr);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(object.fCount, 1u);
    EXPECT_EQ(fShader.ClearCountedOut(0, nullptr, &out), nullptr);
    out = object.Unknown();
    EXPECT_TRUE(fShader.StoreCountedOut(&out, nullptr, nullptr));
    EXPECT_EQ(out, nullptr);
    EXPECT_THAT(TakeReports(), IsEmpty());
    EXPECT_TRUE(fShader.StoreCountedOut(nullptr, object.Unknown(), nullptr));
    EXPECT_EQ(object.fCount, 1u);
    EXPECT_THAT(TakeReports(), SizeIs(1));
}

TEST_F(UnitShaderDefaultsTest, ASurfaceIsTheWrappersColourAndYetNone)
{
    fIn.fNormalLocal = {1, 2, 3};
    fOuter.fColor = {0.1f, 0.2f, 0.3f, 0.4f};
    for (const bool wrapped : {false, true}) {
        if (wrapped)
            Aggregate();
        ShadingOut result;
        EXPECT_EQ(fShader.ShadeSurface(result, fIn), 0);
        EXPECT_EQ(result.fShadingNormal, TVector3(1, 2, 3));
        EXPECT_EQ(result.fCoverage, wrapped ? 1 : 0);
        EXPECT_EQ(result.fFullArea, wrapped);
        EXPECT_TRUE(result.fColor.Equals(wrapped ? fOuter.fColor : TMCColorRGBA::kOpaqueBlack));
    }
    EXPECT_EQ(fOuter.fCount, 1u);
}

TEST_F(UnitShaderDefaultsTest, DependencyBitsAreReadFromTheWrapper)
{
    const auto isSet = [&](uint32_t bit) { return fShader.IsDependencyBitSet(nullptr, bit); };
    EXPECT_FALSE(isSet(0));
    EXPECT_THAT(TakeReports(), ElementsAre("shShader"));
    Aggregate();
    EXPECT_TRUE(isSet(3)); // a new record, as a wrapper that fills nothing leaves it
    EXPECT_FALSE(isSet(16));
    fOuter.fFills = true;
    fOuter.fFlags.fDependencyBits = 0x8004;
    EXPECT_TRUE(isSet(2) && isSet(15) && isSet(34)); // 34 stands for 2
    EXPECT_FALSE(isSet(3) || isSet(16) || isSet(18));
    EXPECT_THAT(TakeReports(), IsEmpty());
}

TEST_F(UnitShaderDefaultsTest, TheDataComponentComparesAndTakesWhatIsForwarded)
{
    FakeOuter otherOuter;
    auto* const other = new Bare<TBasicShader>;
    otherOuter.fInner = other;
    EXPECT_EQ(fShader.SameParameters(nullptr), 0);
    EXPECT_EQ(fShader.SameParameters(other), 0);
    EXPECT_THROW(fShader.ForwardToDataComponent(this), TMCException);
    Aggregate();
    EXPECT_EQ(fShader.SameParameters(other), 0);
    other->SetOuterUnknown(otherOuter.Unknown());
    EXPECT_NE(fShader.SameParameters(other), 0);
    EXPECT_EQ(fOuter.fComparedWith, &otherOuter);
    fOuter.fEqual = false;
    EXPECT_EQ(fShader.SameParameters(other), 0);
    EXPECT_NE(other->SameParameters(&fShader), 0);
    fShader.ForwardToDataComponent(this);
    EXPECT_EQ(fOuter.fForwarded, this);
}

constexpr size_t kWords = sizeof(ShadingOut) / 4;
using Words = std::array<uint32_t, kWords>;

Words WordsOf(const ShadingOut& record)
{
    Words words;
    std::memcpy(words.data(), &record, sizeof record);
    return words;
}

constexpr uint32_t kAverage = 0x61767267;
constexpr size_t kSampledBlock = 72;
constexpr size_t kSingleBlock = 136;
constexpr size_t kVectorBlock = 172;

TEST_F(UnitShaderDefaultsTest, ANewSurfaceHasItsDefaultsAndAClearedOneIsZero)
{
    Words expected{};
    expected[(kSampledBlock + 60) / 4] = kAverage;
    ShadingOut cleared;
    cleared.fSampledBlock.fMode = 1;
    cleared.fSampledBlock.fSwitch = 1;
    cleared.Clear();
    EXPECT_EQ(WordsOf(cleared), expected);

    expected[(kSampledBlock + 36) / 4] = 4;
    expected[(kSingleBlock + 12) / 4] = 2;
    for (const auto& [offset, value] : std::map<size_t, float>{{12, 1}, {28, 0.5f}, {32, 1}, {36, 1},
             {kSampledBlock + 40, 0.85f}, {kSampledBlock + 52, 1}, {kSingleBlock + 16, 0.85f},
             {kSingleBlock + 28, 1}, {kVectorBlock + 32, 1}})
        std::memcpy(&expected[offset / 4], &value, sizeof value);
    EXPECT_EQ(WordsOf(ShadingOut()), expected);
}

/// A record with `number` in every field that sums and scales touch, counts included, and 1 in every other word.
ShadingOut Filled(float number)
{
    Words words;
    for (uint32_t& word : words)
        std::memcpy(&word, &number, sizeof number);
    for (const size_t count : {kSampledBlock + 36, kSingleBlock + 12, kSingleBlock + 20, kSingleBlock + 24})
        words[count / 4] = static_cast<uint32_t>(number);
    for (const size_t kept :
        {size_t{68}, kSampledBlock + 48, kSampledBlock + 60, kVectorBlock + 36, size_t{224}})
        words[kept / 4] = 1;
    ShadingOut record;
    std::memcpy(static_cast<void*>(&record), words.data(), sizeof record);
    return record;
}

TEST_F(UnitShaderDefaultsTest, SumsAndScalesTouchTheirFieldsAndNoOther)
{
    ShadingOut record = Filled(3);
    record += Filled(4);
    EXPECT_EQ(WordsOf(record), WordsOf(Filled(7)));
    record *= 0.5f;
    EXPECT_EQ(WordsOf(record), WordsOf(Filled(3.5f))); // counts cut, not rounded
    EXPECT_THAT(TakeReports(), IsEmpty());
}

TEST_F(UnitShaderDefaultsTest, CountsWrapAndAreCutThroughFloat)
{
    ShadingOut record;
    ShadingOut other;
    ShadingSingleBlock& single = record.fSingleBlock;
    single.fSwitch = 200;
    other.fSingleBlock.fSwitch = 100;
    single.fCount = INT32_MAX;
    other.fSingleBlock.fCount = 1;
    other.fVectorBlock.fLocal = true;
    record += other;
    EXPECT_EQ(single.fSwitch, 44);
    EXPECT_EQ(single.fCount, INT32_MIN);
    EXPECT_EQ(record.fVectorBlock.fThirdLevel, 2); // summed all the same
    EXPECT_THAT(TakeReports(), ElementsAre("fLocal == param.fLocal"));

    single.fSampleCount = -3;
    single.fCount = 16777219; // no float
    record *= 0.5f;
    EXPECT_EQ(single.fSampleCount, -1);
    EXPECT_EQ(single.fCount, 8388610);
    single.fSwitch = 200;
    record *= 2.0f;
    EXPECT_EQ(single.fSwitch, 144);
    record *= kNaN;
    EXPECT_EQ(single.fSampleCount, INT32_MIN);
    EXPECT_EQ(single.fSwitch, 0);
}

} // namespace
