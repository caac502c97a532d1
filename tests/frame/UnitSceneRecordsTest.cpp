#include "frame/SceneRecords.h"
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <vector>

// What a host finds in the records of a ray query and of a place before it fills them in.

namespace {

/// The four-byte words of a record that don't hold 0, by their offset.
template <class Record> std::map<size_t, uint32_t> WordsSet(const Record& record)
{
    std::map<size_t, uint32_t> words;
    for (size_t offset = 0; offset < sizeof record; offset += 4) {
        uint32_t word;
        std::memcpy(&word, reinterpret_cast<const char*>(&record) + offset, sizeof word);
        if (word != 0)
            words[offset] = word;
    }
    return words;
}

constexpr uint32_t kOne = 0x3F800000; // 1.0

TEST(SceneRecordsTest, AHitHoldsItsKindAndTheHostsStartingValues)
{
    alignas(RayHitRecord) unsigned char memory[sizeof(RayHitRecord)];
    std::memset(memory, 0xA5, sizeof memory); // what the constructor leaves would show
    const RayHitRecord* const hit = new (memory) RayHitRecord(-3);
    const std::map<size_t, uint32_t> expected
        = {{12, kOne}, {36, kOne}, {200, 0xFFFFF}, {224, kOne}, {236, kOne}, {268, kOne}, {284, kOne},
            {300, kOne}, {316, kOne}, {332, kOne}, {348, kOne}, // two identities
            {424, 0xFFFFFFFD}, {504, 0x0101}};
    EXPECT_EQ(WordsSet(*hit), expected);
}

TEST(SceneRecordsTest, AQueryIsOpenAndItsRayAndBoxAreEmpty)
{
    TRay3D ray;
    RayHitRecord hit(0);
    const RayHitParams params(ray, hit);
    EXPECT_EQ(params.fNearLimit, 0);
    EXPECT_EQ(params.fFarLimit, 1.0e30f);
    EXPECT_EQ(params.fRay, &ray);
    EXPECT_EQ(params.fHit, &hit);
    for (const uint32_t word : params.fWords)
        EXPECT_EQ(word, 0xFFFFFFFF);
    EXPECT_EQ(params.fLastWords[0] | params.fLastWords[1], 0u);
    EXPECT_TRUE(WordsSet(ray).empty());
    for (uint32_t i = 0; i < 3; ++i) {
        EXPECT_EQ(TBBox3D().fMin[i], 1.0e20f);
        EXPECT_EQ(TBBox3D().fMax[i], -1.0e20f);
    }
}

} // namespace
