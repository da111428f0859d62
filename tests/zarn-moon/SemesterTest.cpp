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

}  // namespace

TEST(SemesterTest, LimitsLeaveTheirMinutes) {
    const Night night = madeUpNight();
    expectTable(TEST_DATA "/allowed.txt", [&](const std::string& name, const auto& in) {
        Settings settings;
        if (name.rfind("sun", 0) == 0) settings.sunAltitude = in[0];
        if (name == "sun-and-sky") settings.maxSky = in[1];
        if (name == "altitude") settings.minAltitude = in[0];
        if (name == "airmass") settings.maxAirmass = in[0];
        if (name == "moon") settings.minMoonDistance = in[0];
        if (name == "avoidance") settings.moonAvoidance = {in[0], in[1]};
        const std::vector<bool> allowed = Limits(settings, night).minutesFor({}, POLE);
        const auto first = std::find(allowed.begin(), allowed.end(), true);
        return std::vector<double>{
            static_cast<double>(std::count(allowed.begin(), allowed.end(), true)),
            static_cast<double>(first - allowed.begin())};
    });
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
    season[3].darkEquivalentHours = 0.02;
    season[5].darkEquivalentHours = 0.04;
    season[9].darkEquivalentHours = 0.02;
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
