#include <algorithm>
#include <cmath>
#include <iterator>

#include "shared/sky/Units.h"
#include "zarn-moon/night/Crossings.h"
#include "zarn-moon/night/Night.h"

namespace zarn::moon {

namespace {

/// How far west of the meridian the moon is: negative before its upper transit, positive after it.
std::vector<double> westOfMeridian(const MoonGrid& moon) {
    std::vector<double> result;
    for (std::size_t i = 0; i < moon.azimuth.size(); ++i) {
        // The factor of the altitude: near the zenith, the azimuth alone would jump.
        result.push_back(-std::sin(moon.azimuth[i] / DEG_PER_RAD) *
                         std::cos(moon.altitude[i] / DEG_PER_RAD));
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

// The sun's altitude in a twilight: below the one and not below the other.
constexpr struct {
    const char* name;
    double top, bottom;
} TWILIGHTS[] = {
    {"civil", HORIZON, CIVIL_TWILIGHT},
    {"nautical", CIVIL_TWILIGHT, NAUTICAL_TWILIGHT},
    {"astronomical", NAUTICAL_TWILIGHT, ASTRONOMICAL_TWILIGHT},
};

constexpr const char* PHASES[] = {"new moon", "first quarter", "full moon", "last quarter"};

}  // namespace

std::vector<Event> eventsOf(const Night& night) {
    std::vector<Event> events;
    for (const auto& [name, altitude, rising] : SUN_EVENTS)
        events.push_back(
            {name, crossings(night.instants, above(night.sunAltitudes, altitude), rising)});
    const std::vector<double> moon = above(night.moon.altitude, HORIZON);
    events.push_back({"moonrise", crossings(night.instants, moon, true)});
    events.push_back({"moon transit", crossings(night.instants, westOfMeridian(night.moon), true)});
    events.push_back({"moonset", crossings(night.instants, moon, false)});
    return events;
}

const std::vector<double>& timesOf(const std::vector<Event>& events, const std::string& name) {
    return std::find_if(events.begin(), events.end(),
                        [&name](const Event& event) { return event.name == name; })
        ->times;
}

Daylight daylightOf(const Night& night) {
    const auto& sun = night.sunAltitudes;
    const auto [lowest, highest] = std::minmax_element(sun.begin(), sun.end());
    Daylight daylight = {SunCourse::SETS, {}};
    if (*lowest >= HORIZON) daylight.course = SunCourse::UP;
    if (*highest < HORIZON) daylight.course = SunCourse::DOWN;
    for (const auto& twilight : TWILIGHTS) {
        const auto isIn = [&twilight](double altitude) {
            return altitude < twilight.top && altitude >= twilight.bottom;
        };
        if (std::any_of(sun.begin(), sun.end(), isIn))
            daylight.twilights.emplace_back(twilight.name);
    }
    return daylight;
}

std::vector<Phase> nextPhases(const Ephemeris& ephemeris, double mjd, double end) {
    constexpr int PHASES_PER_LUNATION = 4;
    const int lunation = lunationOf(mjd);
    std::vector<Phase> phases;
    for (int quarter = 0;; ++quarter) {
        const int phase = quarter % PHASES_PER_LUNATION;
        const double time = ephemeris.phaseTime(lunation + quarter / PHASES_PER_LUNATION, phase);
        if (time > end && phases.size() >= std::size(PHASES)) return phases;
        if (time > mjd) phases.push_back({PHASES[phase], time});
    }
}

}  // namespace zarn::moon
