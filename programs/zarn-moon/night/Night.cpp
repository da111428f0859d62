#include "zarn-moon/night/Night.h"

#include <zarnsys/util/Astronomy.h>

#include <cmath>
#include <iterator>

#include "shared/sky/Angles.h"
#include "shared/sky/Calendar.h"

namespace {

constexpr double MINUTES_PER_HOUR = 60.0;

/// When values that belong to the minutes cross 0, upwards or downwards: on the line between the
/// two minutes, which is right to a fraction of a second.
std::vector<double> crossings(const Night& night, const std::vector<double>& values, bool upwards) {
    std::vector<double> times;
    for (std::size_t i = 1; i < values.size(); ++i) {
        const double before = values[i - 1];
        const double after = values[i];
        const bool crosses = upwards ? before < 0.0 && after >= 0.0 : before >= 0.0 && after < 0.0;
        if (!crosses) continue;
        const double step = night.minutes[i] - night.minutes[i - 1];
        times.push_back(night.minutes[i - 1] + step * before / (before - after));
    }
    return times;
}

std::vector<double> above(const std::vector<double>& altitudes, double level) {
    std::vector<double> result(altitudes);
    for (double& altitude : result) altitude -= level;
    return result;
}

/// How far west the moon is: negative before its upper transit, positive after it.
std::vector<double> westOfMeridian(const MoonGrid& moon) {
    std::vector<double> result(moon.azimuth);
    for (std::size_t i = 0; i < result.size(); ++i) {
        // Times the cosine of the altitude: near the zenith the azimuth alone would jump.
        result[i] =
            -std::sin(moon.azimuth[i] / DEG_PER_RAD) * std::cos(moon.altitude[i] / DEG_PER_RAD);
    }
    return result;
}

// What the sun does, in the order of a night.
constexpr struct {
    const char* name;
    double altitude;
    bool rising;
} SUN_EVENTS[] = {
    {"sunset", HORIZON, false},
    {"civil dusk", CIVIL_TWILIGHT, false},
    {"nautical dusk", NAUTICAL_TWILIGHT, false},
    {"astronomical dusk", ASTRONOMICAL_TWILIGHT, false},
    {"astronomical dawn", ASTRONOMICAL_TWILIGHT, true},
    {"nautical dawn", NAUTICAL_TWILIGHT, true},
    {"civil dawn", CIVIL_TWILIGHT, true},
    {"sunrise", HORIZON, true},
};

constexpr const char* PHASES[] = {"new moon", "first quarter", "full moon", "last quarter"};

std::string wordFor(const Summary& summary) {
    constexpr double DARK = 0.25;
    constexpr double BRIGHT = 0.65;
    constexpr double HARDLY_UP = 0.1;
    constexpr double MOSTLY_UP = 0.5;
    if (summary.astronomicalHours == 0.0) return "bright";
    const double up = 1.0 - summary.darkHours / summary.astronomicalHours;
    if (summary.illumination < DARK || up < HARDLY_UP) return "dark";
    return summary.illumination > BRIGHT && up > MOSTLY_UP ? "bright" : "grey";
}

/// The longest stretch of minutes that count.
Window longest(const Night& night, const std::vector<bool>& counts, bool moonDown) {
    Window best = {0.0, 0.0, moonDown};
    Window window = best;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        if (!counts[i]) continue;
        if (i == 0 || !counts[i - 1]) window.begin = night.minutes[i];
        window.end = night.minutes[i];
        if (window.end - window.begin > best.end - best.begin) best = window;
    }
    return best;
}

}  // namespace

const char* const RULE_OF_WORDS =
    R"(A night is dark when the moon is less than 25 % lit or up for less than a tenth
of the time with the sun below -18 degrees; bright when it is more than 65 % lit
and up for more than half of that time, or when there is no such time; else grey.)";

