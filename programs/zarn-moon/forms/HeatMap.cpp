#include "zarn-moon/forms/HeatMap.h"

#include <algorithm>
#include <cmath>

#include "shared/cli/Printable.h"
#include "shared/cli/TextStreams.h"
#include "shared/sky/Calendar.h"
#include "zarn-moon/forms/DateAxis.h"
#include "zarn-moon/forms/PlotParts.h"
#include "zarn-moon/forms/Texts.h"

namespace zarn::moon {

namespace {

constexpr std::size_t LONGEST_LABEL = 24;  // [characters]

/// A name short enough for the axis; cut between characters.
std::string labelOf(const Target& target) {
    constexpr unsigned FIRST_BITS = 0xC0;
    constexpr unsigned CONTINUATION = 0x80;
    std::string label = printable(target.name);
    if (label.size() <= LONGEST_LABEL) return label;
    std::size_t end = LONGEST_LABEL - 2;
    while ((static_cast<unsigned char>(label[end]) & FIRST_BITS) == CONTINUATION) --end;
    return label.substr(0, end) + "..";
}

constexpr std::size_t ROW = 13;         // of a label [pixels]
constexpr std::size_t MOST_ROWS = 150;  // with labels

int heightFor(std::size_t targets) {
    constexpr std::size_t BESIDES = 150;  // title, moon, dates [pixels]
    constexpr std::size_t LEAST = 170;    // of the map [pixels]
    return static_cast<int>(std::max(LEAST, std::min(targets, MOST_ROWS) * ROW) + BESIDES);
}

/// The names of the targets, as far as they have room.
std::string targetTics(const Settings& settings) {
    const std::size_t rowsPerLabel = (settings.targets.size() + MOST_ROWS - 1) / MOST_ROWS;
    std::string tics;
    for (std::size_t i = 0; i < settings.targets.size(); i += rowsPerLabel) {
        tics +=
            (i > 0 ? ", " : "") + quoted(labelOf(settings.targets[i])) + " " + std::to_string(i);
    }
    return tics;
}

/// Lines of date, row, dark-equivalent hours. A target has several rows side by side: gnuplot blurs
/// the edges between cells, which is then seen at the edge of targets alone, and hardly there.
std::string cells(const Report& report) {
    constexpr int ROWS = 4;
    TextWriter data;
    data << "$map << END\n";
    for (std::size_t i = 0; i < report.seasons.size() * ROWS; ++i) {
        const Season& season = report.seasons[i / ROWS];
        const double row = (static_cast<double>(i) + 0.5) / ROWS - 0.5;
        for (std::size_t n = 0; n < season.size(); ++n) {
            data << dateTic(report.nights[n].date) << ' ' << row << ' '
                 << (season[n].usableHours > 0.0 ? fixed(season[n].darkEquivalentHours, 2) : "NaN")
                 << '\n';
        }
    }
    data << "END\n";
    return data.str();
}

/// Where the map begins, right of the names [pixels].
int leftOf(const Settings& settings) {
    constexpr std::size_t BESIDES = 20;
    constexpr std::size_t CHARACTER = 7;
    constexpr std::size_t LEAST = 80;
    std::size_t left = LEAST;
    for (const Target& target : settings.targets)
        left = std::max(left, labelOf(target).size() * CHARACTER + BESIDES);
    return static_cast<int>(left);
}

/// The end of the palette: the whole hour above all values, one at least.
double mostHours(const Report& report) {
    double most = 1.0;
    for (const Season& season : report.seasons) {
        for (const TargetNight& night : season) most = std::max(most, night.darkEquivalentHours);
    }
    return std::ceil(most);
}

}  // namespace

std::string heatMapScript(const Report& report) {
    constexpr int BELOW = 36;  // the map [pixels]
    const Settings& settings = report.settings;
    TextWriter script;
    script << cells(report)
           << beginningOf(report, {heightFor(settings.targets.size()), leftOf(settings), BELOW},
                          "Nights from " + dateOf(report.nights.front().date))
           << "set yrange [" << settings.targets.size() << " - 0.5:-0.5]\nset ytics ("
           << targetTics(settings)
           << ") noenhanced font ',8'\nunset ylabel\nset cbrange [0:" << fixed(mostHours(report), 0)
           << "]\nset cblabel 'dark-equivalent hours' font ',10'\n"
           << "plot $map using 1:2:3 with image\n"
           << endOf();
    return script.str();
}

}  // namespace zarn::moon
