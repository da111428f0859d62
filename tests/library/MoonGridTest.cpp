#include <gtest/gtest.h>
#include <zarnsys/util/Astronomy.h>
#include <zarnsys/util/MoonGrid.h>

#include <array>
#include <cmath>
#include <future>
#include <limits>
#include <random>
#include <stdexcept>

namespace {

constexpr double NAN_VALUE = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t VALUES = 8;
constexpr std::size_t ALTITUDE = 3;
constexpr double DEG_PER_RAD = 57.29577951308232;

/// In the order of the classic call's results.
using Values = std::array<double, VALUES>;

// What the grid promises: 1e-8 of each unit, of the phase a step of single precision up to 30 days.
constexpr Values PROMISED = {1e-8, 1e-8, 1e-8, 1e-8, 1e-8, 1.9e-6 / 29.53, 1e-8, 1e-8};
// A number larger than any difference stands for no circle.
constexpr Values CIRCLES = {24, 1e3, 1e3, 1e3, 360, 1e3, 1e3, 1e3};

Place placeAt(double latitude, double westLongitude) {
    Place place;
    place.latitude = latitude;
    place.westLongitude = westLongitude;
    return place;
}

/// What the classic call gives, the angle between sun and moon in degrees.
Values classic(const SkyPosition& target, MJD_DATE instant, const Place& place) {
    Values v = {};
    computeMoonParam(target.ra, target.dec, instant, place.westLongitude, place.latitude, &v[0],
                     &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7]);
    v[6] *= DEG_PER_RAD;
    return v;
}

/// The grid's values at instant `i` for its target `t`.
Values valuesOf(const MoonGrid& grid, std::size_t i, std::size_t t) {
    return {grid.siderealTime[i], grid.illumination[i], grid.separation(i, t), grid.altitude[i],
            grid.azimuth[i],      grid.phase[i],        grid.elongation[i],    grid.distance[i]};
}

void expectAgreement(const Values& grid, const Values& classic) {
    for (std::size_t k = 0; k < VALUES; ++k) {
        const double difference = std::remainder(grid.at(k) - classic.at(k), CIRCLES.at(k));
        EXPECT_LE(std::fabs(difference), PROMISED.at(k)) << "value " << k;
    }
}

}  // namespace

TEST(MoonGridTest, AgreesWithTheClassicCall) {
    std::mt19937 engine(7);
    const auto from = [&engine](double least, double most) {
        return std::uniform_real_distribution<double>(least, most)(engine);
    };
    MoonGrid grid;                                     // grows, shrinks and grows again
    for (const std::size_t count : {64U, 1U, 131U}) {  // blocks have 64
        std::vector<SkyPosition> targets(count + 3);
        for (SkyPosition& target : targets) target = {from(0.0, 360.0), from(-90.0, 90.0)};
        std::vector<MJD_DATE> instants(count);
        for (MJD_DATE& instant : instants) instant = from(30000.0, 90000.0);
        const Place place = placeAt(from(-89.0, 89.0), from(-360.0, 360.0));
        computeMoonGrid(targets, instants, place, grid);
        ASSERT_EQ(grid.phase.size(), count);
        ASSERT_EQ(grid.separation.instants(), count);
        ASSERT_EQ(grid.separation.targets(), targets.size());
        for (std::size_t i = 0; i < count; ++i) {
            for (std::size_t t = 0; t < targets.size(); ++t) {
                SCOPED_TRACE(instants[i]);
                expectAgreement(valuesOf(grid, i, t), classic(targets[t], instants[i], place));
            }
        }
    }
}

TEST(MoonGridTest, PhasesDoNotDependOnTheOrderOfInstants) {
    // Around 1800 the search for a new moon sometimes starts one too late; far ahead, new moons are
    // out of order.
    std::vector<MJD_DATE> instants;
    instants.reserve(1200);
    for (int day = 0; day < 400; ++day) instants.push_back(-40000.0 + 0.31 * day);
    for (int day = 0; day < 400; ++day) instants.push_back(60000.0 - 0.77 * day);
    for (int day = 0; day < 400; ++day) instants.push_back(6.5e9 - 0.9 * day);
    const Place place = telescopePlace(VEK1);
    const MoonGrid grid = computeMoonGrid({}, instants, place);
    for (std::size_t i = 0; i < instants.size(); ++i) {
        const Values c = classic({0, 0}, instants[i], place);
        ASSERT_EQ(grid.phase[i], c[5]) << instants[i];
        // Far ahead, 32-bit x86 rounds the moon's huge angles otherwise in one than in the other.
        ASSERT_NEAR(grid.altitude[i], c[ALTITUDE], instants[i] < 1e6 ? 1e-8 : 0.01) << instants[i];
    }
    EXPECT_EQ(grid.separation.targets(), 0U);
}

