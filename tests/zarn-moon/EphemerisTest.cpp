// zarn-moon's own sun, moon and eclipses.

#include <gtest/gtest.h>

#include "shared/sky/DeltaT.h"
#include "shared/sky/Precession.h"
#include "shared/sky/Units.h"
#include "tests/support/NumberTable.h"
#include "zarn-moon/night/Eclipses.h"
#include "zarn-moon/night/Rows.h"

namespace zarn::moon {

namespace {

const Ephemeris& erfa() { return ephemerisOf(Theory::ERFA); }

/// What is seen at one instant: of the sun, the moon, and a target of either equinox.
std::vector<double> skyAt(const Site& site, double mjd) {
    const SkyPath sky = erfa().pathOver(site, {mjd});
    std::vector<double> values = {sky.moon.siderealTime[0], sky.sunAltitudes[0],
                                  sky.moon.altitude[0], sky.moon.azimuth[0],
                                  sky.moon.illumination[0]};
    for (const Equinox equinox : {Equinox::J2000, Equinox::OF_DATE}) {
        const auto directions = erfa().directionsOfDate({{150.0, 20.0}}, equinox, mjd);
        values.push_back(valuesOf({}, sky, 0, directions.at(0)).altitude);
    }
    const SkyPath above = erfa().pathOver({"", site.latitude, site.longitude, 5000.0}, {mjd});
    values.push_back(above.moon.altitude[0] - sky.moon.altitude[0]);
    return values;
}

std::vector<double> phasesAfter(double mjd) {
    std::map<std::string, double> times;
    for (const auto& [name, time] : nextPhases(erfa(), mjd, mjd)) times[name] = time;
    return {times["new moon"], times["first quarter"], times["full moon"], times["last quarter"]};
}

/// How many phases a span has, and when.
std::vector<double> phasesIn(double begin, double end) {
    std::vector<double> values = {0.0};
    for (const Phase& phase : nextPhases(erfa(), begin, end)) values.push_back(phase.mjd);
    values[0] = static_cast<double>(values.size() - 1);
    return values;
}

std::vector<double> agesAtNewMoon(double mjd) {
    constexpr double SECOND = 1.0 / SECONDS_PER_DAY;
    const double newMoon = phasesAfter(mjd).front();
    return erfa()
        .pathOver({}, {newMoon - SECOND, newMoon + SECOND, newMoon + 30.0 * SECOND})
        .moon.phase;
}

/// The magnitude and the contacts of an eclipse, which is seen in one night and from one side.
std::vector<double> eclipseOf(const std::string& kind, double date, double longitude) {
    const Site site = {"", 0.0, longitude};
    const std::optional<Eclipse> eclipse = eclipseIn(erfa(), makeNight(erfa(), site, date));
    if (!eclipse) return {};
    EXPECT_EQ(eclipse->kind, kind);
    std::vector<double> values = {eclipse->magnitude};
    for (const auto& [name, mjd, moonUp] : eclipse->contacts) {
        values.push_back((mjd - date) * MINUTES_PER_DAY);
        EXPECT_TRUE(moonUp) << name;
    }
    // The shadow is crossed evenly, but for 0.05 minutes.
    const std::size_t greatest = eclipse->contacts.size() / 2 + 1;
    EXPECT_NEAR(values.at(greatest), (values.at(1) + values.back()) / 2.0, 0.05);
    EXPECT_FALSE(eclipseIn(erfa(), makeNight(erfa(), {"", 0.0, longitude - 180.0}, date)));
    for (const double later : {1.0, 29.0})
        EXPECT_FALSE(eclipseIn(erfa(), makeNight(erfa(), site, date + later)));
    return values;
}

}  // namespace

TEST(EphemerisTest, TheSkyIsThatOfAnotherTheory) {
    expectTable(TEST_DATA "/ephemeris.txt",
                [](const std::string& name, const std::vector<double>& in) -> std::vector<double> {
                    if (name == "precessed") {
                        const Position to = precessed({in[0], in[1]}, in[2], in[3]);
                        return {to.ra, to.dec};
                    }
                    if (name == "delta-t") return {deltaT(in[0]) * SECONDS_PER_DAY};
                    if (name == "sky") return skyAt({"", in[0], in[1]}, in[2]);
                    if (name == "span") return phasesIn(in[0], in[1]);
                    if (name == "phases") return phasesAfter(in[0]);
                    if (name == "ages") return agesAtNewMoon(in[0]);
                    return eclipseOf(name, in[0], in[1]);
                });
}

// An instant alone has a node of its own; in a night it is interpolated.
TEST(EphemerisTest, ANightIsAsGoodAsEachOfItsInstants) {
    const Site site = {"", 42.5, -12.3};
    const Night night = makeNight(erfa(), site, 61394.0);
    ASSERT_EQ(night.instants.size(), 1441U);
    for (std::size_t i = 0; i < night.instants.size(); i += 9) {
        const SkyPath alone = erfa().pathOver(site, {night.instants[i]});
        ASSERT_LT(angleBetween(night.moonDirections[i], alone.moonDirections[0]), 5e-5) << i;
        ASSERT_NEAR(night.sunAltitudes[i], alone.sunAltitudes[0], 5e-5) << i;
    }
    // Days apart, and backwards.
    const SkyPath apart = erfa().pathOver(site, {61394.5, 61400.5, 61388.5});
    for (std::size_t i = 0; i < apart.instants.size(); ++i) {
        const SkyPath alone = erfa().pathOver(site, {apart.instants[i]});
        EXPECT_EQ(apart.instants[i], alone.instants[0]);
        EXPECT_NEAR(apart.moon.altitude[i], alone.moon.altitude[0], 1e-9);
        EXPECT_NEAR(apart.moon.phase[i], alone.moon.phase[0], 1e-9);
    }
}

}  // namespace zarn::moon
