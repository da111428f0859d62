#include "zarn-moon/night/Night.h"

#include <algorithm>

#include "shared/sky/Units.h"

namespace zarn::moon {

namespace {

/// The word that RULE_OF_WORDS gives for a night.
///
/// @param astronomical  how long the sun is below -18 degrees [min]
/// @param moonlit       for how long of that the moon is up [min]
/// @param illumination  of the moon, as a fraction
std::string wordFor(int astronomical, int moonlit, double illumination) {
    constexpr double DARK = 0.25;
    constexpr double BRIGHT = 0.65;
    if (astronomical == 0) return "bright";
    if (illumination < DARK || 10 * moonlit < astronomical) return "dark";
    return illumination > BRIGHT && 2 * moonlit > astronomical ? "bright" : "grey";
}

bool isMoonDown(const Night& night, std::size_t minute) {
    return night.moon.altitude[minute] < HORIZON;
}

bool isSunDown(const Night& night, std::size_t minute) {
    return night.sunAltitudes[minute] < ASTRONOMICAL_TWILIGHT;
}

/// The first and the last minute of a stretch, counted from noon; if they are equal, there is none.
struct Stretch {
    std::size_t begin = 0;
    std::size_t end = 0;

    std::size_t minutes() const { return end - begin; }
};

/// The stretches of consecutive minutes for which `counts` is true, of two minutes at least.
std::vector<Stretch> stretches(const std::vector<bool>& counts) {
    std::vector<Stretch> found;
    for (std::size_t i = 1; i < counts.size(); ++i) {
        if (!counts[i] || !counts[i - 1]) continue;
        if (i == 1 || !counts[i - 2]) found.push_back({i - 1, i});
        found.back().end = i;
    }
    return found;
}

/// The longest of these stretches; of equal ones the first.
Stretch longest(const std::vector<bool>& counts) {
    const std::vector<Stretch> found = stretches(counts);
    const auto best = std::max_element(
        found.begin(), found.end(),
        [](const Stretch& a, const Stretch& b) { return a.minutes() < b.minutes(); });
    return best == found.end() ? Stretch() : *best;
}

Window windowOf(const Night& night, const Stretch& stretch, bool moonDown) {
    return {night.instants[stretch.begin], night.instants[stretch.end], moonDown};
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
        if (!isSunDown(night, i)) continue;
        ++astronomical;
        if (isMoonDown(night, i)) ++dark;
    }
    const std::size_t middle = night.instants.size() / 2;
    Summary summary = {astronomical / MINUTES_PER_HOUR, dark / MINUTES_PER_HOUR,
                       night.moon.illumination[middle], night.moon.phase[middle], ""};
    summary.word = wordFor(astronomical, astronomical - dark, summary.illumination);
    return summary;
}

Window bestWindow(const Night& night, const std::vector<bool>& allowed) {
    std::vector<bool> withoutMoon;
    for (std::size_t i = 0; i < allowed.size(); ++i)
        withoutMoon.push_back(allowed[i] && isMoonDown(night, i));
    constexpr std::size_t LEAST_WITHOUT_MOON = 60;  // [min]
    const Stretch without = longest(withoutMoon);
    const Stretch any = longest(allowed);
    const bool same = without.begin == any.begin && without.end == any.end;
    const bool moonDown = same || without.minutes() >= LEAST_WITHOUT_MOON;
    return windowOf(night, moonDown ? without : any, moonDown);
}

bool isDark(const Night& night, std::size_t minute) {
    return isSunDown(night, minute) && isMoonDown(night, minute);
}

std::vector<Window> darkWindows(const Night& night) {
    std::vector<bool> dark;
    for (std::size_t i = 0; i < night.instants.size(); ++i) dark.push_back(isDark(night, i));
    std::vector<Window> windows;
    for (const Stretch& stretch : stretches(dark))
        windows.push_back(windowOf(night, stretch, true));
    return windows;
}

}  // namespace zarn::moon
