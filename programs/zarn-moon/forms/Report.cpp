#include "zarn-moon/forms/Report.h"

#include <algorithm>

#include "shared/cli/UsageError.h"

namespace zarn::moon {

namespace {

constexpr std::size_t MOST_VALUES = 1000000;  // instants times targets: about 500 MB at most

/// Refuses a table that would take too much memory.
void checkSize(std::size_t instants, std::size_t targets,
               const std::string& what = "instants and targets: choose a larger --step") {
    if (targets > 0 && instants > MOST_VALUES / targets)
        throw UsageError("more than " + std::to_string(MOST_VALUES) + " rows of " + what);
}

NightLine lineOf(const Ephemeris& ephemeris, const Night& night) {
    return {night.date, eventsOf(night), summaryOf(night), daylightOf(night),
            eclipseIn(ephemeris, night)};
}

/// Fills in what a calendar takes of a night.
void addDarkWindows(Report& report, const Night& night) {
    if (report.settings.format == Format::ICS) report.darkWindows.push_back(darkWindows(night));
}

/// Adds a night to the targets' seasons.
void addToSeasons(Report& report, const Ephemeris& ephemeris, const Night& night) {
    const Settings& settings = report.settings;
    const Limits limits(settings, night);
    const std::vector<Direction> targets = directionsOfDate(settings, ephemeris, middleOf(night));
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const std::vector<bool> allowed = limits.minutesFor(settings.targets[i], targets[i]);
        report.seasons[i].push_back(targetNightOf(settings, night, targets[i], allowed));
    }
}

/// Fills in the report on several nights.
void addNights(Report& report) {
    const Settings& settings = report.settings;
    const Ephemeris& ephemeris = ephemerisOf(settings.ephemeris);
    checkSize(settings.nights, settings.targets.size(), "nights and targets");
    report.seasons.resize(settings.targets.size());
    const double begin = noonOf(settings.site, settings.date);
    report.phases = nextPhases(ephemeris, begin, begin + settings.nights);
    for (unsigned i = 0; i < settings.nights; ++i) {
        const Night night = makeNight(ephemeris, settings.site, settings.date + i);
        report.nights.push_back(lineOf(ephemeris, night));
        addDarkWindows(report, night);
        addToSeasons(report, ephemeris, night);
        if (settings.nights == 1) report.night = night;
    }
    for (Season& season : report.seasons) rankNights(season);
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
    addDarkWindows(report, night);
    if (hasLimits(settings) || settings.format == Format::ICS) {
        const Limits limits(settings, night);
        for (std::size_t i = 0; i < targets.size(); ++i) {
            report.windows.push_back(
                bestWindow(night, limits.minutesFor(settings.targets[i], targets[i])));
        }
    }
    report.rows =
        makeRows(settings, ephemeris.pathOver(settings.site, instants), targets, report.windows);
    report.night = night;
}

}  // namespace

Report makeReport(const Settings& settings) {
    const Ephemeris& ephemeris = ephemerisOf(settings.ephemeris);
    Report report = {settings, {}, {}, {}, {}, {}, {}, {}};
    if (settings.mjd) {
        checkSize(1, settings.targets.size());
        report.phases = nextPhases(ephemeris, *settings.mjd, *settings.mjd);
        report.rows = makeRows(settings, ephemeris.pathOver(settings.site, {*settings.mjd}),
                               directionsOfDate(settings, ephemeris, *settings.mjd), {});
    } else if (settings.nights == 0) {
        addNight(report);
    } else {
        addNights(report);
    }
    return report;
}

}  // namespace zarn::moon
