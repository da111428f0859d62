#include "zarn-moon/night/Night.h"

#include <zarnsys/util/Astronomy.h>

#include "shared/sky/Angles.h"
#include "shared/sky/Calendar.h"

namespace zarn::moon {

namespace {

/// The word that RULE_OF_WORDS gives for a night.
std::string wordFor(const Summary& summary) {
    constexpr double DARK = 0.25;      // illuminated fraction
    constexpr double BRIGHT = 0.65;    // illuminated fraction
    constexpr double HARDLY_UP = 0.1;  // of the astronomical night
    constexpr double MOSTLY_UP = 0.5;  // of the astronomical night
    if (summary.astronomicalHours == 0.0) return "bright";
    const double up = 1.0 - summary.darkHours / summary.astronomicalHours;
    if (summary.illumination < DARK || up < HARDLY_UP) return "dark";
    return summary.illumination > BRIGHT && up > MOSTLY_UP ? "bright" : "grey";
}

/// The longest stretch of consecutive minutes for which `counts` is true; of equal ones the first.
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
    constexpr double LEAST_WITHOUT_MOON = 1.0 / HOURS_PER_DAY;  // [d]
    const Window without = longest(night, highWithoutMoon, true);
    const Window any = longest(night, high, false);
    const bool same = without.begin == any.begin && without.end == any.end;
    return same || without.end - without.begin >= LEAST_WITHOUT_MOON ? without : any;
}

}  // namespace zarn::moon
