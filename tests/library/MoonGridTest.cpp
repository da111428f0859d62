#include <gtest/gtest.h>
#include <zarnsys/util/Astronomy.h>
#include <zarnsys/util/MoonGrid.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>
#include <vector>

namespace {

constexpr double NAN_VALUE = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t VALUES = 8;
constexpr std::size_t SIDEREAL_TIME = 0;
constexpr std::size_t SEPARATION = 2;
constexpr std::size_t ALTITUDE = 3;
constexpr std::size_t ELONGATION = 6;
constexpr std::size_t DISTANCE = 7;
constexpr double DEG_PER_RAD = 57.29577951308232;

/// In the order of the classic call's results.
using Values = std::array<double, VALUES>;

// What the grid promises: 1e-8 of each unit, of the phase a step of single precision up to 30 days.
constexpr Values PROMISED = {1e-8, 1e-8, 1e-8, 1e-8, 1e-8, 1.9e-6 / 29.53, 1e-8, 1e-8};
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

/// Altitude, airmass, separation, moonlight and sky.
using SkyValues = std::array<double, 5>;

constexpr SkyValues SKY_PROMISED = {1e-8, 1e-8, 1e-8, 1e-8, 1e-8};

SkyConditions conditionsOf(double extinction = 0.17, double darkSky = 21.8) {
    SkyConditions conditions;
    conditions.extinction = extinction;
    conditions.darkSky = darkSky;
    return conditions;
}

/// What the classic calls give, and the formulas that they do not have, written plainly.
SkyValues classicSky(const SkyPosition& target, MJD_DATE instant, const Place& place) {
    const Values moon = classic(target, instant, place);
    const double hourAngle = adj_time(moon[SIDEREAL_TIME] - target.ra / 15.0);
    double azimuth = 0;
    const double altitude = altit(target.dec, hourAngle, place.latitude, &azimuth);
    if (!(altitude >= 0.0)) return {altitude, NAN_VALUE, moon[SEPARATION], NAN_VALUE, NAN_VALUE};
    const double effective = altitude + 244.0 / (165.0 + 47.0 * std::pow(altitude, 1.1));
    const double airmass = 1.0 / std::sin(effective / DEG_PER_RAD);
    const double light = lunskybright(moon[ELONGATION], moon[SEPARATION], 0.17, moon[ALTITUDE],
                                      altitude, moon[DISTANCE]);
    if (moon[ALTITUDE] < -0.833 || light == 99.0)
        return {altitude, airmass, moon[SEPARATION], NAN_VALUE, 21.8};
    const double both = std::pow(10.0, -0.4 * 21.8) + std::pow(10.0, -0.4 * light);
    return {altitude, airmass, moon[SEPARATION], light, -2.5 * std::log10(both)};
}

/// The grid's values at instant `i` for its target `t`.
SkyValues skyValuesOf(const SkyGrid& grid, std::size_t i, std::size_t t) {
    return {grid.altitude(i, t), grid.airmass(i, t), grid.separation(i, t), grid.moonlight(i, t),
            grid.sky(i, t)};
}

/// Which of the values are numbers, as bits from the right.
template <typename Numbers>
unsigned known(const Numbers& values) {
    unsigned bits = 0;
    for (std::size_t k = 0; k < values.size(); ++k) bits |= std::isnan(values.at(k)) ? 0U : 1U << k;
    return bits;
}

template <typename Numbers>
void expectAgreement(const Numbers& grid, const Numbers& classic, const Numbers& tolerances) {
    EXPECT_EQ(known(grid), known(classic));
    for (std::size_t k = 0; k < grid.size(); ++k)
        EXPECT_FALSE(std::fabs(grid.at(k) - classic.at(k)) > tolerances.at(k)) << "value " << k;
}

}  // namespace

