#include <algorithm>

#include "shared/sky/Calendar.h"
#include "zarn-moon/forms/Report.h"
#include "zarn-moon/forms/Texts.h"

namespace zarn::moon {

namespace {

using Cells = std::vector<std::string>;

/// A cell, in quotes if it holds a comma, a quote or the end of a line.
std::string quoted(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string result = "\"";
    for (const char c : text) result.append(c == '"' ? 2 : 1, c);
    return result + '"';
}

std::string lineOf(const Cells& cells) {
    std::string line;
    for (const std::string& cell : cells) line += (line.empty() ? "" : ",") + quoted(cell);
    return line + "\n";
}

/// A truth value as a cell.
std::string word(bool yes) { return yes ? "1" : "0"; }

/// The titles of the targets' further columns, each once.
Cells furtherTitles(const Settings& settings) {
    Cells titles;
    for (const Target& target : settings.targets) {
        for (const auto& [title, text] : target.columns) {
            if (std::find(titles.begin(), titles.end(), title) == titles.end())
                titles.push_back(title);
        }
    }
    return titles;
}

/// A target's texts in the columns of these titles.
Cells furtherCells(const Target& target, const Cells& titles) {
    Cells cells(titles.size());
    for (const auto& [title, text] : target.columns) {
        const auto place = std::find(titles.begin(), titles.end(), title) - titles.begin();
        cells[static_cast<std::size_t>(place)] = asUtf8(text);
    }
    return cells;
}

void append(Cells& cells, const Cells& more) {
    cells.insert(cells.end(), more.begin(), more.end());
}

/// The header row of a table of instants. A further column with the title of another one gets
/// "target_" before it.
Cells instantTitles(const Settings& settings, const Cells& further) {
    Cells titles = {"utc", "mjd"};
    if (settings.local) titles.emplace_back("local");
    const Cells more = {"lst_h",         "sun_alt_deg",  "moon_alt_deg", "moon_az_deg",
                        "illumination",  "phase",        "moon_up",      "target",
                        "ra_deg",        "dec_deg",      "alt_deg",      "airmass",
                        "moon_dist_deg", "moon_sky_mag", "sky_mag",      "best"};
    append(titles, more);
    for (const std::string& title : further) {
        std::string unique = asUtf8(title);
        while (std::find(titles.begin(), titles.end(), unique) != titles.end())
            unique.insert(0, "target_");
        titles.push_back(unique);
    }
    return titles;
}

Cells instantCells(const Settings& settings, const Row& row) {
    Cells cells = {utcSecond(row.mjd), fixed(row.mjd, MJD_DECIMALS)};
    if (settings.local) cells.push_back(localSecond(row.mjd));
    const Cells more = {fixedOnCircle(row.lst, SIDEREAL_DECIMALS, HOURS_PER_DAY),
                        fixed(row.sunAltitude, ANGLE_DECIMALS),
                        fixed(row.moonAltitude, ANGLE_DECIMALS),
                        fixedOnCircle(row.moonAzimuth, ANGLE_DECIMALS, FULL_CIRCLE),
                        fixed(row.illumination, FRACTION_DECIMALS),
                        fixed(row.phase, FRACTION_DECIMALS),
                        word(row.moonUp)};
    append(cells, more);
    return cells;
}

Cells targetCells(const Report& report, const Target& target, const TargetValues& values) {
    return {asUtf8(target.name),
            fixedOnCircle(target.position.ra, POSITION_DECIMALS, FULL_CIRCLE),
            fixed(target.position.dec, POSITION_DECIMALS),
            fixed(values.altitude, ANGLE_DECIMALS),
            fixedOr(values.airmass, FRACTION_DECIMALS, ""),
            fixed(values.moonDistance, SEPARATION_DECIMALS),
            fixedOr(values.moonSky, BRIGHTNESS_DECIMALS, ""),
            fixedOr(values.sky, BRIGHTNESS_DECIMALS, ""),
            report.windows.empty() ? "" : word(values.best)};
}

/// One row per instant and target, or per instant when there is no target.
std::string instants(const Report& report) {
    constexpr std::size_t TARGET_CELLS = 9;
    const Settings& settings = report.settings;
    const Cells further = furtherTitles(settings);
    std::vector<Cells> ends;  // of the targets' rows
    for (const Target& target : settings.targets) ends.push_back(furtherCells(target, further));
    std::string text = lineOf(instantTitles(settings, further));
    for (const Row& row : report.rows) {
        const Cells instant = instantCells(settings, row);
        for (std::size_t i = 0; i < std::max<std::size_t>(1, row.targets.size()); ++i) {
            const Cells target = row.targets.empty()
                                     ? Cells(TARGET_CELLS)
                                     : targetCells(report, settings.targets[i], row.targets[i]);
            Cells cells = instant;
            append(cells, target);
            if (!row.targets.empty()) append(cells, ends[i]);
            text += lineOf(cells);
        }
    }
    return text;
}

/// The times of an event, separated by blanks.
template <typename Form>
std::string timesOf(const Event& event, Form form) {
    std::string times;
    for (const double time : event.times) times += (times.empty() ? "" : " ") + form(time);
    return times;
}

/// The header row of a table of nights.
Cells nightTitles(const Report& report) {
    Cells titles = {"night"};
    for (const Event& event : report.nights.front().events) {
        titles.push_back(keyOf(event.name));
        if (report.settings.local) titles.push_back(keyOf(event.name) + "_local");
    }
    for (const char* title : {"astronomical_hours", "dark_hours", "illumination", "phase", "word",
                              "sun", "twilights", "eclipse", "eclipse_magnitude"})
        titles.emplace_back(title);
    for (const char* contact : CONTACTS) {
        titles.push_back(keyOf(contact));
        if (report.settings.local) titles.push_back(keyOf(contact) + "_local");
    }
    return titles;
}

/// The cells of an eclipse, empty where there is none.
Cells eclipseCells(const std::optional<Eclipse>& eclipse, bool local) {
    Cells cells = {eclipse ? eclipse->kind : "",
                   eclipse ? fixed(eclipse->magnitude, FRACTION_DECIMALS) : ""};
    for (const char* name : CONTACTS) {
        Event event = {name, {}};
        if (eclipse) {
            for (const Contact& contact : eclipse->contacts) {
                if (contact.name == name) event.times.push_back(contact.mjd);
            }
        }
        cells.push_back(timesOf(event, utcMinute));
        if (local) cells.push_back(timesOf(event, localMinute));
    }
    return cells;
}

Cells nightCells(const NightLine& night, bool local) {
    Cells cells = {dateOf(night.date)};
    for (const Event& event : night.events) {
        cells.push_back(timesOf(event, utcMinute));
        if (local) cells.push_back(timesOf(event, localMinute));
    }
    cells.push_back(fixed(night.summary.astronomicalHours, HOURS_DECIMALS));
    cells.push_back(fixed(night.summary.darkHours, HOURS_DECIMALS));
    cells.push_back(fixed(night.summary.illumination, FRACTION_DECIMALS));
    cells.push_back(fixed(night.summary.moonPhase, FRACTION_DECIMALS));
    cells.push_back(night.summary.word);
    cells.push_back(keyOf(night.daylight.course));
    cells.push_back(joined(night.daylight.twilights));
    const Cells eclipse = eclipseCells(night.eclipse, local);
    cells.insert(cells.end(), eclipse.begin(), eclipse.end());
    return cells;
}

/// One row per night.
std::string nights(const Report& report) {
    std::string text = lineOf(nightTitles(report));
    for (const NightLine& night : report.nights)
        text += lineOf(nightCells(night, report.settings.local));
    return text;
}

/// A cell of a window's beginning or end.
template <typename Form>
std::string timeOr(const Window& window, double time, Form form) {
    return window.begin == window.end ? "" : form(time);
}

Cells seasonTitles(bool local) {
    Cells titles = {"night",        "target",       "ra_deg",
                    "dec_deg",      "usable_hours", "dark_equivalent_hours",
                    "window_begin", "window_end",   "window_moon_up",
                    "illumination", "rank"};
    if (local) titles.insert(titles.begin() + 8, {"window_begin_local", "window_end_local"});
    return titles;
}

Cells seasonCells(const NightLine& line, const Target& target, const TargetNight& night,
                  bool local) {
    const Window& window = night.best;
    Cells cells = {dateOf(line.date),
                   target.name,
                   fixedOnCircle(target.position.ra, POSITION_DECIMALS, FULL_CIRCLE),
                   fixed(target.position.dec, POSITION_DECIMALS),
                   fixed(night.usableHours, HOURS_DECIMALS),
                   fixed(night.darkEquivalentHours, WORTH_DECIMALS),
                   timeOr(window, window.begin, utcMinute),
                   timeOr(window, window.end, utcMinute)};
    if (local) {
        cells.push_back(timeOr(window, window.begin, localMinute));
        cells.push_back(timeOr(window, window.end, localMinute));
    }
    cells.push_back(window.begin == window.end ? "" : word(!window.moonDown));
    cells.push_back(fixed(line.summary.illumination, FRACTION_DECIMALS));
    cells.push_back(night.rank == 0 ? "" : std::to_string(night.rank));
    return cells;
}

/// One row per night and target.
std::string seasons(const Report& report) {
    const bool local = report.settings.local;
    std::string text = lineOf(seasonTitles(local));
    for (std::size_t n = 0; n < report.nights.size(); ++n) {
        for (std::size_t i = 0; i < report.seasons.size(); ++i) {
            text += lineOf(seasonCells(report.nights[n], report.settings.targets[i],
                                       report.seasons[i][n], local));
        }
    }
    return text;
}

}  // namespace

std::string csvOf(const Report& report) {
    if (report.settings.nights == 0) return instants(report);
    return report.seasons.empty() ? nights(report) : seasons(report);
}

}  // namespace zarn::moon
