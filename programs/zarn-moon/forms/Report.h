/// All that a run of zarn-moon finds out, and its forms.
#ifndef ZARN_MOON_REPORT_H
#define ZARN_MOON_REPORT_H

#include <string>
#include <vector>

#include "zarn-moon/night/Night.h"
#include "zarn-moon/night/Rows.h"
#include "zarn-moon/settings/Settings.h"

/// One night.
struct NightLine {
    double date;  ///< 0 h of the day that it begins on [MJD]
    std::vector<Event> events;
    Summary summary;
};

struct Report {
    Settings settings;
    std::vector<NightLine> nights;  ///< the one, or as many as asked for; none for an instant
    std::vector<Phase> phases;      ///< the next after the beginning
    std::vector<Row> rows;          ///< of the night or instant; none for several nights
    std::vector<Window> windows;    ///< of each target; empty: not asked for
};

/// @throw UsageError  when the table would be too large
Report makeReport(const Settings& settings);

/// For people, in aligned columns.
std::string tableOf(const Report& report);

/// One row per instant and target, or per night, below a header row. Empty: absent.
std::string csvOf(const Report& report);

/// Everything. Absent values are null.
std::string jsonOf(const Report& report);

#endif  // ZARN_MOON_REPORT_H
