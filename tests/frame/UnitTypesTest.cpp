#include "frame/MCArray.h"
#include "frame/Query.h"
#include "frame/TMCException.h"
#include "frame/TMCString.h"
#include "tests/support/StaticServices.h"
#include <cstring>
#include <memory>

namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// Writes down how it is counted.
class Probe final : public IMCUnknown {
public:
    Probe(char name, std::string& log) : fName(name), fLog(log) { }

    MCErr QueryInterface(const GUID&, void**) override
    {
        Note('?');
        return kMCNoInterface;
    }
    uint32_t AddRef() override { return Note('+'); }
    uint32_t Release() override { return Note('-'); }

private:
    char fName;
    std::string& fLog;

    uint32_t Note(char sign)
    {
        fLog += {sign, fName};
        return 1;
    }
};

class UnitTypesTest : public UnitTest {
protected:
    std::string fLog;
    Probe fA{'a', fLog};
    Probe fB{'b', fLog};

    std::string TakeLog() { return std::exchange(fLog, {}); }
};

TEST_F(UnitTypesTest, ACountedPointerCountsTheNewObjectBeforeItDropsTheOld)
{
    {
        MCCountedPtr<Probe> pointer(&fA);
        const MCCountedPtr<Probe> same(pointer);
        TakeLog();
        pointer = &fA;
        pointer = same;
        EXPECT_EQ(TakeLog(), "");
        pointer = &fB;
        EXPECT_EQ(TakeLog(), "+b-a");
        pointer = nullptr;
        pointer = nullptr;
        EXPECT_EQ(TakeLog(), "-b");
        EXPECT_THAT(TakeReports(), IsEmpty());
        pointer = &fB;
        EXPECT_EQ(Query(fA, IID_IMCUnknown, pointer), kMCNoInterface);
        EXPECT_EQ(TakeLog(), "+b-b?a") << "a query empties the slot first";
        EXPECT_EQ(pointer.operator->(), nullptr);
        EXPECT_THAT(TakeReports(), ElementsAre("Bad Pointer"));
    }
    EXPECT_EQ(TakeLog(), "-a");
}

TEST_F(UnitTypesTest, AMovedPointerTakesTheReferenceOver)
{
    {
        MCCountedPtr<Probe> first(&fA);
        MCCountedPtr<Probe> second(std::move(first));
        MCCountedPtr<Probe> third(&fB);
        TakeLog();
        first = std::move(second);
        EXPECT_FALSE(second);
        EXPECT_EQ(TakeLog(), "");
        MCCountedPtr<Probe>& itself = first;
        first = std::move(itself);
        EXPECT_EQ(first.Get(), &fA);
        second = first;
        TakeLog();
        second = std::move(first); // the same object in both: nothing happens
        EXPECT_EQ(first.Get(), &fA);
        EXPECT_EQ(TakeLog(), "");
        third = std::move(second);
        EXPECT_EQ(TakeLog(), "-b");

        uint64_t bearing[2] = {kMCDeceased, 0};
        *second.Address() = reinterpret_cast<Probe*>(bearing);
        second = std::move(third); // drops a deceased object without a call
        third = MCCountedPtr<Probe>();
        EXPECT_EQ(TakeLog(), "");
    }
    EXPECT_EQ(TakeLog(), "-a-a");
    EXPECT_THAT(TakeReports(), IsEmpty());
}

TEST_F(UnitTypesTest, ACountedPointerTellsADeceasedObjectAndLeavesItAlone)
{
    uint64_t bearing[2] = {kMCDeceased, 0};
    MCCountedPtr<Probe> marked;
    *marked.Address() = reinterpret_cast<Probe*>(kMCDeceased);
    EXPECT_EQ(marked.Get(), reinterpret_cast<Probe*>(kMCDeceased));
    EXPECT_THAT(TakeReports(), ElementsAre("!MCCheckDeceased(fObject)"));
    *marked.Address() = reinterpret_cast<Probe*>(bearing);
    EXPECT_EQ(marked.operator->(), reinterpret_cast<Probe*>(bearing));
    EXPECT_THAT(TakeReports(), ElementsAre("!MCCheckDeceased(*(void**)fObject)"));
}

