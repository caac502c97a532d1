#include "optics/FresnelOptics.h"
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <limits>

namespace {

using C = std::complex<double>;
constexpr int32_t kEntries = AngleTables::kEntries;
constexpr OpticalMedium kAir = {1, 0, 1, 0};
constexpr OpticalMedium kGlass = {1.51673f, 1e-5f, 1, 0.017f};

C Widen(Complex z) { return {z.re, z.im}; }

/// The Fresnel equations as textbooks have them, in double, with the decaying root for the refracted wave.
struct Textbook {
    double Rs, Rp, Ts, Tp;

    Textbook(C n1, C n2, double mu1, double mu2, double angle)
    {
        const double cosine = std::cos(angle);
        C refracted = std::sqrt(1.0 - std::pow(n1 / n2 * std::sin(angle), 2));
        if ((n2 * refracted).imag() < 0)
            refracted = -refracted;
        const C s = n1 / mu1 * cosine + n2 / mu2 * refracted;
        const C p = n2 / mu2 * cosine + n1 / mu1 * refracted;
        Rs = std::norm((n1 / mu1 * cosine - n2 / mu2 * refracted) / s);
        Rp = std::norm((n2 / mu2 * cosine - n1 / mu1 * refracted) / p);
        const double factor = (n2 * refracted / (n1 * cosine)).real();
        Ts = std::norm(2.0 * n1 / mu1 * cosine / s) * factor;
        Tp = std::norm(2.0 * n1 / mu1 * cosine / p) * factor;
    }
};

TEST(Arcsine, AgreesWithDoublePrecisionInEveryQuadrant)
{
    for (const float x : {-30.0f, -1.38f, -1.0f, -0.9f, -0.3f, 0.0f, 0.2f, 0.7f, 0.999f, 1.2f, 4.0f})
        for (const float y : {-8.0f, -0.9f, -0.04f, -1e-5f, 1e-5f, 0.3f, 1.1f, 5.0f}) {
            const C expected = std::asin(C(x, y));
            EXPECT_LT(std::abs(Widen(Arcsine({x, y})) - expected),
                3e-6 + 3e-3 * std::sqrt(std::fabs(y)) * (x == -1))
                << x << " " << y;
            for (const auto& [sine, exact] :
                {std::pair{Sine({x, y}), std::sin(C(x, y))}, {Cosine({x, y}), std::cos(C(x, y))}})
                EXPECT_LT(std::abs(Widen(sine) - exact), 1e-6 * std::abs(exact));
        }
    // On the real axis the sign of the imaginary part opposes x.
    EXPECT_LT(std::abs(Widen(Arcsine({1.38f, 0})) - C(kHalfPi, -std::acosh(1.38))), 1e-6);
    EXPECT_LT(std::abs(Widen(Arcsine({-1.38f, 0})) - C(-kHalfPi, std::acosh(1.38))), 1e-6);
    EXPECT_EQ(Arcsine({1, -0.0f}).re, static_cast<float>(kHalfPi));
}

TEST(FresnelEquations, AgreeWithTheTextbookAtEveryAngle)
{
    const OpticalInterface boundaries[] = {{{1, 0}, {1.51673f, 1e-5f}, 1, 1}, {{1, 0}, {1.333f, 0}, 1, 1},
        {{1, 0}, {0.25f, 2.84f}, 1, 0.999962f}, {{1.33283f, 0}, {0.121f, 3.5f}, 1, 0.999974f},
        {{1, 0}, {1.51673f, 2}, 1, 2000}, {{2.414f, 0}, {1, 0}, 1, 1}, {{1.5f, 0}, {1.2f, 0.3f}, 1, 1},
        {{1, 0.1f}, {1.62f, 0.4f}, 1.5f, 0.94f}};
    for (const auto& boundary : boundaries)
        for (double angle = 0; angle < 3.14; angle += 0.0173) {
            const bool behind = angle > kHalfPi;
            C n1 = Widen(boundary.fIndex1), n2 = Widen(boundary.fIndex2);
            double mu1 = boundary.fPermeability1, mu2 = boundary.fPermeability2;
            if (behind) { // the real parts change places, the imaginary parts stay
                n1.real(boundary.fIndex2.re);
                n2.real(boundary.fIndex1.re);
                std::swap(mu1, mu2);
            }
            const Textbook expected(n1, n2, mu1, mu2, behind ? kPi - angle : angle);
            const Complex theta = {static_cast<float>(angle), 0};
            const PolarizedShares R = Reflectance(boundary, theta);
            const PolarizedShares T = Transmittance(boundary, theta);
            const double tolerance = 1e-4;
            EXPECT_NEAR(R.fS, expected.Rs, tolerance) << &boundary - boundaries << " " << angle;
            EXPECT_NEAR(R.fP, expected.Rp, tolerance) << &boundary - boundaries << " " << angle;
            EXPECT_NEAR(T.fS, expected.Ts, tolerance * std::max(1.0, expected.Ts));
            EXPECT_NEAR(T.fP, expected.Tp, tolerance * std::max(1.0, expected.Tp));
            if (n1.imag() == 0 && n2.imag() == 0) { // nothing is absorbed
                EXPECT_NEAR(R.fS + T.fS, 1, tolerance) << angle;
                EXPECT_NEAR(R.fP + T.fP, 1, tolerance) << angle;
            }
        }
}

TEST(FresnelEquations, KnownPoints)
{
    const OpticalInterface glass = {{1, 0}, {1.51673f, 1e-5f}, 1, 1};
    EXPECT_NEAR(Reflectance(glass, {0, 0}).fS, 0.04216, 1e-5);
    EXPECT_NEAR(Transmittance(glass, {0, 0}).fP, 0.95784, 1e-5);
    EXPECT_NEAR(Reflectance(glass, {1.5f, 0}).fS, 0.7804, 1e-4);
    EXPECT_NEAR(Reflectance(glass, {1.5f, 0}).fP, 0.5635, 1e-4);
    EXPECT_LT(Reflectance(glass, {std::atan(1.51673f), 0}).fP, 1e-9) << "Brewster's angle";
    EXPECT_NEAR(Reflectance(glass, {2, 0}).fS, 1, 3.5e-5) << "total internal reflection";
    EXPECT_NEAR(Transmittance(glass, {2, 0}).fP, 0, 3e-5);

    const OpticalInterface none = {{1.3f, 0}, {1.3f, 0}, 1, 1};
    EXPECT_NEAR(Reflectance(none, {0.7f, 0}).fS, 0, 1e-9);
    EXPECT_NEAR(Transmittance(none, {0.7f, 0}).fP, 1, 1e-6);

    // Each component of the angle chooses for itself, pi/2 belonging to the front.
    const Complex mixed = {static_cast<float>(kHalfPi), 2};
    const OpticalInterface boundary = {{1, 2}, {3, 4}, 5, 6};
    EXPECT_EQ(Widen(boundary.IncidentIndex(mixed)), C(1, 4));
    EXPECT_EQ(Widen(boundary.TransmittedIndex(mixed)), C(3, 2));
    EXPECT_EQ(Widen(boundary.TransmittedPermeability({2, 0})), C(5, 0));
}

TEST(DispersedIndex, FollowsTheGlassCurve)
{
    // The published indices of BK7 at the F, d and C lines; this dispersion makes the curve its own.
    const float dispersion = static_cast<float>(1 / (124.113 * 0.51673));
    EXPECT_NEAR(DispersedIndex(486.1f, 1.51673f, dispersion), 1.52238, 3e-5);
    EXPECT_NEAR(DispersedIndex(587.6f, 1.51673f, dispersion), 1.51680, 3e-5);
    EXPECT_NEAR(DispersedIndex(656.3f, 1.51673f, dispersion), 1.51432, 3e-5);
    EXPECT_EQ(DispersedIndex(430, 1, 0.5f), 1) << "vacuum does not disperse";
    EXPECT_NEAR(DispersedIndex(430, 2, 0.04f) - 2, 2 * (DispersedIndex(430, 1.5f, 0.04f) - 1.5f), 1e-5);
}

TEST(DeriveOptics, FindsTheFirstPresetWithinItsTolerance)
{
    AngleTables tables;
    for (int32_t row = 0; row < kNoPreset; ++row) {
        const OpticalMedium& medium = kOpticalPresets[row];
        const auto found = DeriveOptics(medium, medium, 589.3f, 0, tables);
        // 29 and 30 lie within 0.01 of row 0; 28 lies within it of row 14 but for its dispersion.
        EXPECT_EQ(found.fPreset2, row >= 29 ? 0 : row);
        EXPECT_EQ(found.fPreset1, row >= 29 ? 0 : row == 28 ? 14 : row);
    }
    const auto found = DeriveOptics({1.02f, 0, 1, 0}, {1.00027f, 0, 1, 0.1f}, 589.3f, 0, tables);
    EXPECT_EQ(found.fPreset1, kNoPreset);
    EXPECT_EQ(found.fPreset2, kNoPreset);
}

TEST(DeriveOptics, FillsTheTablesOfItsModeAlone)
{
    AngleTables tables;
    DeriveOptics(kAir, kGlass, 450, 0, tables);
    EXPECT_EQ(tables.fReflectanceS[0], 0);
    const auto found = DeriveOptics(kAir, kGlass, 450, kReflectanceMode, tables);
    EXPECT_EQ(tables.fTransmittanceS[0], 0);
    DeriveOptics(kAir, {1.3f, 0, 1, 0}, 450, kTransmittanceMode, tables);
    EXPECT_NEAR(tables.fTransmittanceP[0], 0.98299, 1e-4);

    EXPECT_GT(found.fIndex2ReAtWavelength, 1.52f);
    EXPECT_EQ(found.fIndex2ImAtWavelength,
        DispersedIndex(static_cast<float>(1178.6 - 450), 1e-5f, 1e-5f / 1.51673f * 0.017f));
    for (const int32_t i : {0, 300, 511, 512, 800, 1023}) {
        const OpticalInterface boundary
            = {{1, 0}, {found.fIndex2ReAtWavelength, found.fIndex2ImAtWavelength}, 1, 1};
        const auto shares = Reflectance(boundary, {static_cast<float>(i * kPi / 1023), 0});
        EXPECT_EQ(tables.fReflectanceS[i], shares.fS);
        EXPECT_EQ(tables.fReflectanceP[i], shares.fP);
    }
    DeriveOptics(kAir, {0, 0, 1, 1}, 450, kReflectanceMode, tables); // an index of 0 must not crash
}

class FresnelLookupTest : public testing::Test {
protected:
    static float Angle(double entry) { return static_cast<float>(entry * kPi / 1023); }

