#include <string>
#include <vector>

#include "shared/cli/Printable.h"
#include "shared/sky/Calendar.h"
#include "zarn-moon/forms/Columns.h"
#include "zarn-moon/forms/TableParts.h"
#include "zarn-moon/forms/Texts.h"

namespace zarn::moon {

namespace {

/// From when to when a window lasts, in UT or else in local time.
std::string windowTimes(const Window& window, bool local) {
    if (window.begin == window.end) return local ? "" : "none";
    const auto clock = [local](double mjd) {
        return local ? localTime(nearestMinute(mjd), "%H:%M") : clockText(mjd);
    };
    return clock(window.begin) + " to " + clock(window.end);
}

std::string moonText(const Window& window) {
    if (window.begin == window.end) return "";
    return window.moonDown ? "down" : "up";
}

/// The cells of a night, but for its rank.
std::vector<std::string> nightCells(const NightLine& line, const TargetNight& night, bool local) {
    std::vector<std::string> cells = {dateOf(line.date), fixed(night.usableHours, HOURS_DECIMALS),
                                      fixed(night.darkEquivalentHours, HOURS_DECIMALS),
                                      windowTimes(night.best, false)};
    if (local) cells.push_back(windowTimes(night.best, true));
    cells.push_back(moonText(night.best));
    cells.push_back(percent(line.summary.illumination, 0) + " %");
    return cells;
}

std::vector<std::string> titles(bool local) {
    std::vector<std::string> cells = {"night", "usable h", "dark-equivalent h", "best window, UT"};
    if (local) cells.emplace_back("local");
    cells.emplace_back("moon");
    cells.emplace_back("lit");
    return cells;
}

std::string allNights(const Report& report, const Season& season) {
    Columns columns;
    columns.add(titles(report.settings.local));
    for (std::size_t i = 0; i < season.size(); ++i)
        columns.add(nightCells(report.nights[i], season[i], report.settings.local));
    return columns.text();
}

/// The best nights by rank, and what all nights are worth together.
std::string ranking(const Report& report, const Season& season) {
    double usable = 0.0;
    double worth = 0.0;
    for (const TargetNight& night : season) {
        usable += night.usableHours;
        worth += night.darkEquivalentHours;
    }
    const std::string total = "In all " + fixed(usable, 1) + " usable hours, worth " +
                              fixed(worth, 1) + " dark-equivalent hours.";
    const std::vector<std::size_t> nights = bestNights(season);
    if (nights.empty()) return total + "\n";
    Columns columns;
    std::vector<std::string> title = titles(report.settings.local);
    title.insert(title.begin(), "rank");
    columns.add(title);
    for (const std::size_t i : nights) {
        std::vector<std::string> cells =
            nightCells(report.nights[i], season[i], report.settings.local);
        cells.insert(cells.begin(), std::to_string(season[i].rank));
        columns.add(cells);
    }
    return total + " The best nights:\n" + columns.text();
}

}  // namespace

std::string semesterTable(const Report& report) {
    const Settings& settings = report.settings;
    std::string text;
    for (std::size_t i = 0; i < settings.targets.size(); ++i) {
        const Target& target = settings.targets[i];
        const std::string limits = limitsText(settings, target);
        text +=
            (i > 0 ? "\n" : "") + targetTitle(settings, target) + "\n" +
            (limits.empty() ? "" : "limits: " + limits.substr(std::string(", ").size()) + "\n") +
            allNights(report, report.seasons[i]) + ranking(report, report.seasons[i]);
    }
    return text;
}

}  // namespace zarn::moon