TEST_F(UnitTypesTest, AnArrayStaysAsItWasWhenMemoryIsRefused)
{
    MCArray<int32_t> array(2, MCArrayBase::kClearNew);
    EXPECT_EQ(array[0], 0);
    array[1] = 5;
    MCArray<int32_t> assigned;
    fServices.Memory().RefuseAfter(0);
    EXPECT_FALSE(array.SetElemCount(3));
    assigned = array;
    EXPECT_EQ(MCArray<int32_t>(4).GetElemCount(), 0u);
    EXPECT_THAT(TakeReports(),
        ElementsAre("Array allocation failed!", "Unable to complete operator=() memory allocation failed.",
            "Array allocation failed in constructor!"));
    EXPECT_EQ(assigned.GetElemCount(), 0u);
    EXPECT_EQ(array.GetElemCount(), 2u);
    fServices.Memory().RefuseAfter(-1);
    EXPECT_TRUE(array.SetElemCount(3));
    EXPECT_EQ(array[1], 5);
    EXPECT_EQ(array[2], 0); // cleared, as the array was made to
    MCArray<int32_t> copy(array);
    EXPECT_TRUE(copy.SetElemCount(4));
    EXPECT_EQ(copy[3], 0); // and its copy too

    EXPECT_FALSE(array.SetElemCount(0x60000000)); // 6 GiB
    EXPECT_THAT(TakeReports(), ElementsAre("size <= UINT32_MAX", "Array allocation failed!"));
}

TEST_F(UnitTypesTest, AnArrayOverOutsideMemoryIsNeitherResizedNorFreed)
{
    int32_t memory[3] = {1, 2, 3};
    {
        MCArray<int32_t> array(memory, 3);
        EXPECT_FALSE(array.Append(4));
        array.Remove(0);
        EXPECT_EQ(array.GetElemCount(), 3u);
        EXPECT_THAT(TakeReports(), AllOf(SizeIs(2), Each("Can't resize array with external memory")));
    }
    EXPECT_THAT(memory, ElementsAre(1, 2, 3));
    const MCArray<int32_t> none(static_cast<int32_t*>(nullptr), 3);
    EXPECT_TRUE(none.IsValid());
    EXPECT_EQ(MCArray<int32_t>(none).GetElemCount(), 0u);
    EXPECT_THAT(TakeReports(), ElementsAre("IsValid()"));
}

TEST_F(UnitTypesTest, AnArrayChecksItsEnds)
{
    MCArray<int32_t> array;
    for (int32_t i = 0; i < 5; ++i)
        array.Append(i);
    array.Append(array[4]); // from the very storage that moves
    array.Remove(1, 2);
    EXPECT_THAT(TakeReports(), IsEmpty());
    EXPECT_THAT(std::vector<int32_t>(&array[0], &array[0] + array.GetElemCount()), ElementsAre(0, 3, 4, 4));
    array[4] = 77;
    array.Remove(3, 2);
    array.Remove(3, 1);
    EXPECT_THAT(TakeReports(),
        ElementsAre("index < GetElemCount()", "Removing more items than are in the array!!",
            "Removing more items than are in the array!!"));
    EXPECT_EQ(array.GetElemCount(), 3u);
}

TEST_F(UnitTypesTest, AnArrayGrowsInStridesAndMovesWhatItHolds)
{
    const auto text = [](uint32_t i) { return std::string(40, 'x') + std::to_string(i); };
    const int64_t before = fServices.Memory().Allocations();
    MCClassArray<std::unique_ptr<std::string>> array; // no copy of an element exists
    std::vector<const std::string*> made;
    for (uint32_t i = 0; i < 1000; ++i) {
        array.Append(std::make_unique<std::string>(text(i)));
        made.push_back(array[i].get());
    }
    EXPECT_EQ(fServices.Memory().Allocations() - before, 11); // 1, 2, 4 to 1024
    array.Remove(0, 10);
    EXPECT_TRUE(array.SetElemCount(1500)); // as many as asked for
    EXPECT_EQ(array[989].get(), made[999]);
    EXPECT_EQ(*array[0], text(10));
    EXPECT_EQ(array[1499], nullptr);
}

