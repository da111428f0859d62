#include "zarn-moon/forms/Report.h"

#include <algorithm>

#include "shared/cli/UsageError.h"

namespace zarn::moon {

namespace {

constexpr std::size_t MOST_VALUES = 1000000;  // instants times targets: about 500 MB at most

/// Refuses a table that would take too much memory.
void checkSize(std::size_t instants, std::size_t targets) {
    if (targets > 0 && instants > MOST_VALUES / targets) {
        throw UsageError("more than " + std::to_string(MOST_VALUES) +
                         " rows of instants and targets: choose a larger --step");
    }
}

NightLine lineOf(const Ephemeris& ephemeris, const Night& night) {
    return {night.date, eventsOf(night), summaryOf(night), daylightOf(night),
            eclipseIn(ephemeris, night)};
}

/// Whether anything says how high targets must be.
bool asksForWindows(const Settings& settings) {
    return settings.minAltitude || settings.horizon ||
           std::any_of(settings.targets.begin(), settings.targets.end(),
                       [](const Target& target) { return target.minAltitude.has_value(); });
}

/// Fills in the report on a single night.
void addNight(Report& report) {
    const Settings& settings = report.settings;
    const Ephemeris& ephemeris = ephemerisOf(settings.ephemeris);
    const Night night = makeNight(ephemeris, settings.site, settings.date);
    report.nights.push_back(lineOf(ephemeris, night));
    report.phases = nextPhases(ephemeris, night.instants.front(), night.instants.back());
    const std::vector<MJD_DATE> instants = instantsOf(ephemeris, night, settings.step);
    checkSize(instants.size(), settings.targets.size());
    const std::vector<Direction> targets = directionsOfDate(settings, ephemeris, middleOf(night));
    for (std::size_t i = 0; asksForWindows(settings) && i < targets.size(); ++i) {
        const double least = leastAltitudeOf(settings, settings.targets[i]);
        report.windows.push_back(bestWindow(night, targets[i], least));
    }
    report.rows =
        makeRows(settings, ephemeris.pathOver(settings.site, instants), targets, report.windows);
    report.night = night;
}

}  // namespace

double leastAltitudeOf(const Settings& settings, const Target& target) {
    const double asked = target.minAltitude.value_or(settings.minAltitude.value_or(0.0));
    return std::max(asked, settings.horizon.value_or(0.0));
}

Report makeReport(const Settings& settings) {
    const Ephemeris& ephemeris = ephemerisOf(settings.ephemeris);
    Report report = {settings, {}, {}, {}, {}, {}};
    if (settings.mjd) {
        checkSize(1, settings.targets.size());
        report.phases = nextPhases(ephemeris, *settings.mjd, *settings.mjd);
        report.rows = makeRows(settings, ephemeris.pathOver(settings.site, {*settings.mjd}),
                               directionsOfDate(settings, ephemeris, *settings.mjd), {});
    } else if (settings.nights == 0) {
        addNight(report);
    } else {
        const double begin = noonOf(settings.site, settings.date);
        report.phases = nextPhases(ephemeris, begin, begin + settings.nights);
        for (unsigned i = 0; i < settings.nights; ++i) {
            const Night night = makeNight(ephemeris, settings.site, settings.date + i);
            report.nights.push_back(lineOf(ephemeris, night));
        }
    }
    return report;
}

}  // namespace zarn::moon
