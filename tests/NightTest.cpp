// zarn-moon's nights, rows and forms.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

#include "Calendar.h"
#include "Night.h"
#include "Report.h"
#include "Rows.h"
#include "Texts.h"

namespace {

constexpr double SECOND = 1.0 / 86400.0;
constexpr double MINUTE = 1.0 / 1440.0;
const Site SITE = {"here", 42.5, -12.3};

Settings settingsFor(const char* date) {
    Settings settings;
    settings.site = SITE;
    settings.date = mjdOfDate(date);
    settings.targets = {{"first", {200.0, 40.0}}, {"second, \"quoted\"", {83.8, -5.0}}};
    return settings;
}

std::vector<double> timesOf(const std::vector<Event>& events, const std::string& name) {
    for (const Event& event : events) {
        if (event.name == name) return event.times;
    }
    ADD_FAILURE() << name;
    return {};
}

std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

}  // namespace

TEST(NightTest, BeginsAtLocalMeanNoon) {
    // 90 degrees west, local time is six hours behind: noon is 18 h UT.
    const Site west = {"", 0.0, 90.0};
    EXPECT_EQ(makeNight(west, 61000.0).minutes.front(), 61000.75);
    EXPECT_EQ(makeNight(west, 61000.0).minutes.back(), 61001.75);
    EXPECT_EQ(nightOf(west, 61000.7499), 60999.0);
    EXPECT_EQ(nightOf(west, 61000.7501), 61000.0);
    EXPECT_EQ(nightOf({"", 0.0, -180.0}, 61000.01), 61000.0);
}

TEST(NightTest, EveryEventIsWhereTheAltitudeIs) {
    const Night night = makeNight(SITE, mjdOfDate("2026-12-20"));
    const struct {
        const char* name;
        double altitude;
    } cases[] = {{"sunset", -0.833}, {"civil dusk", -6.0}, {"astronomical dawn", -18.0}};
    for (const auto& [name, altitude] : cases) {
        const auto times = timesOf(eventsOf(night), name);
        ASSERT_EQ(times.size(), 1U) << name;
        // The sun's altitude a second before and after lies on either side.
        const auto at = [](double mjd) {
            const MoonGrid grid = computeMoonGrid({}, {mjd}, SITE.longitude, SITE.latitude);
            return sunAltitude(mjd, grid.lst[0], SITE.latitude);
        };
        EXPECT_LT((at(times[0] - SECOND) - altitude) * (at(times[0] + SECOND) - altitude), 0.0);
    }
    // The moon in its upper transit is south of the zenith here.
    const auto transit = timesOf(eventsOf(night), "moon transit");
    ASSERT_EQ(transit.size(), 1U);
    EXPECT_NEAR(computeMoonGrid({}, transit, SITE.longitude, SITE.latitude).moonaz[0], 180.0, 0.02);
}

TEST(NightTest, PolarNightsAndDaysHaveNoSunset) {
    for (const char* date : {"2026-06-21", "2026-12-21"}) {
        const Night night = makeNight({"", 75.0, -25.0}, mjdOfDate(date));
        EXPECT_TRUE(timesOf(eventsOf(night), "sunset").empty()) << date;
        EXPECT_EQ(instantsOf(night, 60.0).size(), date[6] == '6' ? 0U : 24U) << date;
    }
}

TEST(NightTest, PhasesComeInTheirOrder) {
    // From an almanac: full moon 2026-12-24 01:28, last quarter 12-30 18:59, new moon 2027-01-07
    // 20:24, first quarter 01-15 20:34.
    const auto phases = nextPhases(mjdOfDate("2026-12-20"));
    const double expected[] = {61398.061, 61404.791, 61412.850, 61420.857};
    const char* names[] = {"full moon", "last quarter", "new moon", "first quarter"};
    ASSERT_EQ(phases.size(), 4U);
    for (std::size_t i = 0; i < phases.size(); ++i) {
        EXPECT_EQ(phases[i].name, names[i]);
        EXPECT_NEAR(phases[i].mjd, expected[i], 4 * MINUTE);
    }
    EXPECT_GT(nextPhases(phases[0].mjd).front().mjd, phases[0].mjd) << "the next, not this one";
}