/// Throws from its third copy on.
struct Brittle {
    explicit Brittle(int* copies = nullptr) : fCopies(copies) { }
    Brittle(const Brittle& other) : fCopies(other.fCopies), fText(other.fText)
    {
        if (fCopies != nullptr && ++*fCopies > 2)
            throw TMCException(0);
    }
    int* fCopies;
    std::string fText = std::string(40, 'y');
};

TEST_F(UnitTypesTest, AnArrayStaysAsItWasWhenAnElementThrows)
{
    int copies = -100;
    MCClassArray<Brittle> array;
    for (int i = 0; i < 4; ++i)
        array.Append(Brittle(&copies));
    copies = 0;
    EXPECT_THROW(array.SetElemCount(9), TMCException);
    EXPECT_EQ(array.GetElemCount(), 4u);
    EXPECT_EQ(array[3].fText, std::string(40, 'y'));
}

TEST_F(UnitTypesTest, TheSpareElementIsEachArraysOwn)
{
    MCArray<int32_t> one, other;
    MCCountedPtrArray<Probe> held;
    one[0] = 5;
    held[3] = &fA;
    EXPECT_EQ(other[7], 0);
    EXPECT_FALSE(MCCountedPtrArray<Probe>(held)[0]);
    EXPECT_THAT(TakeReports(), AllOf(SizeIs(4), Each("index < GetElemCount()")));
}

TEST_F(UnitTypesTest, AnArrayOfCountedPointersOwnsAReferenceEach)
{
    {
        MCCountedPtrArray<Probe> array(1);
        EXPECT_FALSE(array[0]); // made, not merely allocated
        array[0] = &fA;
        array.Append(MCCountedPtr<Probe>(&fB));
        const MCCountedPtrArray<Probe> copy(array);
        TakeLog();
        array.Append({}); // into a larger room
        array.Remove(0);
        EXPECT_EQ(TakeLog(), "-a");
    }
    EXPECT_EQ(TakeLog(), "-a-b-b");
}

TEST_F(UnitTypesTest, AStringKeepsWhatFits)
{
    TMCString255 name;
    name = std::string(255, 'x');
    EXPECT_THAT(TakeReports(), IsEmpty());
    EXPECT_EQ(name.GetLength(), 255u);
    name = std::string(254, 'y') + "zz";
    EXPECT_EQ(name.GetText(), std::string(254, 'y') + "z");

    TMCStringOf<4> shorter;
    TMCString& base = shorter;
    base = TMCString255("abcdef");
    EXPECT_THAT(TakeReports(), SizeIs(2));
    EXPECT_TRUE(base == "abcd");
    EXPECT_FALSE(base == "Abcd");
    EXPECT_LT(base.Compare("\xFF", 1), 0);
    base.Truncate(2);
    EXPECT_STREQ(base.GetText(), "ab");

    constexpr size_t kTable = sizeof(void*);
    const TMCString255 head("abc");
    uint32_t counts[3];
    std::memcpy(counts, reinterpret_cast<const char*>(&head) + kTable, sizeof counts);
    EXPECT_THAT(counts, ElementsAre(3u, 3u, 255u));
    EXPECT_STREQ(reinterpret_cast<const char*>(&head) + kTable + sizeof counts, "abc");

    // Random numbers and characters, and no closing zero.
    std::memset(reinterpret_cast<char*>(&name) + kTable, 'w', sizeof name - kTable);
    EXPECT_EQ(name.GetLength(), 255u);
    const TMCString255 copy(name);
    EXPECT_EQ(std::strlen(copy.GetText()), 255u);
    EXPECT_TRUE(copy == name);
    EXPECT_THAT(TakeReports(), IsEmpty());
}

