#include "zarn-moon/night/Night.h"

#include <cmath>

#include "shared/sky/Units.h"

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

/// The stretches of consecutive minutes for which `counts` is true, of two minutes at least.
std::vector<Window> stretches(const Night& night, const std::vector<bool>& counts, bool moonDown) {
    std::vector<Window> windows;
    for (std::size_t i = 1; i < counts.size(); ++i) {
        if (!counts[i] || !counts[i - 1]) continue;
        if (i == 1 || !counts[i - 2])
            windows.push_back({night.instants[i - 1], night.instants[i], moonDown});
        windows.back().end = night.instants[i];
    }
    return windows;
}

/// The longest of these stretches; of equal ones the first.
Window longest(const Night& night, const std::vector<bool>& counts, bool moonDown) {
    Window best = {0.0, 0.0, moonDown};
    for (const Window& window : stretches(night, counts, moonDown)) {
        if (window.end - window.begin > best.end - best.begin) best = window;
    }
    return best;
}

}  // namespace

Night makeNight(const Ephemeris& ephemeris, const Site& site, double date) {
    const double noon = noonOf(site, date);
    std::vector<MJD_DATE> minutes;
    for (int minute = 0; minute <= static_cast<int>(MINUTES_PER_DAY); ++minute)
        minutes.push_back(noon + minute / MINUTES_PER_DAY);
    return {ephemeris.pathOver(site, minutes), site, date};
}

double middleOf(const Night& night) { return night.instants[night.instants.size() / 2]; }

Summary summaryOf(const Night& night) {
    int astronomical = 0;
    int dark = 0;
    for (std::size_t i = 1; i < night.instants.size(); ++i) {  // the last noon is the next one's
        if (night.sunAltitudes[i] >= ASTRONOMICAL_TWILIGHT) continue;
        ++astronomical;
        if (night.moon.altitude[i] < HORIZON) ++dark;
    }
    const std::size_t middle = night.instants.size() / 2;
    Summary summary = {astronomical / MINUTES_PER_HOUR, dark / MINUTES_PER_HOUR,
                       night.moon.illumination[middle], night.moon.phase[middle], ""};
    summary.word = wordFor(summary);
    return summary;
}

Window bestWindow(const Night& night, const std::vector<bool>& allowed) {
    std::vector<bool> withoutMoon(allowed);
    for (std::size_t i = 0; i < allowed.size(); ++i)
        withoutMoon[i] = allowed[i] && night.moon.altitude[i] < HORIZON;
    constexpr double LEAST_WITHOUT_MOON = 1.0 / HOURS_PER_DAY;  // [d]
    const Window without = longest(night, withoutMoon, true);
    const Window any = longest(night, allowed, false);
    const bool same = without.begin == any.begin && without.end == any.end;
    return same || without.end - without.begin >= LEAST_WITHOUT_MOON ? without : any;
}

std::vector<Window> darkWindows(const Night& night) {
    std::vector<bool> dark;
    for (std::size_t i = 0; i < night.instants.size(); ++i) {
        dark.push_back(night.sunAltitudes[i] < ASTRONOMICAL_TWILIGHT &&
                       night.moon.altitude[i] < HORIZON);
    }
    return stretches(night, dark, true);
}

}  // namespace zarn::moon
