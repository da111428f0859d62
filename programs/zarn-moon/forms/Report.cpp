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

NightLine lineOf(const Night& night) {
    return {night.date, eventsOf(night), summaryOf(night), daylightOf(night)};
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
    const Night night = makeNight(settings.site, settings.date);
    report.nights.push_back(lineOf(night));
    report.phases = nextPhases(night.minutes.front(), night.minutes.back());
    const std::vector<MJD_DATE> instants = instantsOf(night, settings.step);
    checkSize(instants.size(), settings.targets.size());
    const std::size_t middle = night.minutes.size() / 2;
    const std::vector<SkyPosition> positions = positionsOfDate(settings, night.minutes[middle]);
    for (std::size_t i = 0; asksForWindows(settings) && i < positions.size(); ++i) {
        const double least = leastAltitudeOf(settings, settings.targets[i]);
        report.windows.push_back(bestWindow(night, positions[i], least));
    }
    report.rows = makeRows(settings, instants, positions, report.windows);
    report.night = night;
}

}  // namespace

double leastAltitudeOf(const Settings& settings, const Target& target) {
    const double asked = target.minAltitude.value_or(settings.minAltitude.value_or(0.0));
    return std::max(asked, settings.horizon.value_or(0.0));
}

Report makeReport(const Settings& settings) {
    Report report = {settings, {}, {}, {}, {}, {}};
    if (settings.mjd) {
        checkSize(1, settings.targets.size());
        report.phases = nextPhases(*settings.mjd, *settings.mjd);
        report.rows =
            makeRows(settings, {*settings.mjd}, positionsOfDate(settings, *settings.mjd), {});
    } else if (settings.nights == 0) {
        addNight(report);
    } else {
        const double begin = noonOf(settings.site, settings.date);
        report.phases = nextPhases(begin, begin + settings.nights);
        for (unsigned i = 0; i < settings.nights; ++i) {
            const Night night = makeNight(settings.site, settings.date + i);
            report.nights.push_back(lineOf(night));
        }
    }
    return report;
}

}  // namespace zarn::moon