double sunAltitude(double mjd, double lst, double latitude) {
    double ra = 0;
    double dec = 0;
    double azimuth = 0;
    lpsun(mjd + JD_OF_MJD_0, &ra, &dec);
    return altit(dec, adj_time(lst - ra), latitude, &azimuth);
}

double altitudeOf(const SkyPosition& target, double lst, double latitude) {
    double azimuth = 0;
    return altit(target.dec, adj_time(lst - target.ra / DEG_PER_HOUR), latitude, &azimuth);
}

Night makeNight(const Site& site, double date) {
    Night night = {site, date, {}, {}, {}};
    const double noon = noonOf(site, date);
    for (int minute = 0; minute <= static_cast<int>(MINUTES_PER_DAY); ++minute)
        night.minutes.push_back(noon + minute / MINUTES_PER_DAY);
    night.moon = computeMoonGrid({}, night.minutes, placeOf(site));
    for (std::size_t i = 0; i < night.minutes.size(); ++i)
        night.sunAltitudes.push_back(
            sunAltitude(night.minutes[i], night.moon.siderealTime[i], site.latitude));
    return night;
}

std::vector<Event> eventsOf(const Night& night) {
    std::vector<Event> events;
    for (const auto& [name, altitude, rising] : SUN_EVENTS)
        events.push_back({name, crossings(night, above(night.sunAltitudes, altitude), rising)});
    const std::vector<double> moon = above(night.moon.altitude, HORIZON);
    events.push_back({"moonrise", crossings(night, moon, true)});
    events.push_back({"moon transit", crossings(night, westOfMeridian(night.moon), true)});
    events.push_back({"moonset", crossings(night, moon, false)});
    return events;
}

std::vector<Phase> nextPhases(double mjd) {
    constexpr int PHASES_PER_LUNATION = 4;
    int lunation = 0;
    lun_age(mjd + JD_OF_MJD_0, &lunation);
    std::vector<Phase> phases;
    for (int quarter = 0; phases.size() < std::size(PHASES); ++quarter) {
        const int phase = quarter % PHASES_PER_LUNATION;
        double jd = 0;
        flmoon(lunation + quarter / PHASES_PER_LUNATION, phase, &jd);
        if (jd - JD_OF_MJD_0 > mjd) phases.push_back({PHASES[phase], jd - JD_OF_MJD_0});
    }
    return phases;
}

Summary summaryOf(const Night& night) {
    int astronomical = 0;
    int dark = 0;
    for (std::size_t i = 1; i < night.minutes.size(); ++i) {  // the last noon is the next one's
        if (night.sunAltitudes[i] >= ASTRONOMICAL_TWILIGHT) continue;
        ++astronomical;
        if (night.moon.altitude[i] < HORIZON) ++dark;
    }
    const std::size_t middle = night.minutes.size() / 2;
    Summary summary = {astronomical / MINUTES_PER_HOUR, dark / MINUTES_PER_HOUR,
                       night.moon.illumination[middle], night.moon.phase[middle], ""};
    summary.word = wordFor(summary);
    return summary;
}

Window bestWindow(const Night& night, const SkyPosition& target, double leastAltitude) {
    std::vector<bool> high;
    std::vector<bool> highWithoutMoon;
    for (std::size_t i = 0; i < night.minutes.size(); ++i) {
        const double altitude = altitudeOf(target, night.moon.siderealTime[i], night.site.latitude);
        high.push_back(night.sunAltitudes[i] < ASTRONOMICAL_TWILIGHT && altitude >= leastAltitude);
        highWithoutMoon.push_back(high.back() && night.moon.altitude[i] < HORIZON);
    }
    constexpr double LEAST_WITHOUT_MOON = 1.0 / 24.0;  // [d]
    const Window without = longest(night, highWithoutMoon, true);
    const Window any = longest(night, high, false);
    const bool same = without.begin == any.begin && without.end == any.end;
    return same || without.end - without.begin >= LEAST_WITHOUT_MOON ? without : any;
}