TEST(MoonGridTest, SeveralThreadsMayComputeParts) {
    const std::vector<SkyPosition> targets = {{10.0, 20.0}, {200.0, -45.5}};
    const auto part = [&targets](MJD_DATE instant) {
        const MoonGrid grid =
            computeMoonGrid(targets, {instant, instant + 0.5}, telescopePlace(VEK1));
        return std::vector<double>(grid.separation.row(0), grid.separation.row(2));
    };
    auto first = std::async(std::launch::async, part, 60000.0);
    auto second = std::async(std::launch::async, part, 60100.0);
    EXPECT_EQ(first.get(), part(60000.0));
    EXPECT_EQ(second.get(), part(60100.0));
}

TEST(MoonGridTest, AKeptGridIsFilledWhereItIs) {
    MoonGrid grid = computeMoonGrid({{1.0, 2.0}, {3.0, 4.0}}, {60000.0, 60000.5}, placeAt(1, 2));
    const double* const first = grid.separation.row(0);
    computeMoonGrid({{5.0, 6.0}}, {60001.0}, placeAt(3, 4), grid);
    computeMoonGrid({{7.0, 8.0}, {5.0, 6.0}}, {60000.0, 60001.0}, placeAt(3, 4), grid);
    EXPECT_EQ(grid.separation.row(0), first);
    expectAgreement(valuesOf(grid, 1, 1), classic({5.0, 6.0}, 60001.0, placeAt(3, 4)));
    constexpr std::size_t QUARTER = std::numeric_limits<std::size_t>::max() / 4 + 1;
    EXPECT_THROW(grid.separation.resize(4, QUARTER),
                 std::length_error);  // 0 of them, counted round
    EXPECT_EQ(grid.separation.instants(), 2U);
}

// Which of the values are not-a-number, and that the others do not suffer.
TEST(MoonGridTest, NotANumberComesOutWhereTheInputsSayNothing) {
    constexpr double INFINITE = std::numeric_limits<double>::infinity();
    const Place place = placeAt(-90.0, 0.0);
    const std::vector<SkyPosition> targets = {{2.0, 90.0},      {NAN_VALUE, 1.0},
                                              {INFINITE, 1.0},  {2.0, -90.000001},
                                              {2.0, 90.000001}, {2.0, NAN_VALUE}};
    const MoonGrid grid = computeMoonGrid(targets, {NAN_VALUE, 60000.0, INFINITE}, place);
    for (const std::size_t instant : {0U, 2U})
        for (const double value : valuesOf(grid, instant, 0)) EXPECT_TRUE(std::isnan(value));
    expectAgreement(valuesOf(grid, 1, 0), classic(targets[0], 60000.0, place));
    for (std::size_t target = 1; target < targets.size(); ++target)
        EXPECT_TRUE(std::isnan(grid.separation(1, target))) << target;
    // The sidereal time and the phase, as bits 0 and 5, need less than a whole place.
    const auto knownAt = [](const Place& at) {
        const MoonGrid values = computeMoonGrid({{2.0, 3.0}}, {60000.0}, at);
        unsigned bits = 0;
        for (const double value : valuesOf(values, 0, 0))
            bits = bits >> 1U | (std::isnan(value) ? 0U : 1U << (VALUES - 1));
        return bits;
    };
    EXPECT_EQ(knownAt(placeAt(90.0, -1000.0)), 0b11111111U);
    EXPECT_EQ(knownAt(placeAt(90.000001, 1.0)), 0b00100001U);
    EXPECT_EQ(knownAt(placeAt(-90.000001, 1.0)), 0b00100001U);
    EXPECT_EQ(knownAt(placeAt(1.0, INFINITE)), 0b00100000U);
    EXPECT_EQ(knownAt(Place()), 0b00100000U);
}

TEST(MoonGridTest, TelescopesStandWhereTheClassicCallPutsThem) {
    for (const Telescope telescope : {OLAN, VEK1, VEK2, VEK3, VEK4}) {
        double latitude = 0;
        double longitude = 0;
        getTelescopeCoord(latitude, longitude, telescope);
        EXPECT_EQ(telescopePlace(telescope).latitude, latitude);
        EXPECT_EQ(telescopePlace(telescope).westLongitude, longitude);
    }
    EXPECT_TRUE(std::isnan(telescopePlace(static_cast<Telescope>(5)).latitude));
    EXPECT_TRUE(computeMoonGrid({{0.0, 0.0}}, {}, telescopePlace(OLAN)).phase.empty());
}
