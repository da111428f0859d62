#include "zarn-moon/semester/Semester.h"

#include <algorithm>
#include <cmath>

#include "shared/sky/Units.h"

namespace zarn::moon {

namespace {

/// The allowed minutes from `begin` on, before `end`.
std::vector<std::size_t> allowedWithin(const std::vector<bool>& allowed, std::size_t begin,
                                       std::size_t end) {
    std::vector<std::size_t> minutes;
    for (std::size_t i = begin; i < std::min(end, allowed.size()); ++i) {
        if (allowed[i]) minutes.push_back(i);
    }
    return minutes;
}

/// The indices of the nights that are worth anything, the best first.
std::vector<std::size_t> nightsByWorth(const Season& season) {
    std::vector<std::size_t> nights;
    for (std::size_t i = 0; i < season.size(); ++i) {
        if (season[i].darkEquivalentHours > 0.0) nights.push_back(i);
    }
    std::stable_sort(nights.begin(), nights.end(), [&season](std::size_t a, std::size_t b) {
        return season[a].darkEquivalentHours > season[b].darkEquivalentHours;
    });
    return nights;
}

}  // namespace

double worthOf(const Settings& settings, const TargetValues& values) {
    constexpr double OF_SKY = -0.4;  // [decades per mag]
    constexpr double OF_AIR = -0.8;  // twice that: the signal counts squared
    if (!values.sky) return 0.0;     // where it is known, the airmass is, too
    return std::pow(10.0, OF_SKY * (settings.darkSky - *values.sky) +
                              OF_AIR * settings.extinction * (*values.airmass - 1.0));
}

std::size_t minutesPerStep(const Settings& settings) {
    return static_cast<std::size_t>(std::max(1.0, std::round(settings.step)));
}

TargetNight targetNightOf(const Settings& settings, const Night& night, const Direction& direction,
                          const std::vector<bool>& allowed) {
    const std::size_t step = minutesPerStep(settings);
    std::size_t usable = 0;
    double worth = 0.0;  // [minutes]
    // The first noon is left out, as the last one is the next night's first.
    for (std::size_t begin = 1; begin < allowed.size(); begin += step) {
        const std::vector<std::size_t> minutes = allowedWithin(allowed, begin, begin + step);
        if (minutes.empty()) continue;
        const std::size_t middle = minutes[minutes.size() / 2];
        usable += minutes.size();
        worth += static_cast<double>(minutes.size()) *
                 worthOf(settings, valuesOf(settings, night, middle, direction));
    }
    return {static_cast<double>(usable) / MINUTES_PER_HOUR, worth / MINUTES_PER_HOUR,
            bestWindow(night, allowed), 0};
}

void rankNights(Season& season) {
    std::size_t rank = 0;
    for (const std::size_t night : nightsByWorth(season)) season[night].rank = ++rank;
}

std::vector<std::size_t> bestNights(const Season& season) {
    constexpr std::size_t SHOWN = 10;
    std::vector<std::size_t> nights = nightsByWorth(season);
    nights.resize(std::min(nights.size(), SHOWN));
    return nights;
}

}  // namespace zarn::moon