    AngleTables fTables;
};

TEST_F(FresnelLookupTest, ReadsOnThroughTheTablesAndStopsAtTheLastEntry)
{
    float* const runs[]
        = {fTables.fReflectanceP, fTables.fReflectanceS, fTables.fTransmittanceP, fTables.fTransmittanceS};
    for (int32_t i = 0; i < 4 * kEntries; ++i)
        runs[i / kEntries][i % kEntries] = static_cast<float>(i) / 8192;

    const auto entry = [&](uint32_t mode, float polarization, float angle) {
        return FresnelLookup(fTables, mode, polarization, angle) * 8192;
    };
    EXPECT_NEAR(entry(kReflectanceMode, 0, Angle(100.25)), 100.25, 0.01);
    EXPECT_NEAR(entry(kReflectanceMode, 100, Angle(100.25)), 1124.25, 0.01);
    EXPECT_NEAR(entry(kReflectanceMode, 25, Angle(511.5)), 511.5 + 256, 0.01) << "across the jump at pi/2";
    EXPECT_NEAR(entry(kTransmittanceMode, 0, Angle(7.5)), 2055.5, 0.01);
    EXPECT_EQ(entry(kReflectanceMode, 0, Angle(1023.6)), 1023) << "from here on no straight line";
    EXPECT_EQ(entry(kReflectanceMode, 0, Angle(1100.6)), 1100);
    EXPECT_EQ(entry(kTransmittanceMode, 0, Angle(1100.6)), 3148);
    EXPECT_EQ(entry(kTransmittanceMode, 100, Angle(1100.6)), 4095);
    for (const float beyond : {1e5f, 1e30f, std::numeric_limits<float>::infinity()})
        EXPECT_EQ(entry(kReflectanceMode, 0, beyond), 4095) << beyond;
    EXPECT_EQ(entry(kReflectanceMode, 100, std::nanf("")), 1024);
    EXPECT_EQ(entry(kReflectanceMode, 100, -0.5f), 1024);
    EXPECT_EQ(entry(0, 50, 1), 0);
}

TEST_F(FresnelLookupTest, AnOvershootTakesTheNearestEntryUnlimited)
{
    fTables.fReflectanceS[8] = 0.4f;
    fTables.fReflectanceS[9] = 0.9f;
    const auto lookup
        = [&](double entry) { return FresnelLookup(fTables, kReflectanceMode, 200, Angle(entry)); };
    EXPECT_NEAR(lookup(8.15), 0.95, 1e-4) << "within 0 to 1 the straight line counts";
    EXPECT_FLOAT_EQ(lookup(8.497), 0.8f);
    ASSERT_EQ(static_cast<float>(Angle(8.5) * 1023.0 / kPi), 8.5f);
    EXPECT_FLOAT_EQ(lookup(8.5), 1.8f) << "a half rounds up";
    fTables.fReflectanceP[9] = 0.95f;
    EXPECT_FLOAT_EQ(FresnelLookup(fTables, kReflectanceMode, -100, Angle(9)), 1.0f);
    EXPECT_FLOAT_EQ(FresnelLookup(fTables, kReflectanceMode, -100, Angle(8.2)), -0.4f) << "below 0 as well";
    fTables.fReflectanceP[8] = 0;
    fTables.fReflectanceP[9] = 1;
    for (const float end : {0.0f, 1.0f}) {
        fTables.fReflectanceS[8] = fTables.fReflectanceS[9] = 0.25f + end / 2;
        EXPECT_EQ(lookup(8.5), end) << "the ends aren't beyond";
    }
}

} // namespace
