#include "zarn-moon/forms/PlotScript.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>

#include "shared/cli/BeginsWith.h"
#include "shared/cli/Printable.h"
#include "shared/cli/TextStreams.h"
#include "shared/sky/Calendar.h"
#include "zarn-moon/forms/CurveNames.h"
#include "zarn-moon/forms/PlotParts.h"
#include "zarn-moon/forms/TableParts.h"
#include "zarn-moon/forms/Texts.h"
#include "zarn-moon/night/Limits.h"

namespace zarn::moon {

namespace {

const char MOON_STYLE[] = "linewidth 3 linecolor rgb '#444444' dashtype (4,4)";
constexpr double TOP_ALTITUDE = 90.0;  // of the upper panel [deg]

// Colours that colour-blind people tell apart, too: Okabe & Ito 2008. Each has its own dashes, so
// that the lines differ in grey; the names at the curves tell which is which.
constexpr struct {
    const char* color;
    const char* dashes;
} STYLES[] = {
    {"0072b2", "1"},          {"d55e00", "(14,4)"}, {"009e73", "(2,3)"},
    {"cc79a7", "(14,4,2,4)"}, {"56b4e9", "(6,3)"},  {"e69f00", "(14,4,2,4,2,4)"},
};

/// The style of a target's line. From the seventh target on, lines are thin.
std::string styleOf(std::size_t target) {
    static_assert(MOST_DRAWN_TARGETS <= 2 * std::size(STYLES));
    const auto& [color, dashes] = STYLES[target % std::size(STYLES)];
    return std::string("linewidth ") + (target >= std::size(STYLES) ? "1" : "2.5") +
           " linecolor rgb '#" + color + "' dashtype " + dashes;
}

/// The style of a target's best window, behind its line: broad and pale.
std::string windowStyle(std::size_t target) {
    return std::string("linewidth 11 linecolor rgb '#90") +
           STYLES[target % std::size(STYLES)].color + "'";
}

/// The background: a rectangle for each point, in the color of its twilight.
std::string shades(const std::vector<Row>& rows) {
    TextWriter script;
    const double half = MINUTES_PER_POINT / 2.0 / MINUTES_PER_DAY;
    std::optional<unsigned> color;
    std::string begin;
    const auto close = [&](double mjd) {
        if (!color) return;
        script << "set object rectangle from " << begin << ", graph 0 to " << timeOf(mjd)
               << ", graph 1 behind fillstyle solid noborder fillcolor rgb '#" << std::hex << *color
               << std::dec << "'\n";
    };
    for (const Row& row : rows) {
        const unsigned wanted = shadeOf(row.sunAltitude);
        if (color == wanted) continue;
        close(row.mjd - half);
        color = wanted;
        begin = timeOf(row.mjd - half);
    }
    close(rows.back().mjd);
    return script.str();
}

/// The hours to which the axis has marks: each, or every other if there are many.
std::vector<double> markedHours(const std::vector<Row>& rows) {
    constexpr int MANY = 13;
    const int first = static_cast<int>(std::ceil(rows.front().mjd * HOURS_PER_DAY));
    const int last = static_cast<int>(std::floor(rows.back().mjd * HOURS_PER_DAY));
    std::vector<double> hours;
    for (int hour = first; hour <= last; hour += last - first > MANY ? 2 : 1)
        hours.push_back(hour / HOURS_PER_DAY);
    return hours;
}

/// The axis of times: in UT, and below each mark the local time if that is asked for.
std::string timeAxis(const Settings& settings, const std::vector<Row>& rows) {
    if (!settings.local) return "set format x '%H:%M'\n";
    std::string tics;
    for (const double mjd : markedHours(rows)) {
        tics += (tics.empty() ? "\"" : ", \"") + secondOf(mjd).substr(11, 5) + "\\n" +
                localTime(mjd, "%H:%M") + "\" '" + timeOf(mjd) + "'";
    }
    return "set xtics (" + tics + ")\n";
}

/// What the axis of times is called, with the zones of its beginning and its end.
///
/// @param note  a line below it, or none
std::string timeLabel(const Settings& settings, const std::vector<Row>& rows,
                      const std::string& note) {
    const std::string below = note.empty() ? "" : ".\"\\n\"." + quoted(note);
    if (!settings.local) return "set xlabel 'UT'" + below + "\n";
    const std::string begin = localTime(rows.front().mjd, "%Z");
    const std::string end = localTime(rows.back().mjd, "%Z");
    return "set xlabel " +
           quoted("UT, and local time (" + begin + (end == begin ? "" : ", then " + end) +
                  ") from " + localTime(rows.front().mjd, "%Y-%m-%d")) +
           below + " noenhanced offset 0,-1\nset bmargin " + (note.empty() ? "5" : "6") + "\n";
}

/// The data block: times, the moon's altitude, and each target's altitude, sky brightness and
/// altitude within its best window. NaN leaves a gap in a curve.
std::string data(const std::vector<Row>& rows) {
    TextWriter script;
    script << "$night << END\n";
    for (const Row& row : rows) {
        script << timeOf(row.mjd) << ' ' << fixed(row.moonAltitude, 3);
        for (const TargetValues& values : row.targets) {
            const std::string altitude = fixed(values.altitude, 3);
            script << ' ' << altitude << ' ' << fixedOr(values.sky, 3, "NaN") << ' '
                   << (values.best ? altitude : "NaN");
        }
        script << '\n';
    }
    script << "END\n";
    return script.str();
}

/// The columns of a target's data.
std::size_t altitudeColumn(std::size_t target) { return 3 + 3 * target; }
std::size_t skyColumn(std::size_t target) { return altitudeColumn(target) + 1; }
std::size_t windowColumn(std::size_t target) { return altitudeColumn(target) + 2; }

/// A curve of a plot command: a column of the data against time.
std::string line(std::size_t column, const std::string& style) {
    return "$night using 1:" + std::to_string(column) + " with lines " + style + " notitle";
}

bool isOfMoon(const Event& event) { return beginsWith(event.name, "moon"); }

/// An altitude as a point of the upper panel.
PanelPoint pointOf(const std::vector<Row>& rows, double mjd, double altitude) {
    return {(mjd - rows.front().mjd) / (rows.back().mjd - rows.front().mjd),
            altitude / TOP_ALTITUDE};
}

/// The names of the sun's events, upright at the top of the upper panel.
std::vector<PanelText> sunNames(const NightLine& night, const std::vector<Row>& rows) {
    constexpr double LOWEST = 65.0;  // [deg], as the next
    constexpr double STEP = 4.0;
    constexpr int POINTS = 7;
    constexpr double WIDTH = 0.02;
    std::vector<PanelText> texts;
    for (const Event& event : night.events) {
        if (isOfMoon(event) || event.times.empty()) continue;
        for (int i = 0; i < POINTS; ++i)
            texts.push_back({WIDTH, pointOf(rows, event.times.front(), LOWEST + i * STEP)});
    }
    return texts;
}

/// The names of moon and targets, at their curves.
std::string names(const Report& report, const std::vector<Row>& rows) {
    constexpr double CHARACTER = 0.0105;  // of the panel's width
    std::vector<std::string> names = {"moon"};
    for (const Target& target : report.settings.targets) names.push_back(target.name);
    std::vector<NamedCurve> curves;
    for (std::size_t i = 0; i < names.size(); ++i) {
        curves.push_back({CHARACTER * static_cast<double>(names[i].size()), {}});
        for (const Row& row : rows) {
            const double altitude = i == 0 ? row.moonAltitude : row.targets[i - 1].altitude;
            curves[i].points.push_back(pointOf(rows, row.mjd, altitude));
        }
    }
    const auto places = namePlaces(curves, sunNames(report.nights.front(), rows));
    std::string script;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (!places[i]) continue;
        script += "set label " + quoted(names[i]) + " at graph " + fixed(places[i]->x, 3) +
                  ", graph " + fixed(places[i]->y, 3) + " center offset 0,0.6 noenhanced front\n";
    }
    return script;
}

/// Lines at what the sun does, and its names at the top of the upper panel.
std::string sunLines(const NightLine& night, const std::vector<Row>& rows) {
    std::string script;
    for (const Event& event : night.events) {
        if (isOfMoon(event)) continue;
        for (const double time : event.times) {
            if (time > rows.back().mjd) continue;  // after the last point
            script += "set arrow from " + timeOf(time) + ", graph 0 to " + timeOf(time) +
                      ", graph 1 nohead linewidth 0.7 linecolor rgb '#707070'\nset label " +
                      quoted(event.name) + " at " + timeOf(time) +
                      ", graph 0.98 right rotate by 90 offset 0.6,0 font ',8'\n";
        }
    }
    return script;
}

/// The least altitude, where it is the same for all targets.
std::string minimumAltitude(const Settings& settings) {
    if (settings.targets.empty()) return "";
    const double least = leastAltitudeOf(settings, settings.targets.front());
    const bool isCommon = std::all_of(
        settings.targets.begin(), settings.targets.end(),
        [&](const Target& target) { return leastAltitudeOf(settings, target) == least; });
    if (!isCommon || least == 0.0) return "";
    const std::string altitude = fixed(least, 1);
    return "set arrow from graph 0, first " + altitude + " to graph 1, first " + altitude +
           " nohead linewidth 1.5 linecolor rgb 'black' dashtype (2,4)\n"
           "set label 'minimum altitude' at graph 0.99, first " +
           altitude + " right offset 0,0.5 font ',8'\n";
}

/// The upper panel.
std::string altitudes(const Report& report) {
    const Settings& settings = report.settings;
    std::string script = "set ylabel 'altitude [degrees]'\nset yrange [0:90]\nset ytics 15\nplot ";
    if (hasLimits(settings)) {
        for (std::size_t i = 0; i < settings.targets.size(); ++i)
            script += line(windowColumn(i), windowStyle(i)) + ", ";
        script += "NaN with lines linewidth 11 linecolor rgb '#90606060' title 'best window', ";
    }
    script += line(2, MOON_STYLE);
    for (std::size_t i = 0; i < settings.targets.size(); ++i)
        script += ", " + line(altitudeColumn(i), styleOf(i));
    return script + "\n";
}

/// The brightest sky at the targets [mag per square arc second], if there is any in the dark.
std::optional<double> brightestSky(const std::vector<Row>& rows) {
    std::optional<double> brightest;
    for (const Row& row : rows) {
        for (const TargetValues& values : row.targets) {
            if (values.sky) brightest = std::min(*values.sky, brightest.value_or(*values.sky));
        }
    }
    return brightest;
}

/// The lower panel. Its scale is upside down, as magnitudes are: darker is lower.
std::string brightness(const Settings& settings, double brightest) {
    constexpr double MARGIN = 0.3;  // [mag]
    std::string script =
        "unset label\nset ylabel 'sky [mag arcsec^{-2}], darker below'\nset ytics auto\n"
        "unset key\nset yrange [" +
        fixed(settings.darkSky + MARGIN, 2) + ":" +
        fixed(std::min(brightest, settings.darkSky - 1.0) - MARGIN, 2) + "]\nplot ";
    for (std::size_t i = 0; i < settings.targets.size(); ++i)
        script += (i > 0 ? ", " : "") + line(skyColumn(i), styleOf(i));
    return script + "\n";
}

}  // namespace

