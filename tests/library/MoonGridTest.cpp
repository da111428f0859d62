#include <gtest/gtest.h>
#include <zarnsys/util/Astronomy.h>
#include <zarnsys/util/MoonGrid.h>

#include <array>
#include <cmath>
#include <future>
#include <limits>
#include <random>

namespace {

constexpr double NAN_VALUE = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t VALUES = 8;
constexpr std::size_t SIDEREAL = 0;
constexpr std::size_t ALTITUDE = 3;
constexpr std::size_t PHASE = 5;

/// In the order of the classic call's results.
using Values = std::array<double, VALUES>;

// What the grid promises: 1e-8 of each unit, of the phase a step of single precision up to 30 days.
constexpr Values PROMISED = {1e-8, 1e-8, 1e-8, 1e-8, 1e-8, 1.9e-6 / 29.53, 1e-8, 1e-8};
// A number larger than any difference stands for no circle.
constexpr Values CIRCLES = {24, 1e3, 1e3, 1e3, 360, 1e3, 1e3, 1e3};

Values classic(const MoonTarget& target, MJD_DATE instant, double longitude, double latitude) {
    Values v = {};
    computeMoonParam(target.ra, target.dec, instant, longitude, latitude, &v[0], &v[1], &v[2],
                     &v[3], &v[4], &v[5], &v[6], &v[7]);
    return v;
}

/// The grid's values at instant `i` for its target `t`.
Values valuesOf(const MoonGrid& grid, std::size_t i, std::size_t t) {
    constexpr double DEG_PER_RAD = 57.29577951308232;
    return {grid.siderealTime[i],
            grid.illumination[i],
            grid.separation(i, t),
            grid.altitude[i],
            grid.azimuth[i],
            grid.phase[i],
            grid.elongation[i] / DEG_PER_RAD,
            grid.distance[i]};
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
    MoonGrid grid;                                     // used again and again
    for (const std::size_t count : {131U, 1U, 64U}) {  // blocks have 64
        std::vector<MoonTarget> targets(count + 3);
        for (MoonTarget& target : targets) target = {from(0.0, 360.0), from(-90.0, 90.0)};
        std::vector<MJD_DATE> instants(count);
        for (MJD_DATE& instant : instants) instant = from(30000.0, 90000.0);
        const double longitude = from(-360.0, 360.0);
        const double latitude = from(-89.0, 89.0);
        computeMoonGrid(targets, instants, {latitude, longitude}, grid);
        ASSERT_EQ(grid.separations.size(), targets.size() * count);
        for (std::size_t i = 0; i < count; ++i) {
            for (std::size_t t = 0; t < targets.size(); ++t) {
                SCOPED_TRACE(instants[i]);
                expectAgreement(valuesOf(grid, i, t),
                                classic(targets[t], instants[i], longitude, latitude));
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
    double latitude = 0;
    double longitude = 0;
    getTelescopeCoord(latitude, longitude, VEK1);
    const MoonGrid grid = computeMoonGrid({}, instants, VEK1);
    for (std::size_t i = 0; i < instants.size(); ++i) {
        const Values c = classic({0, 0}, instants[i], longitude, latitude);
        ASSERT_EQ(grid.phase[i], c[5]) << instants[i];
        // Far ahead, 32-bit x86 rounds the moon's huge angles otherwise in one than in the other.
        ASSERT_NEAR(grid.altitude[i], c[ALTITUDE], instants[i] < 1e6 ? 1e-8 : 0.01) << instants[i];
    }
    EXPECT_TRUE(grid.separations.empty());
}

TEST(MoonGridTest, SeveralThreadsMayComputeParts) {
    const std::vector<MoonTarget> targets = {{10.0, 20.0}, {200.0, -45.5}};
    const auto part = [&targets](MJD_DATE instant) {
        return computeMoonGrid(targets, {instant, instant + 0.5}, VEK1).separations;
    };
    auto first = std::async(std::launch::async, part, 60000.0);
    auto second = std::async(std::launch::async, part, 60100.0);
    EXPECT_EQ(first.get(), part(60000.0));
    EXPECT_EQ(second.get(), part(60100.0));
}

TEST(MoonGridTest, NotANumberStaysWhereItCameInAsDoesWhatIsBeyondThePoles) {
    constexpr double INFINITE = std::numeric_limits<double>::infinity();
    const MoonGrid grid = computeMoonGrid({{NAN_VALUE, 1.0}, {2.0, 3.0}, {2.0, 90.1}, {2.0, -90.0}},
                                          {NAN_VALUE, 60000.0, INFINITE}, {45.0, 0.0});
    for (const std::size_t instant : {0U, 2U})
        for (const double value : valuesOf(grid, instant, 1)) EXPECT_TRUE(std::isnan(value));
    for (const std::size_t target : {0U, 2U}) EXPECT_TRUE(std::isnan(grid.separation(1, target)));
    expectAgreement(valuesOf(grid, 1, 1), classic({2.0, 3.0}, 60000.0, 0.0, 45.0));
    expectAgreement(valuesOf(grid, 1, 3), classic({2.0, -90.0}, 60000.0, 0.0, 45.0));
    const MoonGrid beyond = computeMoonGrid({{2.0, 3.0}}, {60000.0}, {-90.1, 0.0});
    const Values values = valuesOf(beyond, 0, 0);
    for (std::size_t k = 0; k < VALUES; ++k)
        EXPECT_EQ(std::isnan(values.at(k)), k != SIDEREAL && k != PHASE) << "value " << k;
}

TEST(MoonGridTest, AnUnknownTelescopeStandsWhereBothCoordinatesAreZero) {
    const MoonGrid grid = computeMoonGrid({{0.0, 0.0}}, {51544.5}, static_cast<Telescope>(5));
    expectAgreement(valuesOf(grid, 0, 0), classic({0.0, 0.0}, 51544.5, 0.0, 0.0));
    EXPECT_TRUE(computeMoonGrid({{0.0, 0.0}}, {}, OLAN).altitude.empty());
}
