#include "zarn-moon/forms/PlotScript.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "shared/cli/Printable.h"
#include "shared/cli/TextStreams.h"
#include "shared/sky/Calendar.h"
#include "zarn-moon/forms/Texts.h"

namespace zarn::moon {

namespace {

const char MOON_STYLE[] = "linewidth 3 linecolor rgb '#444444' dashtype 2";

// The background, from day to night.
constexpr struct {
    double sunAltitude;  // below this one
    const char* color;
} SHADES[] = {
    {90.0, "#fdf6e3"},
    {HORIZON, "#eceff6"},
    {CIVIL_TWILIGHT, "#dde2ee"},
    {NAUTICAL_TWILIGHT, "#ced5e5"},
    {ASTRONOMICAL_TWILIGHT, "#c0c9dd"},
};

// Colours that colour-blind people tell apart, too: Okabe & Ito 2008.
constexpr const char* COLORS[] = {"#0072b2", "#d55e00", "#009e73", "#cc79a7", "#56b4e9", "#e69f00"};

/// The style of a target's line. There are six colours; from the seventh target on, lines are
/// dotted.
std::string styleOf(std::size_t target) {
    static_assert(MOST_DRAWN_TARGETS <= 2 * std::size(COLORS));
    const bool dotted = target >= std::size(COLORS);
    return std::string("linewidth 2 linecolor rgb '") + COLORS[target % std::size(COLORS)] + "'" +
           (dotted ? " dashtype 3" : "");
}

/// A text as a quoted string for gnuplot.
std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : printable(text)) result.append(c == '\'' ? 2 : 1, c);
    return result + "'";
}

/// A time for gnuplot: seconds since 1970.
std::string timeOf(double mjd) { return fixed((mjd - MJD_OF_EPOCH) * SECONDS_PER_DAY, 0); }

/// The background: a rectangle for each point, in the color of its twilight.
std::string shades(const std::vector<Row>& rows) {
    TextWriter script;
    const double half = MINUTES_PER_POINT / 2.0 / MINUTES_PER_DAY;
    std::string color;
    std::string begin;
    const auto close = [&](double mjd) {
        if (color.empty()) return;
        script << "set object rectangle from " << begin << ", graph 0 to " << timeOf(mjd)
               << ", graph 1 behind fillstyle solid noborder fillcolor rgb '" << color << "'\n";
    };
    for (const Row& row : rows) {
        std::string wanted;
        for (const auto& [altitude, shade] : SHADES) {
            if (row.sunAltitude < altitude) wanted = shade;
        }
        if (wanted == color) continue;
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
std::string timeLabel(const Settings& settings, const std::vector<Row>& rows) {
    if (!settings.local) return "set xlabel 'UT'\n";
    const std::string begin = localTime(rows.front().mjd, "%Z");
    const std::string end = localTime(rows.back().mjd, "%Z");
    return "set xlabel " +
           quoted("UT, and local time (" + begin + (end == begin ? "" : ", then " + end) +
                  ") from " + localTime(rows.front().mjd, "%Y-%m-%d")) +
           " noenhanced offset 0,-1\nset bmargin 5\n";
}

/// The data block: times, the moon's altitude, and each target's altitude and sky brightness. NaN
/// leaves a gap in a curve.
std::string data(const std::vector<Row>& rows) {
    TextWriter script;
    script << "$night << END\n";
    for (const Row& row : rows) {
        script << timeOf(row.mjd) << ' ' << fixed(row.moonAltitude, 3);
        for (const TargetValues& values : row.targets)
            script << ' ' << fixed(values.altitude, 3) << ' ' << fixedOr(values.sky, 3, "NaN");
        script << '\n';
    }
    script << "END\n";
    return script.str();
}

/// A curve of a plot command: a column of the data against time.
std::string line(std::size_t column, const std::string& style, const std::string& title) {
    return "$night using 1:" + std::to_string(column) + " with lines " + style + " " + title;
}

/// The upper plot.
std::string altitudes(const Settings& settings) {
    std::string script = "set ylabel 'altitude [degrees]'\nset yrange [0:90]\nset ytics 15\nplot " +
                         line(2, MOON_STYLE, "title 'moon'");
    for (std::size_t i = 0; i < settings.targets.size(); ++i)
        script += ", " + line(3 + 2 * i, styleOf(i),
                              "title " + quoted(settings.targets[i].name) + " noenhanced");
    return script + "\n";
}

/// The lower plot. Its scale is upside down, as magnitudes are: darker is lower.
std::string brightness(const Settings& settings, const std::vector<Row>& rows) {
    constexpr double MARGIN = 0.3;  // [mag]
    double brightest = settings.darkSky - 1.0;
    for (const Row& row : rows) {
        for (const TargetValues& values : row.targets)
            brightest = std::min(brightest, values.sky.value_or(brightest));
    }
    std::string script =
        "set ylabel 'sky [mag/arcsec^2], darker below' noenhanced\nset ytics auto\n"
        "unset key\nset yrange [" +
        fixed(settings.darkSky + MARGIN, 2) + ":" + fixed(brightest - MARGIN, 2) + "]\nplot ";
    for (std::size_t i = 0; i < settings.targets.size(); ++i)
        script += (i > 0 ? ", " : "") + line(4 + 2 * i, styleOf(i), "notitle");
    return script + "\n";
}

}  // namespace

bool isSvg(const Settings& settings) {
    return settings.plot.rfind(".svg") == settings.plot.size() - std::string(".svg").size();
}

std::string scriptOf(const Settings& settings, const std::vector<Row>& rows,
                     const Summary& summary) {
    const bool sky = !settings.targets.empty();
    std::string script = std::string("set terminal ") + (isSvg(settings) ? "svg" : "pngcairo") +
                         " size 900," + (sky ? "800" : "450") + " background 'white'\n";
    script += data(rows) + shades(rows);
    script += "set xdata time\nset timefmt '%s'\n" + timeAxis(settings, rows) +
              "set grid\nset xrange [" + timeOf(rows.front().mjd) + ":" + timeOf(rows.back().mjd) +
              "]\nset key outside top center horizontal\nset lmargin 9\nset rmargin 3\n";
    const std::string title = "Night of " + dateOf(settings.date) + " at " + settings.site.name +
                              " (" + coordinates(settings.site) + "): moon " +
                              fixed(100.0 * summary.illumination, 0) + " % lit, " + summary.word;
    if (!sky)
        return script + timeLabel(settings, rows) + "set title " + quoted(title) + " noenhanced\n" +
               altitudes(settings);
    return script + "set multiplot layout 2,1 title " + quoted(title) + " noenhanced\n" +
           altitudes(settings) + timeLabel(settings, rows) + brightness(settings, rows) +
           "unset multiplot\n";
}

}  // namespace zarn::moon
