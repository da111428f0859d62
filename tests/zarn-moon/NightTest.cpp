// zarn-moon's nights, rows and pictures, where whole outputs do not show their edges.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sstream>

#include "shared/cli/UsageError.h"
#include "tests/support/NumberTable.h"
#include "tests/support/Transcript.h"
#include "zarn-moon/forms/CurveNames.h"
#include "zarn-moon/forms/Report.h"

namespace zarn::moon {

namespace {

constexpr double MINUTE = 1.0 / 1440.0;
constexpr double NOON = 61000.0;
constexpr int NOONS = 1441;  // minutes from noon to noon, both included

/// A night whose sun and moon go as the functions of the minute since noon say: every altitude is a
/// sum of few powers of two, exact in binary.
template <typename Sun, typename MoonAltitude, typename MoonAzimuth>
Night nightOfPaths(Sun sun, MoonAltitude altitude, MoonAzimuth azimuth) {
    Night night = {{}, {"", 30.0, 0.0}, 60999.0};
    for (int minute = 0; minute < NOONS; ++minute) {
        night.instants.push_back(NOON + minute * MINUTE);
        night.sunAltitudes.push_back(sun(minute));
        night.moon.altitude.push_back(altitude(minute));
        night.moon.azimuth.push_back(azimuth(minute));
    }
    night.horizons.assign(NOONS, Horizon(0.0, night.site.latitude));
    night.moon.illumination.assign(NOONS, 0.0);
    night.moon.phase.assign(NOONS, 0.0);
    return night;
}

/// A night of which so many minutes are dark, with the moon up first for some of them.
Night nightWith(int dark, int moonlit) {
    return nightOfPaths([dark](int minute) { return minute > 0 && minute <= dark ? -19.0 : -18.0; },
                        [moonlit](int minute) { return minute <= moonlit ? -0.833 : -0.834; },
                        [](int) { return 0.0; });
}

/// The best window of the pole, which stands at the latitude, 30 degrees, all night.
Window windowOf(const Night& night, double minAltitude) {
    Settings settings;
    settings.minAltitude = minAltitude;
    return bestWindow(night, Limits(settings, night).minutesFor({}, directionOf({0.0, 90.0})));
}

/// Minutes since noon.
double sinceNoon(double mjd) { return (mjd - NOON) / MINUTE; }

}  // namespace

TEST(NightTest, BeginsAtLocalMeanNoon) {
    // 90 degrees west, local time is six hours behind: noon is 18 h UT.
    const Site west = {"", 0.0, 90.0};
    const Night night = makeNight(ephemerisOf(Theory::LIBRARY), west, 61000.0);
    EXPECT_EQ(night.instants.front(), 61000.75);
    EXPECT_EQ(night.instants.back(), 61001.75);
    EXPECT_EQ(nightOf(west, 61000.7499), 60999.0);
    EXPECT_EQ(nightOf(west, 61000.75), 61000.0);
    EXPECT_EQ(nightOf({"", 0.0, -180.0}, 61000.0), 61000.0);
}

TEST(NightTest, EventsAreWhereTheLineBetweenTwoMinutesCrosses) {
    // The sun sinks and rises by a sixteenth of a degree a minute, the moon the other way round; it
    // passes the south at 320 minutes, the north at 1040.
    const auto sun = [](int minute) { return std::abs(minute - 720) / 16.0 - 30.0; };
    const Night slow = nightOfPaths(
        sun, [](int minute) { return 20.0 - std::abs(minute - 700) / 16.0; },
        [](int minute) { return std::fmod(minute / 4.0 + 100, 360); });
    // Up within the first minute; later from half a unit east of the meridian to 0.866 units west.
    const Night nearZenith = nightOfPaths(
        sun, [](int minute) { return minute > 700 ? 30.0 : std::min(minute, 1) * 70.0 - 10.0; },
        [](int minute) { return minute <= 700 ? 90.0 : 270.0; });
    expectTranscript(TEST_DATA "/events.txt", [&](const std::string& night) {
        std::string events;
        for (const auto& [name, times] : eventsOf(night == "near the zenith" ? nearZenith : slow)) {
            events += name;
            for (const double mjd : times) events += " " + std::to_string(sinceNoon(mjd));
            events += "\n";
        }
        return events;
    });
}

TEST(NightTest, WordsHaveTheirLimits) {
    expectTranscript(TEST_DATA "/words.txt", [](const std::string& command) {
        int dark = 0;  // [minutes], as the next
        int moonlit = 0;
        double lit = 0.0;
        std::istringstream(command) >> dark >> moonlit >> lit;
        Night night = nightWith(dark, moonlit);
        night.sunAltitudes[0] = -19.0;  // a minute of the night before
        night.moon.illumination[720] = lit;
        night.moon.phase[720] = 0.125;
        const Summary summary = summaryOf(night);
        EXPECT_EQ(summary.astronomicalHours, dark / 60.0);
        EXPECT_EQ(summary.darkHours, (dark - moonlit) / 60.0);
        EXPECT_EQ(summary.illumination, lit);
        EXPECT_EQ(summary.moonPhase, 0.125);
        return summary.word + "\n";
    });
}

TEST(NightTest, TheBestWindowIsWithoutMoonIfThatLastsAnHour) {
    expectTable(TEST_DATA "/windows.txt", [](const std::string& name, const auto& in) {
        const auto first = static_cast<int>(in.at(0));  // [minutes], as the next
        const auto second = static_cast<int>(in.at(1));
        const auto sun = [=](int minute) {
            return minute < first || (minute > 200 && minute <= 200 + second) ? -19.0 : 0.0;
        };
        const auto moon = [](int) { return -10.0; };
        const Window window = name == "moonlit" ? windowOf(nightWith(first, second), in.at(2))
                                                : windowOf(nightOfPaths(sun, moon, moon), 0.0);
        return std::vector<double>{(window.end - window.begin) / MINUTE, sinceNoon(window.begin),
                                   window.moonDown ? 1.0 : 0.0};
    });
}

TEST(NightTest, BothEndsOfAWindowAreInIt) {
    const Settings settings;
    const SkyPath sky =
        ephemerisOf(Theory::LIBRARY).pathOver({}, {NOON, NOON + 0.25, NOON + 0.5, NOON + 0.75});
    const std::vector<Row> rows =
        makeRows(settings, sky, {{1.0, 0.0, 0.0}}, {{NOON + 0.25, NOON + 0.5, true}});
    ASSERT_EQ(rows.size(), 4U);
    for (std::size_t i = 0; i < rows.size(); ++i)
        EXPECT_EQ(rows[i].targets.at(0).best, i == 1 || i == 2) << i;
}

TEST(NightTest, PhasesComeAfterTheInstant) {
    const Ephemeris& ephemeris = ephemerisOf(Theory::LIBRARY);
    const double full = nextPhases(ephemeris, 61390.0, 61390.0).at(1).mjd;
    EXPECT_EQ(nextPhases(ephemeris, full - 1e-6, full).at(0).mjd, full);
    EXPECT_EQ(nextPhases(ephemeris, full, full).at(0).name, "last quarter");
}

TEST(NightTest, AMillionRowsAreTheMost) {
    constexpr std::size_t MOST = 1000000;
    Settings settings;
    settings.mjd = NOON;
    settings.targets.assign(MOST, Target{"", {}});
    EXPECT_EQ(makeReport(settings).rows.at(0).targets.size(), MOST);
    settings.targets.push_back({});
    EXPECT_THROW(makeReport(settings), UsageError);
}

TEST(CurveNamesTest, ANameStandsWhereItIsTheClearest) {
    expectTable(TEST_DATA "/curve-names.txt", [](const std::string& name, const auto& in) {
        std::vector<NamedCurve> curves = {{in.at(5), {}}, {in.at(0), {{in.at(3), in.at(4)}}}};
        for (std::size_t i = 6; i < in.size(); i += 2)
            curves[0].points.push_back({in.at(i), in.at(i + 1)});
        const std::size_t own = name == "second" ? 1 : 0;
        std::swap(curves[0], curves[own]);
        std::vector<double> result(2, NAN);
        const auto place = namePlaces(curves, {{in.at(0), {in.at(1), in.at(2)}}}).at(own);
        if (place) result = {place->x, place->y};
        return result;
    });
}

}  // namespace zarn::moon
