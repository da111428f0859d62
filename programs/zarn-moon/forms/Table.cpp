#include <cmath>
#include <iomanip>

#include "shared/cli/Printable.h"
#include "shared/cli/TextStreams.h"
#include "shared/sky/Calendar.h"
#include "zarn-moon/forms/Columns.h"
#include "zarn-moon/forms/Report.h"
#include "zarn-moon/forms/TableParts.h"
#include "zarn-moon/forms/Texts.h"

namespace zarn::moon {

namespace {

const std::size_t DATE_LENGTH = std::string("YYYY-MM-DDT").size();

std::string timesText(const std::vector<double>& times, bool local, const std::string& absent) {
    std::string text;
    for (const double time : times) text += (text.empty() ? "" : " and ") + timeText(time, local);
    return text.empty() ? absent : text;
}

bool isWholeMinutes(const Settings& settings) {
    return !settings.mjd && settings.step == std::floor(settings.step);
}

/// A sidereal time as hh:mm, cut to the minute.
std::string hoursAndMinutes(double hours) {
    constexpr int MINUTES = 60;
    const int minutes = static_cast<int>(hours * MINUTES);  // 24:00 is never reached
    TextWriter text;
    text << std::setfill('0') << std::setw(2) << minutes / MINUTES << ':' << std::setw(2)
         << minutes % MINUTES;
    return text.str();
}

/// The cells that begin a row: its time, and the local time if that is asked for.
std::vector<std::string> timeCells(double mjd, const Settings& settings) {
    const bool minutes = isWholeMinutes(settings);
    const std::string time = minutes ? clockText(mjd) : secondOf(mjd).substr(DATE_LENGTH);
    std::vector<std::string> cells = {time};
    if (settings.local) cells.push_back(localClock(mjd, minutes ? "%H:%M" : "%H:%M:%S"));
    return cells;
}

void append(std::vector<std::string>& cells, const std::vector<std::string>& more) {
    cells.insert(cells.end(), more.begin(), more.end());
}

std::vector<std::string> titles(const Settings& settings, const std::vector<std::string>& others) {
    std::vector<std::string> cells;
    cells.emplace_back("UT");
    if (settings.local) cells.emplace_back("local");
    append(cells, others);
    return cells;
}

/// The table of sun and moon.
std::string skyTable(const Report& report) {
    Columns columns;
    columns.add(titles(report.settings, {"LST", "sun alt", "moon alt", "moon az", "lit", "phase"}));
    for (const Row& row : report.rows) {
        std::vector<std::string> cells = timeCells(row.mjd, report.settings);
        append(cells, {hoursAndMinutes(row.lst), fixed(row.sunAltitude, 1),
                       fixed(row.moonAltitude, 1), fixedOnCircle(row.moonAzimuth, 1, FULL_CIRCLE),
                       fixed(row.illumination, 3), fixed(row.phase, 3)});
        columns.add(cells);
    }
    return columns.text();
}

std::string moonSkyText(const Row& row, const TargetValues& values) {
    if (!values.airmass) return "target down";
    return row.moonUp ? fixedOr(values.moonSky, 2, "none") : "moon down";
}

std::string skyText(const Row& row, const TargetValues& values) {
    if (!values.airmass) return "target down";
    return fixedOr(values.sky, 2, row.sunAltitude < HORIZON ? "twilight" : "daylight");
}

/// A window's local times.
std::string localSpan(const Window& window) {
    return localClock(nearestMinute(window.begin), "%H:%M") + " to " +
           localClock(nearestMinute(window.end), "%H:%M %Z");
}

std::string windowText(const Settings& settings, const Target& target, const Window& window) {
    const std::string what = "best window" + limitsText(settings, target) + ": ";
    if (window.begin == window.end) return what + "none";
    return what + clockText(window.begin) + " to " + clockText(window.end) + " UT" +
           (settings.local ? " (" + localSpan(window) + ")" : "") + ", moon " +
           (window.moonDown ? "down" : "up") + " (marked *)";
}

/// The table of one target.
std::string targetTable(const Report& report, std::size_t target) {
    const Settings& settings = report.settings;
    Columns columns;
    columns.add(titles(settings, {"alt", "airmass", "moon dist", "moon sky", "sky"}));
    for (const Row& row : report.rows) {
        const TargetValues& values = row.targets[target];
        std::vector<std::string> cells = timeCells(row.mjd, settings);
        append(cells,
               {fixed(values.altitude, 1), fixedOr(values.airmass, 2, "-"),
                fixed(values.moonDistance, 1), moonSkyText(row, values), skyText(row, values)});
        if (!report.windows.empty()) cells.emplace_back(values.best ? "*" : "");
        columns.add(cells);
    }
    return columns.text();
}

/// "total eclipse of the moon, magnitude 1.36:" and a line for each contact.
std::string eclipseText(const Eclipse& eclipse, bool local) {
    TextWriter text;
    text << eclipse.kind << " eclipse of the moon";
    if (eclipse.magnitude > 0.0) text << ", magnitude " << fixed(eclipse.magnitude, 2);
    text << ":\n";
    for (const auto& [name, mjd, moonUp] : eclipse.contacts) {
        text << "  " << std::left << std::setw(19) << name << timeText(mjd, local)
             << (moonUp ? "" : ", moon down") << '\n';
    }
    return text.str();
}

/// What is said of a day on which the sun neither rises nor sets; else nothing.
std::string polarText(const Daylight& daylight) {
    if (daylight.course == SunCourse::SETS) return "";
    if (daylight.course == SunCourse::UP) return "The sun stays up all day.\n";
    const std::string twilight = daylight.twilights.empty()
                                     ? "without twilight"
                                     : "with " + daylight.twilights.front() + " twilight at best";
    return "The sun stays below the horizon all day, " + twilight + ".\n";
}

std::string nightText(const Report& report) {
    const Settings& settings = report.settings;
    const auto& [date, events, summary, daylight, eclipse] = report.nights.front();
    TextWriter text;
    text << "Night of " << dateOf(date) << " at " << settings.site.name << " ("
         << coordinates(settings.site) << "), times in UT, to the nearest minute\n\n";
    for (const Event& event : events) {
        text << "  " << std::left << std::setw(19) << event.name
             << timesText(event.times, settings.local, "none in this night") << '\n';
    }
    text << '\n'
         << polarText(daylight) << "A " << summary.word << " night: the moon is "
         << percent(summary.illumination, 0) << " % lit (phase " << fixed(summary.moonPhase, 3)
         << ");\n"
         << fixed(summary.darkHours, 1) << " of " << fixed(summary.astronomicalHours, 1)
         << " hours with the sun below -18 degrees are without moon.\n";
    if (eclipse) text << "\nThere is a " << eclipseText(*eclipse, settings.local);
    return text.str();
}

std::string instantText(const Report& report) {
    const Settings& settings = report.settings;
    return "MJD " + fixed(*settings.mjd, 5) + ", " + timeText(*settings.mjd, settings.local) +
           " UT at " + settings.site.name + " (" + coordinates(settings.site) + ")\n";
}

std::string polarWords(SunCourse course) {
    return course == SunCourse::SETS ? "" : "sun " + keyOf(course) + " all day";
}

/// One line per night.
std::string nightsTable(const Report& report) {
    const bool local = report.settings.local;
    Columns columns;
    columns.add({"night", "dark hours", "moonrise", "moonset", "lit", "", ""});
    for (const auto& [date, events, summary, daylight, eclipse] : report.nights) {
        const auto times = [&inNight = events, local](const std::string& name) {
            return timesText(timesOf(inNight, name), local, "none");
        };
        columns.add({dateOf(date), fixed(summary.darkHours, 1), times("moonrise"), times("moonset"),
                     percent(summary.illumination, 0) + " %", summary.word,
                     polarWords(daylight.course)});
    }
    return columns.text();
}

/// The eclipses of many nights, nothing if there is none.
std::string eclipsesText(const Report& report) {
    std::string text;
    for (const NightLine& night : report.nights) {
        if (night.eclipse)
            text += "\nNight of " + dateOf(night.date) + ": " +
                    eclipseText(*night.eclipse, report.settings.local);
    }
    return text;
}

/// Why a night's table has no row.
std::string emptyTableText(SunCourse course) {
    return course == SunCourse::UP ? "The sun does not set: no table.\n"
                                   : "No step falls between sunset and sunrise: no table.\n";
}

}  // namespace

std::string timeText(double mjd, bool local) {
    std::string text = minuteOf(mjd);
    text.replace(text.find('T'), 1, " ");
    return local ? text + " (" + localClock(nearestMinute(mjd), "%H:%M %Z") + ")" : text;
}

std::string clockText(double mjd) { return minuteOf(mjd).substr(DATE_LENGTH); }

std::string targetTitle(const Settings& settings, const Target& target) {
    const std::string position =
        fixedOnCircle(target.position.ra, 4, FULL_CIRCLE) + " " + fixed(target.position.dec, 4);
    return "Target " + printable(target.name) + ": " + position + " degrees, equinox " +
           (settings.equinox == Equinox::OF_DATE ? "of date" : "J2000");
}

std::string phasesText(const Report& report) {
    std::string text = "Next phases:\n";
    for (const Phase& phase : report.phases) {
        TextWriter line;
        line << "  " << std::left << std::setw(19) << phase.name
             << timeText(phase.mjd, report.settings.local) << '\n';
        text += line.str();
    }
    return text;
}

std::string limitsText(const Settings& settings, const Target& target) {
    std::string text;
    const auto add = [&text](const std::string& before, const std::optional<double>& limit,
                             int decimals, const std::string& after) {
        if (limit) text += ", " + before + fixed(*limit, decimals) + after;
    };
    if (limitsAltitudes(settings))
        add("at least ", leastAltitudeOf(settings, target), 1, " degrees high");
    add("airmass at most ", settings.maxAirmass, 2, "");
    add("at least ", settings.minMoonDistance, 1, " degrees from the moon");
    if (settings.moonAvoidance) {
        add("at least ", settings.moonAvoidance->degrees, 1, " degrees from the full moon");
        add("half of that ", settings.moonAvoidance->days, 1, " days from full moon");
    }
    add("sky no brighter than ", settings.maxSky, 2, "");
    add("sun below ", settings.sunAltitude, 1, " degrees");
    return text;
}

std::string tableOf(const Report& report) {
    const Settings& settings = report.settings;
    if (settings.nights > 0) {
        return settings.site.name + " (" + coordinates(settings.site) +
               "), times in UT, to the nearest minute\n\n" +
               (settings.targets.empty() ? nightsTable(report) : semesterTable(report)) +
               eclipsesText(report) + "\n" + phasesText(report);
    }
    std::string text = settings.mjd ? instantText(report) : nightText(report);
    text += "\n" + phasesText(report) + "\n";
    if (report.rows.empty()) return text + emptyTableText(report.nights.front().daylight.course);
    text += skyTable(report);
    for (std::size_t i = 0; i < settings.targets.size(); ++i) {
        text += "\n" + targetTitle(settings, settings.targets[i]) + "\n";
        if (!report.windows.empty())
            text += windowText(settings, settings.targets[i], report.windows[i]) + "\n";
        text += targetTable(report, i);
    }
    return text;
}

}  // namespace zarn::moon