TEST(MoonGridTest, AgreesWithTheClassicCalls) {
    // Targets and instants, in blocks of 64: the grids grow, shrink and grow again.
    constexpr std::size_t SIZES[][2] = {{9, 3}, {1, 1}, {2, 131}, {1, 0}, {67, 64}, {8, 65}};
    std::mt19937 engine(7);
    const auto from = [&engine](double least, double most) {
        return std::uniform_real_distribution<double>(least, most)(engine);
    };
    MoonGrid moon;
    SkyGrid sky;
    std::array<int, 32> seen = {};
    for (const auto& [targetCount, instantCount] : SIZES) {
        std::vector<SkyPosition> targets(targetCount);
        for (SkyPosition& target : targets) target = {from(0.0, 360.0), from(-90.0, 90.0)};
        std::vector<MJD_DATE> instants(instantCount);
        for (MJD_DATE& instant : instants) instant = from(30000.0, 90000.0);
        const Place place = placeAt(from(-89.0, 89.0), from(-360.0, 360.0));
        computeMoonGrid(targets, instants, place, moon);
        computeSkyGrid(targets, instants, place, conditionsOf(), sky);
        ASSERT_EQ(moon.phase.size(), instantCount);
        for (const TargetTable& table : {moon.separation, sky.sky}) {
            ASSERT_EQ(table.instants(), instantCount);
            ASSERT_EQ(table.targets(), targetCount);
        }
        for (std::size_t i = 0; i < instantCount; ++i) {
            for (std::size_t t = 0; t < targetCount; ++t) {
                SCOPED_TRACE(instants[i]);
                expectAgreement(valuesOf(moon, i, t), classic(targets[t], instants[i], place),
                                PROMISED);
                const SkyValues expected = classicSky(targets[t], instants[i], place);
                expectAgreement(skyValuesOf(sky, i, t), expected, SKY_PROMISED);
                ++seen.at(known(expected));
            }
        }
    }
    EXPECT_GT(seen[0b11111], 500) << "moonlit";
    EXPECT_GT(seen[0b10111], 500) << "dark";
    EXPECT_GT(seen[0b00101], 500) << "below the horizon";
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
    EXPECT_EQ(TargetTable().instants() + TargetTable().targets(), 0U);
}

TEST(MoonGridTest, AKeptGridIsFilledWhereItIs) {
    MoonGrid grid = computeMoonGrid({{1.0, 2.0}, {3.0, 4.0}}, {60000.0, 60000.5}, placeAt(1, 2));
    const double* const first = grid.separation.row(0);
    computeMoonGrid({{5.0, 6.0}}, {60001.0}, placeAt(3, 4), grid);
    computeMoonGrid({{7.0, 8.0}, {5.0, 6.0}}, {60000.0, 60001.0}, placeAt(3, 4), grid);
    EXPECT_EQ(grid.separation.row(0), first);
    expectAgreement(valuesOf(grid, 1, 1), classic({5.0, 6.0}, 60001.0, placeAt(3, 4)), PROMISED);
    constexpr std::size_t QUARTER = std::numeric_limits<std::size_t>::max() / 4 + 1;
    EXPECT_THROW(grid.separation.resize(4, QUARTER),
                 std::length_error);  // 0 of them, counted round
    EXPECT_EQ(grid.separation.instants(), 2U);
}

// Where formulas have a step or amplify rounding, which takes up to 3e-8 rad of either angle.
TEST(MoonGridTest, TheSkyHoldsAtItsEdges) {
    SkyValues lost = {};
    lost.fill(6e-8 * DEG_PER_RAD);
    for (const double latitude : {-90.0, -30.0, 0.0, 52.5, 90.0}) {
        const Place place = placeAt(latitude, 100.0);
        for (int hour = 0; hour < 720; ++hour) {
            const MJD_DATE instant = 60000.0 + hour / 24.0;
            SCOPED_TRACE(instant);
            const double sidereal = classic({0.0, 0.0}, instant, place)[SIDEREAL_TIME];
            double ra = 0;
            double dec = 0;
            double range = 0;
            lpmoon(instant + 2400000.5, latitude, sidereal, &ra, &dec, &range);
            const std::vector<SkyPosition> targets = {
                {sidereal * 15.0, latitude},           // the zenith
                {sidereal * 15.0 + 180.0, -latitude},  // the nadir
                {ra * 15.0, dec},                      // the moon
                {ra * 15.0, dec + 0.249},              // still within its disc
                {ra * 15.0, dec - 0.251},
                {ra * 15.0, dec + 9.999},
                {ra * 15.0, dec - 10.001},
                {ra * 15.0 + 180.0, -dec},  // opposite the moon
                {0.0, 90.0},
                {0.0, -90.0}};
            const SkyGrid grid = computeSkyGrid(targets, {instant}, place, conditionsOf());
            for (std::size_t t = 0; t < targets.size(); ++t)
                expectAgreement(skyValuesOf(grid, 0, t), classicSky(targets[t], instant, place),
                                lost);
        }
    }
}

