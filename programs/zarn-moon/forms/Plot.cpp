#include "zarn-moon/forms/Plot.h"

#include <algorithm>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "shared/cli/Printable.h"
#include "shared/sky/Calendar.h"
#include "zarn-moon/forms/Gnuplot.h"
#include "zarn-moon/forms/Texts.h"
#include "zarn-moon/night/Night.h"
#include "zarn-moon/night/Rows.h"

namespace {

constexpr double STEP = 4.0;  // between the points of a line [minutes]
const char MOON_STYLE[] = "linewidth 3 linecolor rgb '#444444' dashtype 2";

// From day to night.
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

// Told apart with any eyes: Okabe & Ito 2008.
constexpr const char* COLORS[] = {"#0072b2", "#d55e00", "#009e73", "#cc79a7", "#56b4e9", "#e69f00"};

/// How a target's line is drawn: the second six are dotted.
std::string styleOf(std::size_t target) {
    static_assert(MOST_DRAWN_TARGETS <= 2 * std::size(COLORS));
    const bool dotted = target >= std::size(COLORS);
    return std::string("linewidth 2 linecolor rgb '") + COLORS[target % std::size(COLORS)] + "'" +
           (dotted ? " dashtype 3" : "");
}

bool isSvg(const Settings& settings) {
    return settings.plot.rfind(".svg") == settings.plot.size() - std::string(".svg").size();
}

/// A text as gnuplot reads it.
std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : printable(text)) result.append(c == '\'' ? 2 : 1, c);
    return result + "'";
}

/// Seconds since 1970, gnuplot's times.
std::string timeOf(double mjd) { return fixed((mjd - MJD_OF_EPOCH) * SECONDS_PER_DAY, 0); }

/// The instants to draw: from half an hour before sunset to half an hour after sunrise.
std::vector<MJD_DATE> instantsToDraw(const Night& night) {
    constexpr std::size_t MARGIN = 30;  // [minutes]
    const auto isDark = [](double altitude) { return altitude < HORIZON; };
    const auto& sun = night.sunAltitudes;
    const auto first =
        static_cast<std::size_t>(std::find_if(sun.begin(), sun.end(), isDark) - sun.begin());
    const auto last =
        sun.size() -
        static_cast<std::size_t>(std::find_if(sun.rbegin(), sun.rend(), isDark) - sun.rbegin());
    const bool never = first >= last;
    const std::size_t begin = never || first < MARGIN ? 0 : first - MARGIN;
    const std::size_t end = never ? sun.size() : std::min(sun.size(), last + MARGIN);
    std::vector<MJD_DATE> instants;
    for (std::size_t i = begin; i < end; i += static_cast<std::size_t>(STEP))
        instants.push_back(night.minutes[i]);
    return instants;
}

/// The background: a rectangle for each point, in the color of its twilight.
std::string shades(const std::vector<Row>& rows) {
    std::ostringstream script;
    const double half = STEP / 2.0 / MINUTES_PER_DAY;
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

/// Times, the moon's altitude, and altitude and sky brightness of every target; NaN leaves a gap.
std::string data(const std::vector<Row>& rows) {
    std::ostringstream script;
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

std::string line(std::size_t column, const std::string& style, const std::string& title) {
    return "$night using 1:" + std::to_string(column) + " with lines " + style + " " + title;
}

std::string altitudes(const Settings& settings) {
    std::string script = "set ylabel 'altitude [degrees]'\nset yrange [0:90]\nset ytics 15\nplot " +
                         line(2, MOON_STYLE, "title 'moon'");
    for (std::size_t i = 0; i < settings.targets.size(); ++i)
        script += ", " + line(3 + 2 * i, styleOf(i),
                              "title " + quoted(settings.targets[i].name) + " noenhanced");
    return script + "\n";
}

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

std::string scriptOf(const Settings& settings, const std::vector<Row>& rows,
                     const Summary& summary) {
    const bool sky = !settings.targets.empty();
    std::string script = std::string("set terminal ") + (isSvg(settings) ? "svg" : "pngcairo") +
                         " size 900," + (sky ? "800" : "450") + " background 'white'\n";
    script += data(rows) + shades(rows);
    script +=
        "set xdata time\nset timefmt '%s'\nset format x '%H:%M'\nset grid\n"
        "set xrange [" +
        timeOf(rows.front().mjd) + ":" + timeOf(rows.back().mjd) +
        "]\nset key outside top center horizontal\nset lmargin 9\nset rmargin 3\n";
    const std::string title = "Night of " + dateOf(settings.date) + " at " + settings.site.name +
                              " (" + coordinates(settings.site) + "): moon " +
                              fixed(100.0 * summary.illumination, 0) + " % lit, " + summary.word;
    if (!sky)
        return script + "set xlabel 'UT'\nset title " + quoted(title) + " noenhanced\n" +
               altitudes(settings);
    return script + "set multiplot layout 2,1 title " + quoted(title) + " noenhanced\n" +
           altitudes(settings) + "set xlabel 'UT'\n" + brightness(settings, rows) +
           "unset multiplot\n";
}

}  // namespace

std::string drawNight(const Settings& settings) {
    const Night night = makeNight(settings.site, settings.date);
    const std::vector<SkyPosition> places =
        placesOfDate(settings, night.minutes[night.minutes.size() / 2]);
    const std::vector<Row> rows = makeRows(settings, instantsToDraw(night), places, {});
    std::string picture = runGnuplot(scriptOf(settings, rows, summaryOf(night)));
    const bool whole = picture.find(isSvg(settings) ? "</svg>" : "IEND") != std::string::npos;
    if (!whole) throw std::runtime_error("gnuplot drew no whole picture");
    return picture;
}
