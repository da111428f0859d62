#include <algorithm>

#include "shared/sky/Calendar.h"
#include "zarn-moon/forms/Report.h"
#include "zarn-moon/forms/Texts.h"

namespace {

constexpr int ANGLE = 4;       // decimals of degrees,
constexpr int HOUR = 5;        // of hours,
constexpr int BRIGHTNESS = 3;  // of magnitudes,
constexpr int FRACTION = 4;    // and of the rest
constexpr int DAY = 6;         // [d]

constexpr const char* LOCAL_MINUTE = "%Y-%m-%dT%H:%M%z";

using Cells = std::vector<std::string>;

/// A cell in quotes where commas or quotes in it would mislead.
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

std::string word(bool yes) { return yes ? "1" : "0"; }

Cells instantTitles(const Settings& settings) {
    Cells titles = {"utc", "mjd"};
    if (settings.local) titles.emplace_back("local");
    const Cells more = {"lst_h",         "sun_alt_deg",  "moon_alt_deg", "moon_az_deg",
                        "illumination",  "phase",        "moon_up",      "target",
                        "ra_deg",        "dec_deg",      "alt_deg",      "airmass",
                        "moon_dist_deg", "moon_sky_mag", "sky_mag",      "best"};
    titles.insert(titles.end(), more.begin(), more.end());
    return titles;
}

Cells instantCells(const Settings& settings, const Row& row) {
    Cells cells = {secondOf(row.mjd) + "Z", fixed(row.mjd, DAY)};
    if (settings.local) cells.push_back(localTime(row.mjd, "%Y-%m-%dT%H:%M:%S%z"));
    const Cells more = {fixedOnCircle(row.lst, HOUR, 24.0),
                        fixed(row.sunAltitude, ANGLE),
                        fixed(row.moonAltitude, ANGLE),
                        fixedOnCircle(row.moonAzimuth, ANGLE, 360.0),
                        fixed(row.illumination, FRACTION),
                        fixed(row.phase, FRACTION),
                        word(row.moonUp)};
    cells.insert(cells.end(), more.begin(), more.end());
    return cells;
}

Cells targetCells(const Report& report, const Target& target, const TargetValues& values) {
    return {target.name,
            fixedOnCircle(target.place.ra, ANGLE, 360.0),
            fixed(target.place.dec, ANGLE),
            fixed(values.altitude, ANGLE),
            fixedOr(values.airmass, FRACTION, ""),
            fixed(values.moonDistance, ANGLE),
            fixedOr(values.moonSky, BRIGHTNESS, ""),
            fixedOr(values.sky, BRIGHTNESS, ""),
            report.windows.empty() ? "" : word(values.best)};
}

std::string instants(const Report& report) {
    constexpr std::size_t TARGET_CELLS = 9;
    const Settings& settings = report.settings;
    std::string text = lineOf(instantTitles(settings));
    for (const Row& row : report.rows) {
        const Cells instant = instantCells(settings, row);
        for (std::size_t i = 0; i < std::max<std::size_t>(1, row.targets.size()); ++i) {
            const Cells target = row.targets.empty()
                                     ? Cells(TARGET_CELLS)
                                     : targetCells(report, settings.targets[i], row.targets[i]);
            Cells cells = instant;
            cells.insert(cells.end(), target.begin(), target.end());
            text += lineOf(cells);
        }
    }
    return text;
}

/// The times of an event, with blanks between them.
template <typename Form>
std::string timesOf(const Event& event, Form form) {
    std::string times;
    for (const double time : event.times) times += (times.empty() ? "" : " ") + form(time);
    return times;
}

Cells nightTitles(const Report& report) {
    Cells titles = {"night"};
    for (const Event& event : report.nights.front().events) {
        titles.push_back(keyOf(event.name));
        if (report.settings.local) titles.push_back(keyOf(event.name) + "_local");
    }
    for (const char* title : {"astronomical_hours", "dark_hours", "illumination", "phase", "word"})
        titles.emplace_back(title);
    return titles;
}

Cells nightCells(const NightLine& night, bool local) {
    const auto utc = [](double mjd) { return minuteOf(mjd) + "Z"; };
    const auto here = [](double mjd) { return localTime(nearestMinute(mjd), LOCAL_MINUTE); };
    Cells cells = {dateOf(night.date)};
    for (const Event& event : night.events) {
        cells.push_back(timesOf(event, utc));
        if (local) cells.push_back(timesOf(event, here));
    }
    cells.push_back(fixed(night.summary.astronomicalHours, 2));
    cells.push_back(fixed(night.summary.darkHours, 2));
    cells.push_back(fixed(night.summary.illumination, FRACTION));
    cells.push_back(fixed(night.summary.moonPhase, FRACTION));
    cells.push_back(night.summary.word);
    return cells;
}

std::string nights(const Report& report) {
    std::string text = lineOf(nightTitles(report));
    for (const NightLine& night : report.nights)
        text += lineOf(nightCells(night, report.settings.local));
    return text;
}

}  // namespace

std::string csvOf(const Report& report) {
    return report.settings.nights > 0 ? nights(report) : instants(report);
}
