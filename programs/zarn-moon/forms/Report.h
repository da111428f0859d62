/// The results of a run of zarn-moon, and the forms in which it shows them.
#ifndef ZARN_MOON_REPORT_H
#define ZARN_MOON_REPORT_H

#include <optional>
#include <string>
#include <vector>

#include "zarn-moon/night/Eclipses.h"
#include "zarn-moon/night/Night.h"
#include "zarn-moon/night/Rows.h"
#include "zarn-moon/semester/Semester.h"
#include "zarn-moon/settings/Settings.h"

namespace zarn::moon {

/// One night without its minutes: of many nights, no more is kept.
struct NightLine {
    double date;  ///< 0 h of the day that it begins on [MJD]
    std::vector<Event> events;
    Summary summary;
    Daylight daylight;
    std::optional<Eclipse> eclipse;
};

/// The results of a run.
struct Report {
    Settings settings;
    std::vector<NightLine> nights;  ///< the one, or as many as asked for; empty for an instant
    std::vector<Phase> phases;      ///< those of the nights, the next four at least
    std::vector<Row> rows;          ///< of the night or instant; empty for several nights
    std::vector<Window> windows;    ///< of each target; empty: not asked for
    std::optional<Night> night;     ///< minute by minute, if it is the only one
    std::vector<Season> seasons;    ///< of each target, one element per night; empty for one night
    std::vector<std::vector<Window>> darkWindows;  ///< of each night, for a calendar
};

/// Computes all that the settings ask for.
///
/// @throw UsageError  when the table would be too large
Report makeReport(const Settings& settings);

/// For people: text and aligned columns.
std::string tableOf(const Report& report);

/// A header row, and one row per instant and target, or per night. Absent values are empty.
std::string csvOf(const Report& report);

/// Everything. Absent values are null.
std::string jsonOf(const Report& report);

/// A calendar by RFC 5545: an event for each dark window and for each target's best windows.
///
/// @throw std::runtime_error  when there is no window: a calendar without an event is none
std::string icsOf(const Report& report);

}  // namespace zarn::moon

#endif  // ZARN_MOON_REPORT_H