TEST(NightTest, TheBestWindowIsAsLongAsPossible) {
    const Night night = makeNight(SITE, mjdOfDate("2026-12-20"));
    const auto events = eventsOf(night);
    // High all night: from moonset to dawn.
    const Window late = bestWindow(night, {200.0, 85.0}, 20.0);
    EXPECT_TRUE(late.moonDown);
    EXPECT_NEAR(late.begin, timesOf(events, "moonset")[0], 2 * MINUTE);
    EXPECT_NEAR(late.end, timesOf(events, "astronomical dawn")[0], 2 * MINUTE);
    // Sets before the moon: with the moon up, to the minute when it sinks to 30 degrees.
    const MoonTarget early = {30.0, 20.0};
    const Window window = bestWindow(night, early, 30.0);
    EXPECT_FALSE(window.moonDown);
    const double lst = computeMoonGrid({}, {window.end}, SITE.longitude, SITE.latitude).lst[0];
    EXPECT_NEAR(altitudeOf(early, lst, SITE.latitude), 30.0, 0.2);
    const Window none = bestWindow(night, {200.0, -80.0}, 0.0);
    EXPECT_EQ(none.begin, none.end);
}

TEST(NightTest, RowsAreSilentWhereTheModelIs) {
    Settings settings = settingsFor("2026-12-20");
    settings.step = 10.0;
    const Report report = makeReport(settings);
    int compared = 0;
    for (const Row& row : report.rows) {
        for (const TargetValues& values : row.targets) {
            const bool up = values.altitude >= 0.0;
            EXPECT_EQ(values.airmass.has_value(), up);
            EXPECT_EQ(values.sky.has_value(), up && row.sunAltitude < -18.0);
            EXPECT_EQ(values.moonSky.has_value(), up && row.moonUp);
            if (!values.sky || !values.moonSky) continue;
            // Lights add: as many times the dark sky's as both magnitudes say.
            const double lights = std::pow(10.0, 0.4 * (21.8 - *values.moonSky)) + 1.0;
            EXPECT_NEAR(std::pow(10.0, 0.4 * (21.8 - *values.sky)), lights, 1e-9 * lights);
            ++compared;
        }
    }
    EXPECT_GT(compared, 50);
}

// Another fit, Kasten & Young 1989, Applied Optics 28, 4735, within half a percent above 4 degrees;
// at the horizon it gives 38.
TEST(NightTest, AirmassIsGoodDownToTheHorizon) {
    Settings settings = settingsFor("2026-12-20");
    settings.step = 1.0;
    double lowest = 90.0;
    double thickest = 0.0;
    for (const Row& row : makeReport(settings).rows) {
        for (const TargetValues& values : row.targets) {
            const double altitude = values.altitude;
            if (altitude < 0.0) continue;
            if (altitude < lowest) thickest = *values.airmass;
            lowest = std::min(lowest, altitude);
            const double other = 1.0 / (std::sin(altitude / 57.29578) +
                                        0.50572 * std::pow(altitude + 6.07995, -1.6364));
            EXPECT_NEAR(*values.airmass / other, 1.0, altitude > 4.0 ? 0.005 : 0.03) << altitude;
        }
    }
    EXPECT_LT(lowest, 0.2);
    EXPECT_NEAR(thickest, 38.0, 2.0);
}

TEST(NightTest, CsvAndJsonSayTheSame) {
    Settings settings = settingsFor("2026-12-20");
    settings.minAltitude = 30.0;
    const Report report = makeReport(settings);
    const auto json = nlohmann::json::parse(jsonOf(report));
    const auto lines = linesOf(csvOf(report));
    ASSERT_EQ(json["instants"].size(), report.rows.size());
    ASSERT_EQ(lines.size(), 1 + 2 * report.rows.size());
    EXPECT_EQ(json["targets"][1]["name"], "second, \"quoted\"");
    EXPECT_NE(lines[2].find(",\"second, \"\"quoted\"\"\","), std::string::npos);
    for (std::size_t i = 0; i < report.rows.size(); ++i) {
        const auto& instant = json["instants"][i];
        const std::string& line = lines[1 + 2 * i];
        const auto& sky = instant["targets"][0]["sky_mag"];
        EXPECT_EQ(line.substr(0, 20), instant["utc"]);
        EXPECT_NE(line.find("," + fixed(instant["moon_az_deg"], 4) + ","), std::string::npos);
        const std::string cell = sky.is_null() ? "" : fixed(sky, 3);
        EXPECT_NE(line.find("," + cell + "," + (report.rows[i].targets[0].best ? "1" : "0")),
                  std::string::npos)
            << line;
    }
}