TEST_F(UnitTypesTest, AStringTurnsIntoUnicodeAndTellsWhenItDoesNotFit)
{
    char16_t text[16];
    const TMCString255 mixed("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\x80z");
    EXPECT_TRUE(mixed.ToUnicode(text, 8));
    EXPECT_EQ(std::u16string(text), u"a\u00E9\u20AC\U0001F600\uFFFDz");
    EXPECT_TRUE(TMCString255("\xC0\xAF\xED\xA0\x80\xF4\x90\x80\x80\xE2\x82").ToUnicode(text, 16));
    EXPECT_EQ(std::u16string(text), std::u16string(11, u'\uFFFD')); // overlong, surrogate, too high, cut off
    EXPECT_THAT(TakeReports(), IsEmpty());

    EXPECT_FALSE(mixed.ToUnicode(text, 5)); // no half of a pair
    EXPECT_EQ(std::u16string(text), u"a\u00E9\u20AC");
    EXPECT_FALSE(mixed.ToUnicode(nullptr, 0));
    EXPECT_THAT(TakeReports(), AllOf(SizeIs(2), Each("Bad size in TMCString::ToUnicode")));
}

TEST_F(UnitTypesTest, AnExceptionIsReportedByItsCodeAndItsCopiesTakeTheDataOver)
{
    for (const uint32_t code : {0x80010080u, 0x800101EAu, 0x80010081u, 0u, 4u, kMCPureCall})
        TMCException{code};
    EXPECT_THAT(TakeReports(),
        ElementsAre("A cancel exception is being thrown", "A cancel exception is being thrown",
            "An unable to connect exception is being thrown", "An exception is being thrown"));

    struct Data final : TMCExceptionData {
        explicit Data(int& deaths) : fDeaths(deaths) { }
        ~Data() override { ++fDeaths; }
        int& fDeaths;
    };
    int deaths = 0;
    {
        const TMCException first(4, "file", 12, new Data(deaths));
        EXPECT_EQ(fServices.Debug().Reports().back().file, "file");
        EXPECT_EQ(fServices.Debug().Reports().back().line, 12);
        const TMCException second(first);
        TMCException third(0, nullptr, 0, new Data(deaths));
        third = second;
        EXPECT_EQ(deaths, 1); // what it had
        EXPECT_EQ(first.fData, nullptr);
        EXPECT_EQ(second.fData, nullptr);
        EXPECT_EQ(third.fErrorCode, 4u);
    }
    EXPECT_EQ(deaths, 2);
    EXPECT_THAT(TakeReports(), SizeIs(1)); // copies are silent
}

TEST_F(UnitTypesTest, AReleaseBelowZeroThrowsAndDestroysOnce)
{
    struct Stubborn final : TBasicUnknown {
        explicit Stubborn(uint32_t& caught) : fCaught(caught) { }
        ~Stubborn()
        {
            try {
                Release();
            } catch (const TMCException& exception) {
                fCaught = exception.fFile == nullptr ? exception.fErrorCode : 1;
            }
        }
        uint32_t Release() override { return ReleaseComponent(this); }
        uint32_t& fCaught;
    };
    uint32_t caught = 0;
    auto* const object = new Stubborn(caught);
    EXPECT_EQ(gLiveComponentCount, 1);
    EXPECT_EQ(object->AddRef(), 2u);
    EXPECT_EQ(object->Release(), 1u);
    EXPECT_EQ(object->Release(), 0u);
    EXPECT_EQ(caught, 0xFFFFFFFEu);
}

TEST_F(UnitTypesTest, WithoutAMemoryServiceThereIsNoMemory)
{
    IMemoryUtilities* const memory = std::exchange(gMemoryUtilities, nullptr);
    EXPECT_EQ(TMCObject::operator new(8), nullptr);
    EXPECT_EQ(AllocateBlock(8), nullptr);
    FreeBlock(nullptr);
    gMemoryUtilities = memory;
    EXPECT_THAT(TakeReports(), AllOf(SizeIs(3), Each("gMemoryUtilities")));
    EXPECT_EQ(TMCObject::operator new (size_t{1} << 32), nullptr);
    EXPECT_THAT(TakeReports(), SizeIs(1));
}

