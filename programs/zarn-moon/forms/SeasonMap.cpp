#include "zarn-moon/forms/SeasonMap.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "shared/cli/BeginsWith.h"
#include "shared/cli/Printable.h"
#include "shared/cli/TextStreams.h"
#include "shared/sky/Calendar.h"
#include "zarn-moon/forms/DateAxis.h"
#include "zarn-moon/forms/PlotParts.h"
#include "zarn-moon/forms/Texts.h"
#include "zarn-moon/night/Limits.h"

namespace zarn::moon {

namespace {

/// From so many nights on, a picture has no room for the moon's rise and set.
constexpr unsigned MANY_NIGHTS = 400;

/// The length of a cell: coarser where cells are narrow.
std::size_t minutesPerCell(unsigned nights) {
    constexpr std::size_t FINE = 5;
    constexpr std::size_t COARSE = 20;
    return nights < MANY_NIGHTS ? FINE : COARSE;
}

/// A piece of a night.
struct Cell {
    std::size_t night;
    double mjd;  ///< its middle
    unsigned shade;
    std::optional<double> worth;  ///< of the target, where the limits allow it
};

/// What is drawn of the nights.
struct Map {
    std::vector<Cell> cells;  ///< night by night
    std::string edges;        ///< dates and hours at which the limits begin or end to allow
    double first = SECONDS_PER_DAY * 2.0;  ///< sunset of all nights [s from 0 h of its date]
    double last = 0.0;                     ///< last sunrise, likewise
};

/// Seconds from 0 h of the date that a night begins on.
double clockOf(const Night& night, double mjd) { return (mjd - night.date) * SECONDS_PER_DAY; }

unsigned shadeAt(const Night& night, std::size_t minute) {
    constexpr unsigned WITHOUT_MOON = 0x94A1C2;
    return isDark(night, minute) ? WITHOUT_MOON : shadeOf(night.sunAltitudes[minute]);
}

/// Adds the dates and hours at which the limits begin or end to allow the target.
void addEdges(Map& map, const Night& night, const std::vector<bool>& allowed) {
    for (std::size_t i = 1; i < allowed.size(); ++i) {
        if (allowed[i] == allowed[i - 1]) continue;
        map.edges += dateTic(night.date) + " " + fixed(clockOf(night, night.instants[i]), 0) + "\n";
    }
}

/// Adds a night, and its target if there is one.
void addNight(Map& map, const Settings& settings, const Night& night, std::size_t number) {
    std::vector<bool> allowed(night.instants.size());
    const Ephemeris& ephemeris = ephemerisOf(settings.ephemeris);
    const std::vector<Direction> targets = directionsOfDate(settings, ephemeris, middleOf(night));
    if (!targets.empty())
        allowed = Limits(settings, night).minutesFor(settings.targets[0], targets[0]);
    addEdges(map, night, allowed);
    for (std::size_t i = 0; i < night.instants.size(); ++i) {
        if (night.sunAltitudes[i] >= HORIZON) continue;
        map.first = std::min(map.first, clockOf(night, night.instants[i]));
        map.last = std::max(map.last, clockOf(night, night.instants[i]));
    }
    const std::size_t step = minutesPerCell(settings.nights);
    for (std::size_t i = step / 2; i < night.instants.size(); i += step) {
        Cell cell = {number, night.instants[i], shadeAt(night, i), std::nullopt};
        if (allowed[i]) cell.worth = worthOf(settings, valuesOf(settings, night, i, targets[0]));
        map.cells.push_back(cell);
    }
}

/// The data block of an event's times: date and hour, with an empty line where the curve breaks
/// off.
std::string curveOf(const Report& report, const std::string& name) {
    constexpr double MOST_IN_A_DAY = 10800.0;  // [s]; else the curve came round the noon
    std::string data = "$" + name + " << END\n";
    double before = 0.0;  // [s from 0 h]
    for (const NightLine& night : report.nights) {
        const std::vector<double>& times = timesOf(night.events, name);
        if (times.empty()) data += "\n";
        for (const double time : times) {
            const double clock = (time - night.date) * SECONDS_PER_DAY;
            if (std::fabs(clock - before) > MOST_IN_A_DAY) data += "\n";
            data += dateTic(night.date) + " " + fixed(clock, 0) + "\n";
            before = clock;
        }
    }
    return data + "END\n";
}

/// The hours that are shown [s from 0 h of a night's date].
struct Hours {
    double from;
    double to;
};

/// From half an hour before the first sunset to half an hour after the last sunrise; all of the day
/// if the sun never sets.
Hours shownHours(const Report& report, const Map& map) {
    constexpr double MARGIN = 1800.0;  // [s]
    const double noon = noonOf(report.settings.site, 0.0) * SECONDS_PER_DAY;
    if (map.first >= map.last) return {noon, noon + SECONDS_PER_DAY};
    return {std::max(noon, map.first - MARGIN),
            std::min(noon + SECONDS_PER_DAY, map.last + MARGIN)};
}

/// The data blocks: $map with date, hour, red, green, blue, worth; and the edges.
std::string dataOf(const Report& report, const Map& map, const Hours& hours) {
    constexpr unsigned BYTE = 256;
    TextWriter data;
    data << "$map << END\n";
    for (const auto& [night, mjd, shade, worth] : map.cells) {
        const double date = report.nights[night].date;
        const double clock = (mjd - date) * SECONDS_PER_DAY;
        if (clock < hours.from || clock > hours.to) continue;
        data << dateTic(date) << ' ' << fixed(clock, 0) << ' ' << shade / BYTE / BYTE << ' '
             << shade / BYTE % BYTE << ' ' << shade % BYTE << ' ' << fixedOr(worth, 3, "NaN")
             << '\n';
    }
    data << "END\n$edges << END\n" << map.edges << "END\n";
    return data.str();
}

/// The axis of hours, with a tic at each second one.
std::string hourAxis(const Hours& hours) {
    constexpr int STEP = 2;  // [h]
    constexpr int DAY = 24;  // [h]
    constexpr double HOUR = SECONDS_PER_DAY / HOURS_PER_DAY;
    std::string tics;
    for (int i = static_cast<int>(std::ceil(hours.from / HOUR)); i * HOUR <= hours.to; ++i) {
        if (i % STEP != 0) continue;
        const std::string shown = std::to_string(i % DAY);
        tics += (tics.empty() ? "'" : ", '") + std::string(shown.size() == 1 ? "0" : "") + shown +
                ":00' " + fixed(i * HOUR, 0);
    }
    return "set yrange [" + fixed(hours.from, 0) + ":" + fixed(hours.to, 0) + "]\nset ytics (" +
           tics + ") font ',9'\nset ylabel 'UT'\n";
}

/// The names of the sun's events, where the first night has them.
std::string twilightNames(const Report& report) {
    std::string script;
    const NightLine& night = report.nights.front();
    for (const Event& event : night.events) {
        if (beginsWith(event.name, "moon") || event.times.empty()) continue;
        script += "set label " + quoted(event.name) + " at graph 0, first " +
                  fixed((event.times.front() - night.date) * SECONDS_PER_DAY, 0) +
                  " left offset 0.4,0.3 font ',7' front\n";
    }
    return script;
}

/// A curve above the image, black within white, so that it is seen on every ground.
std::string curve(const std::string& block, const std::string& dashes) {
    const std::string using12 = ", $" + block + " using 1:2 with lines ";
    return using12 + "linewidth 3 linecolor rgb 'white' notitle" + using12 +
           "linewidth 1.5 linecolor rgb 'black' dashtype " + dashes + " title '" + block + "'";
}

}  // namespace

std::string seasonScript(const Report& report) {
    constexpr int HEIGHT = 640;  // [pixels]
    constexpr int LEFT = 80;     // of the panels [pixels]
    constexpr int BELOW = 60;    // them [pixels]
    const Settings& settings = report.settings;
    const Ephemeris& ephemeris = ephemerisOf(settings.ephemeris);
    Map map;
    for (std::size_t i = 0; i < report.nights.size(); ++i)
        addNight(map, settings, makeNight(ephemeris, settings.site, report.nights[i].date), i);
    const Hours hours = shownHours(report, map);
    const std::string what = "ights from " + dateOf(report.nights.front().date);
    const bool target = !settings.targets.empty();
    TextWriter script;
    script << dataOf(report, map, hours) << curveOf(report, "moonrise")
           << curveOf(report, "moonset")
           << beginningOf(report, {HEIGHT, LEFT, BELOW},
                          target ? settings.targets[0].name + ", n" + what : "N" + what)
           << hourAxis(hours) << twilightNames(report)
           << "set cbrange [0:1]\nset cblabel 'worth of an hour: 1 is dark, at the zenith' font "
              "',10'\n"
           << "set key at screen 0.5, screen 0.025 center center horizontal samplen 5 font ',9'\n"
           << "plot $map using 1:2:3:4:5 with rgbimage notitle";
    if (target) {
        script << ", $map using 1:2:6 with image notitle, $edges using 1:2 with points pointtype 7 "
                  "pointsize 0.3 linecolor rgb 'black' notitle, keyentry with points pointtype 7 "
                  "pointsize 0.5 linecolor rgb 'black' title 'limits of the target'";
    }
    if (settings.nights < MANY_NIGHTS) script << curve("moonrise", "1") << curve("moonset", "2");
    script << "\n" << endOf();
    return script.str();
}

}  // namespace zarn::moon
