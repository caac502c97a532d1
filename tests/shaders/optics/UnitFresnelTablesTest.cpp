#include "optics/ColorSystems.h"
#include "optics/IlluminantPresets.h"
#include "optics/OpticalPresets.h"
#include "optics/RobertsonLines.h"
#include "optics/SpectralTables.h"
#include "tests/optics/Mark.h"
#include <cstring>
#include <gtest/gtest.h>

namespace {

// Other tests hold the tables against published data; here each digit counts.
TEST(Tables, KeepEachDigit)
{
    using namespace ColorSystems;
    using namespace SpectralTables;
    const ColorSystem* const systems[] = {&AdobeRGB, &sRGBSystem, &NTSCsystem, &SMPTEsystem, &CIEsystem,
        &MyMonitor, &AppleRGB, &Source, &Destination, &MyMonitorsRGB, &TalunSystem};
    float numbers[std::size(systems)][16];
    for (size_t i = 0; i < std::size(systems); ++i)
        std::memcpy(numbers[i], &systems[i]->xyYRed, sizeof numbers[i]);
    EXPECT_EQ(Mark(numbers), 1833631306u);
    EXPECT_EQ(Mark(kOpticalPresets), 960969981u);
    EXPECT_EQ(Mark(kIlluminantTemperatures), 2222182935u);
    EXPECT_EQ(Mark(Robertson::rt), 4096340895u);
    EXPECT_EQ(Mark(Robertson::uvt), 1003165306u);
    EXPECT_EQ(Mark(XBar), 285584011u);
    EXPECT_EQ(Mark(YBar), 4129302651u);
    EXPECT_EQ(Mark(ZBar), 975139128u);
    EXPECT_EQ(Mark(D65Array), 1201011379u);
}

} // namespace