TEST_F(UnitTypesTest, ColoursCompareChannelByChannelAndNaNIsNeverEqual)
{
    TMCColorRGBA color{0.5f, 0.25f, 1, 0.75f};
    TMCColorRGBA other = color;
    for (uint32_t channel = 0; channel < 4; ++channel) {
        EXPECT_TRUE(color.Equals(other));
        other[channel] += 0.125f;
        EXPECT_FALSE(color.Equals(other));
        EXPECT_TRUE(color.Equals(other, 0.125f));
        EXPECT_FALSE(color.Equals(other, 0.124f));
        other[channel] = kNaN;
        EXPECT_FALSE(other.Equals(other));
        EXPECT_FALSE(other.Equals(other, 1));
        other[channel] = color[channel];
    }
    color += other;
    color *= 0.25f;
    EXPECT_THAT(color, IsColor(0.25f, 0.125f, 0.5f, 0.375f));
    color.SetRGB(1);
    EXPECT_THAT(color, IsColor(1, 1, 1, 0.375f));
    EXPECT_EQ(Luminance(color), 1.0f);
    EXPECT_EQ(Luminance(TMCColorRGB{0, 0, 0.375f}), 0x1.51eb86p-5f); // in float it ends in 84
}

TEST_F(UnitTypesTest, ABadIndexRaisesAReportAndGivesTheLastElement)
{
    TMCColorRGBA color{1, 2, 3, 4};
    EXPECT_EQ(TVector2(1, 2)[2], 2);
    EXPECT_EQ(TVector3(1, 2, 3)[0xFFFFFFFF], 3);
    color[4] = 5;
    EXPECT_EQ(color.fAlpha, 5);
    EXPECT_THAT(TakeReports(), ElementsAre("elemNum<2", "elemNum<3", "elemNum<4"));
}

TEST_F(UnitTypesTest, AnyLengthAboveZeroBecomesOne)
{
    const auto unit = [](TVector3 vector) {
        Normalize(vector);
        return vector;
    };
    for (const float scale : {1e-45f, 1e-39f, 5e-39f, 1.0f, 1e38f, 3.4e38f})
        for (const TVector3& way : {TVector3(1, 0, 0), TVector3(1, -1, 1)}) {
            TVector3 vector = way;
            vector *= scale;
            EXPECT_NEAR(Length(unit(vector)), 1, 1e-6) << scale;
        }
    EXPECT_EQ(
        unit({1, 2, 4}), TVector3(0x1.bee904p-3f, 0x1.bee904p-2f, 0x1.bee904p-1f)); // by the factor in float
    EXPECT_EQ(unit(TVector3::kZero), TVector3::kZero);
    const TVector3 endless = unit({kInfinity, 1, 0});
    EXPECT_TRUE(std::isnan(endless[0]) && endless[1] == 0);
    EXPECT_EQ(unit({1, kNaN, 2})[2], 2);

    TVector3 scaled(1e-39f, 0, 0); // by the factor alone, whatever becomes of it
    ScaleByReciprocalLength(scaled);
    EXPECT_EQ(scaled[0], kInfinity);
    EXPECT_TRUE(std::isnan(scaled[1]));
}

TEST_F(UnitTypesTest, TheAngleOfParallelVectorsIsANumber)
{
    const TVector3 skew(1, 1, 1); // its quotients are rounded past 1 and -1
    EXPECT_EQ(AngleBetween(skew, skew), 0);
    EXPECT_FLOAT_EQ(AngleBetween(skew, -skew), 3.14159265f);
    EXPECT_TRUE(std::isnan(AngleBetween(skew, TVector3::kZero)));
}

TEST_F(UnitTypesTest, NumbersAreCutTowardZeroAndStrayOnesGiveTheLowest)
{
    EXPECT_EQ(CutToInt32(2.99), 2);
    EXPECT_EQ(CutToInt32(-2.99), -2);
    EXPECT_EQ(CutToInt32(2147483647.9), INT32_MAX);
    for (const double stray : {2147483648.0, -2147483649.0, 1e300, -HUGE_VAL, std::nan("")})
        EXPECT_EQ(CutToInt32(stray), INT32_MIN);
}

} // namespace