std::string scriptOf(const Report& report, const std::vector<Row>& rows) {
    constexpr int WIDTH = 900;  // [pixels]
    constexpr int PANEL = 450;  // [pixels]
    constexpr int BOTH = 800;   // [pixels]
    const Settings& settings = report.settings;
    const Summary& summary = report.nights.front().summary;
    const std::optional<double> brightest = brightestSky(rows);
    std::string script = terminalOf(settings, WIDTH, brightest ? BOTH : PANEL);
    script += data(rows) + shades(rows);
    script += "set xdata time\nset timefmt '%s'\n" + timeAxis(settings, rows) +
              "set grid\nset xrange [" + timeOf(rows.front().mjd) + ":" + timeOf(rows.back().mjd) +
              "]\nset key outside top center horizontal\nset lmargin 9\nset rmargin 3\n";
    const std::string title = "Night of " + dateOf(settings.date) + " at " + settings.site.name +
                              " (" + coordinates(settings.site) + "): moon " +
                              percent(summary.illumination, 0) + " % lit, " + summary.word;
    script +=
        sunLines(report.nights.front(), rows) + minimumAltitude(settings) + names(report, rows);
    if (brightest) {
        return script + "set multiplot layout 2,1 title " + quoted(title) + " noenhanced\n" +
               altitudes(report) + timeLabel(settings, rows, "") +
               brightness(settings, *brightest) + "unset multiplot\n";
    }
    const char* const note = settings.targets.empty()
                                 ? ""
                                 : "The sky at the targets is not drawn: none is up while the "
                                   "sun is below -18 degrees.";
    return script + timeLabel(settings, rows, note) + "set title " + quoted(title) +
           " noenhanced\n" + altitudes(report);
}

}  // namespace zarn::moon
