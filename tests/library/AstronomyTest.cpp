#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <sstream>
#include <vector>

#include "tests/support/NumberTable.h"
#include "zarnsys/util/Astronomy.h"
#include "zarnsys/util/ZarnMoonVal.h"

namespace {

/// What a routine gives, its return value first.
std::array<double, 8> call(const std::string& name, const std::vector<double>& in) {
    std::array<double, 8> v = {};
    int n = 0;
    if (name == "lst") v[0] = lst(in[0], in[1]);
    if (name == "adj_time") v[0] = adj_time(in[0]);
    if (name == "atan_circ") v[0] = atan_circ(in[0], in[1]);
    if (name == "altit") v[0] = altit(in[0], in[1], in[2], &v[1]);
    if (name == "subtend") v[0] = subtend(in[0], in[1], in[2], in[3]);
    if (name == "lpsun") lpsun(in[0], &v[0], &v[1]);
    if (name == "lpmoon") lpmoon(in[0], in[1], in[2], &v[0], &v[1], &v[2]);
    if (name == "flmoon") flmoon(static_cast<int>(in[0]), static_cast<int>(in[1]), &v[0]);
    if (name == "lun_age") v = {lun_age(in[0], &n), static_cast<double>(n)};
    if (name == "lunskybright") v[0] = lunskybright(in[0], in[1], in[2], in[3], in[4], in[5]);
    if (name == "computeMoonParam")
        computeMoonParam(in[0], in[1], in[2], in[3], in[4], &v[0], &v[1], &v[2], &v[3], &v[4],
                         &v[5], &v[6], &v[7]);
    if (name == "getTelescopeCoord")
        v[0] = getTelescopeCoord(v[1] = 1, v[2] = 1, static_cast<Telescope>(in[0]));
    if (name == "ZarnMoonVal") {
        const ZarnMoonVal moon(in[0], in[1], in[2], static_cast<Telescope>(in[3]));
        v = {moon.getMoonAlt(), moon.getMoonAz(), moon.getMoonDistance(), moon.getFLI(),
             moon.getMoonPhase()};
    }
    return v;
}

TEST(AstronomyTest, AllRoutinesAgreeWithTheirFormulasInFiftyDigits) {
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(expectTable(TEST_DATA "/sky-values.txt", call).size(), 13U);
    const std::string beyond = "Out of bounds in adj_time!\n";
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), beyond + beyond + beyond);
}

TEST(AstronomyTest, SiderealTimeStaysInItsCircle) {
    for (int i = 0; i < 600; ++i) {
        const double jd = -1e6 + i * 9999.37;
        const double time = lst(jd, 3.7);
        EXPECT_TRUE(time >= 0.0 && time < 24.0) << jd;
    }
    // A hair before 0, which rounds up to 24.
    EXPECT_LT(lst(2460013.5345977396, 11.993643202839694), 24.0);
    // Below 24 in a wide register of 32-bit x86, 24 in memory.
    EXPECT_LT(lst(2443254.8319681152, 21.919124874738806), 24.0);
}

TEST(AstronomyTest, EdgesOfTheSkyAreNumbers) {
    // Rounding carries some sines and cosines beyond 1; next to 1, the arc sine and cosine lose
    // sqrt(2 * 2^-53) = 1.5e-8 rad.
    constexpr double LOST = 3e-8;
    double azimuth = 0;
    for (int tenths = -895; tenths < 900; ++tenths) {
        const double lat = tenths / 10.0;
        EXPECT_NEAR(altit(lat, 0.0, lat, &azimuth), 90.0, LOST * 57.3) << lat;
        EXPECT_NEAR(altit(-lat, 12.0, lat, &azimuth), -90.0, LOST * 57.3) << lat;
        EXPECT_EQ(subtend(tenths / 75.0, lat, tenths / 75.0, lat), 0.0) << lat;
        EXPECT_NEAR(subtend(5.0, lat, 17.0, -lat), 3.14159265358979, LOST) << lat;
    }
}

/// An arc cosine this small goes in steps: its argument is a multiple of 2^-53 away from 1. The
/// formula for small angles has none.
TEST(AstronomyTest, OnePlaceNearAPoleIsEnoughForTheArcCosine) {
    constexpr double FAR = 89.9426;   // [deg], just beyond 0.001 rad from the pole
    constexpr double NEAR = 89.9428;  // within
    const auto stepsAway = [](double dec1, double dec2) {
        const double theta = subtend(0.0, dec1, 0.01, dec2);
        EXPECT_NEAR(theta, 4.4e-6, 1e-7);
        const double steps = std::ldexp(theta * theta / 2.0, 53);
        return std::fabs(steps - std::round(steps));
    };
    for (const auto& [dec1, dec2] : {std::pair(FAR, NEAR), std::pair(-NEAR, -FAR)})
        EXPECT_LT(stepsAway(dec1, dec2), 1e-4) << dec1;
    EXPECT_GT(stepsAway(FAR - 0.0002, FAR), 1e-3);
}

TEST(AstronomyTest, AtItsInstantTheNewMoonIsTheOldOne) {
    int lunation = 0;
    double jd = 0;
    flmoon(1237, 0, &jd);
    EXPECT_NEAR(lun_age(jd, &lunation), 29.5, 0.5);
    EXPECT_EQ(lunation, 1236);
    EXPECT_FALSE(std::isnan(lun_age(6.836e9, &lunation))) << "far, but within reach";
    EXPECT_FALSE(std::isnan(lun_age(-6.3e10, &lunation))) << "the first lunation numbers";
}

// The age's last bit is that of the new moons of the phases' series.
TEST(AstronomyTest, AgesCountFromTheNewMoonBefore) {
    constexpr int RANGES[][3] = {
        // lunations, and one in how many
        {-81900, -81700, 1},  // near the Julian Date 0, where its digits are many
        {0, 3000, 1},
        {3000, 500000, 997}};
    std::mt19937 engine(7);
    std::uniform_real_distribution<double> power(-25.0, 4.8);
    for (const auto& [first, last, step] : RANGES) {
        for (int n = first; n < last; n += step) {
            double newMoon = 0;
            flmoon(n, 0, &newMoon);
            for (int i = 0; i < 20; ++i) {
                const double jd = newMoon + std::exp2(power(engine));  // [d], from 3 ms on
                int lunation = 0;
                const float age = lun_age(jd, &lunation);
                double before = 0;
                flmoon(lunation, 0, &before);
                ASSERT_EQ(age, static_cast<float>(jd - before)) << jd;
                ASSERT_TRUE(lunation == n || n < 0) << jd;
            }
        }
    }
}

static_assert(OLAN == 0 && VEK1 == 1 && VEK2 == 2 && VEK3 == 3 && VEK4 == 4, "programs keep them");

TEST(ZarnMoonValTest, PrintsPhaseAltitudeAzimuthDistanceAndIllumination) {
    ZarnMoonVal moon;
    std::ostringstream text;
    moon.print(text) << '\n';
    moon.moonPhase(0.25);
    moon.moonAlt(-30.5);
    moon.moonAz(200.125);
    moon.moonDistance(45.75);
    moon.moonFLI(0.5);
    moon.print(text);
    EXPECT_EQ(text.str(), "0 0 0 0 0\n0.25 -30.5 200.125 45.75 0.5");
}

}  // namespace
