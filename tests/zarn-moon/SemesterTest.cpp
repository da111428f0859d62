// Limits, and what the hours within them are worth: nights made up so that a hand can count.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/support/NumberTable.h"
#include "zarn-moon/semester/Semester.h"

namespace zarn::moon {

namespace {

constexpr double NOON = 61000.0;
constexpr std::size_t NOONS = 1441;  // minutes from noon to noon, both included
constexpr double RADIANS = 57.29577951308232;

const Direction POLE = {0.0, 0.0, 1.0};

/// A night at 30 degrees north, in which the pole is the target: it stands 30 degrees high. The sun
/// is at -18 degrees at minute 900 and sinks by a degree in 50 minutes. A new moon rises at minute
/// 1000; at minute i it is i/10 degrees from the pole.
Night madeUpNight() {
    constexpr double LATITUDE = 30.0;
    Night night = {{}, {"", LATITUDE, 0.0}, NOON - 1.0};
    for (std::size_t i = 0; i < NOONS; ++i) {
        const auto minute = static_cast<double>(i);
        const double fromPole = (minute / 10.0 + 60.0) / RADIANS;  // from the zenith over the pole
        night.instants.push_back(NOON + minute / 1440.0);
        night.sunAltitudes.push_back(-minute / 50.0);
        night.moon.altitude.push_back(i < 1000 ? -1.0 : 0.0);
        night.moonDirections.push_back({std::cos(fromPole), std::sin(fromPole), 0.0});
    }
    night.horizons.assign(NOONS, Horizon(0.0, LATITUDE));
    night.moon.phase.assign(NOONS, 0.0);
    night.moon.elongation.assign(NOONS, 0.0);
    night.moon.distance.assign(NOONS, 60.27);
    return night;
}

/// How many minutes are allowed, and which is the first.
struct Allowed {
    std::ptrdiff_t minutes;
    std::ptrdiff_t first;
};

Allowed allowedBy(const Settings& settings, const Night& night) {
    const std::vector<bool> allowed = Limits(settings, night).minutesFor({}, POLE);
    return {std::count(allowed.begin(), allowed.end(), true),
            std::find(allowed.begin(), allowed.end(), true) - allowed.begin()};
}

}  // namespace

TEST(SemesterTest, LimitsLeaveTheirMinutes) {
    const struct {
        const char* what;
        void (*set)(Settings&);
        std::ptrdiff_t minutes, first;
    } cases[] = {
        {"none: 901 to 1440", [](Settings&) {}, 540, 901},
        {"sun", [](Settings& s) { s.sunAltitude = -12.0; }, 840, 601},
        {"sky, of which twilight knows nothing",
         [](Settings& s) {
             s.sunAltitude = -12.0;
             s.maxSky = 10.0;
         },
         540, 901},
        {"altitude", [](Settings& s) { s.minAltitude = 29.999; }, 540, 901},
        {"too high", [](Settings& s) { s.minAltitude = 30.001; }, 0, 1441},
        // Pickering 2002: 1/sin(30 + 244/(165 + 47 30^1.1)) = 1.9932
        {"airmass", [](Settings& s) { s.maxAirmass = 1.995; }, 540, 901},
        {"too much air", [](Settings& s) { s.maxAirmass = 1.993; }, 0, 1441},
        // While the moon is down, its distance does not matter: 901 to 999, and from 1200 on.
        {"moon", [](Settings& s) { s.minMoonDistance = 119.99; }, 99 + 241, 901},
        {"new moon is not avoided",
         [](Settings& s) {
             s.moonAvoidance = {180.0, 1.0};
         },
         540, 901},
    };
    const Night night = madeUpNight();
    for (const auto& [what, set, minutes, first] : cases) {
        Settings settings;
        set(settings);
        const Allowed allowed = allowedBy(settings, night);
        EXPECT_EQ(allowed.minutes, minutes) << what;
        EXPECT_EQ(allowed.first, first) << what;
    }
}

TEST(SemesterTest, LimitsAndWorthFollowTheirFormulas) {
    const auto call = [](const std::string& name, const std::vector<double>& in) -> double {
        Settings settings;
        settings.darkSky = 21.5;
        settings.extinction = 0.25;
        settings.moonAvoidance = {120.0, 7.0};
        if (name == "avoidance") settings.minMoonDistance = in[1];
        if (name == "avoidance") return leastMoonDistance(settings, in[0]);
        TargetValues values = {};
        values.airmass = in[0];
        if (name == "worth") values.sky = in[1];
        return worthOf(settings, values);
    };
    expectTable(TEST_DATA "/semester-values.txt", [&](const auto& name, const auto& in) {
        return std::vector<double>{call(name, in)};
    });
}

TEST(SemesterTest, HoursAreCountedByTheMinute) {
    Night night = madeUpNight();
    night.moon.altitude.assign(NOONS, -1.0);
    Settings settings;
    settings.sunAltitude = -12.0;  // from 601 on; until 900 it is worth nothing
    settings.extinction = 0.25;
    const std::vector<bool> allowed = Limits(settings, night).minutesFor({}, POLE);
    for (const double step : {0.2, 1.0, 7.0, 60.0}) {
        settings.step = step;
        const TargetNight values = targetNightOf(settings, night, POLE, allowed);
        EXPECT_NEAR(values.usableHours, 14.0, 1e-9);
        // The air takes 10^(-0.2 * 0.99315). A step may begin in twilight and end in the dark.
        const double tolerance = step > 1.0 ? step / 120.0 : 1e-4;
        EXPECT_NEAR(values.darkEquivalentHours, 9.0 * 0.63295, tolerance) << step;
        EXPECT_NEAR((values.best.end - values.best.begin) * 1440.0, 839.0, 1e-3);
        EXPECT_TRUE(values.best.moonDown);
    }
}

TEST(SemesterTest, NightsAreRankedByTheirWorth) {
    Season season(14, TargetNight{1.0, 0.0, {}, 0});
    season[3].darkEquivalentHours = 2.0;
    season[5].darkEquivalentHours = 4.0;
    season[9].darkEquivalentHours = 2.0;
    rankNights(season);
    EXPECT_EQ(season[5].rank, 1U);
    EXPECT_EQ(season[3].rank, 2U);
    EXPECT_EQ(season[9].rank, 3U);
    EXPECT_EQ(season[0].rank, 0U);
    EXPECT_EQ(bestNights(season), (std::vector<std::size_t>{5, 3, 9}));
    season.assign(40, TargetNight{1.0, 1.0, {}, 0});
    rankNights(season);
    for (std::size_t i = 0; i < season.size(); ++i) EXPECT_EQ(season[i].rank, i + 1);
    EXPECT_EQ(bestNights(season).size(), 10U);
}

}  // namespace zarn::moon