// Which of the values are not-a-number, and that the others do not suffer.
TEST(MoonGridTest, NotANumberComesOutWhereTheInputsSayNothing) {
    constexpr double INFINITE = std::numeric_limits<double>::infinity();
    constexpr std::size_t VALID = 2;  // targets and instants; at the equator the moon is up, down
    const std::vector<MJD_DATE> instants = {60005.0, 60000.0, NAN_VALUE, INFINITE};
    constexpr SkyPosition INVALID[] = {
        {NAN_VALUE, 1.0}, {INFINITE, 1.0}, {2.0, -90.000001}, {2.0, 90.000001}, {2.0, NAN_VALUE}};
    const Place equator = placeAt(0.0, 0.0);
    const Place nowhere = telescopePlace(static_cast<Telescope>(5));
    const struct {
        Place place;
        SkyConditions conditions;
        unsigned moon, skyWithMoon, skyWithout;  // of a target in declination 20, see `known`
    } cases[] = {
        {equator, conditionsOf(), 0b11111111, 0b11111, 0b10111},
        {placeAt(90.0, -1000.0), conditionsOf(), 0b11111111, 0b11111, 0b11111},
        {placeAt(-90.0, 0.0), conditionsOf(), 0b11111111, 0b00101, 0b00101},
        // The sidereal time and the phase, as bits 0 and 5, need less than a whole place.
        {placeAt(90.000001, 1.0), conditionsOf(), 0b00100001, 0, 0},
        {placeAt(-90.000001, 1.0), conditionsOf(), 0b00100001, 0, 0},
        {placeAt(1.0, INFINITE), conditionsOf(), 0b00100000, 0, 0},
        {nowhere, conditionsOf(), 0b00100000, 0, 0},
        {equator, conditionsOf(0.0), 0b11111111, 0b10111, 0b10111},  // no scattering
        {equator, conditionsOf(NAN_VALUE), 0b11111111, 0b00111, 0b10111},
        {equator, conditionsOf(0.17, NAN_VALUE), 0b11111111, 0b01111, 0b00111},
        {equator, SkyConditions(), 0b11111111, 0b00111, 0b00111},
    };
    for (const auto& [place, conditions, ofMoon, withMoon, without] : cases) {
        SCOPED_TRACE(::testing::Message() << place.latitude << ", " << conditions.extinction);
        for (const std::size_t others : {3U, 8U}) {  // less than a vector, and more
            std::vector<SkyPosition> targets = {{130.0, 20.0}, {2.0, 90.0}};
            for (std::size_t t = 0; t < others; ++t) targets.push_back(INVALID[t % 5]);
            const MoonGrid moon = computeMoonGrid(targets, instants, place);
            const SkyGrid sky = computeSkyGrid(targets, instants, place, conditions);
            EXPECT_EQ(known(skyValuesOf(sky, 0, 0)), withMoon);
            EXPECT_EQ(known(skyValuesOf(sky, 1, 0)), without);
            for (std::size_t i = 0; i < instants.size(); ++i) {
                for (std::size_t t = 0; t < targets.size(); ++t) {
                    const unsigned lost = t < VALID ? 0U : 1U << SEPARATION;
                    EXPECT_EQ(known(valuesOf(moon, i, t)), i < VALID ? ofMoon & ~lost : 0U);
                    if (i < VALID && t < VALID) continue;
                    EXPECT_EQ(known(skyValuesOf(sky, i, t)), 0U);
                }
            }
            if (ofMoon == 0b11111111)
                expectAgreement(valuesOf(moon, 1, 0), classic(targets[0], instants[1], place),
                                PROMISED);
        }
    }
}

TEST(MoonGridTest, ATelescopesPlaceIsThatOfTheClassicCall) {
    const Place place = telescopePlace(VEK2);
    double latitude = 0;
    double longitude = 0;
    getTelescopeCoord(latitude, longitude, VEK2);
    EXPECT_EQ(place.latitude, latitude);
    EXPECT_EQ(place.westLongitude, longitude);
}
