#include "zarn-moon/forms/DateAxis.h"

#include "shared/cli/TextStreams.h"
#include "shared/sky/Calendar.h"
#include "zarn-moon/forms/PlotParts.h"
#include "zarn-moon/forms/Texts.h"

namespace zarn::moon {

namespace {

constexpr int WIDTH = 1000;       // [pixels]
constexpr int TITLE_HEIGHT = 34;  // [pixels]
constexpr int STRIP_HEIGHT = 56;  // of the moon's panel [pixels]
constexpr int GAP = 12;           // below it [pixels]
constexpr int COLORS_WIDTH = 20;  // of the palette [pixels]
constexpr int RIGHT = 100;        // of the panels: for the palette and its scale [pixels]

// Cividis: its lightness rises evenly, so that it can be read in grey and by the colour-blind;
// Nunez, Anderton & Renslow 2018, PLoS ONE 13, e0199239.
constexpr char PALETTE[] =
    "set palette defined (0 '#00224e', 1 '#1a386f', 2 '#434e6c', 3 '#61656f', 4 '#7d7c78', "
    "5 '#9b9476', 6 '#bcae6c', 7 '#dec958', 8 '#fee838')\n";

/// Whether a night gets a label: each, each Monday, or the first of some months.
bool isLabelled(double date, std::size_t nights) {
    constexpr std::size_t EACH = 14;
    constexpr std::size_t WEEKLY = 100;
    constexpr std::size_t MONTHLY = 220;
    constexpr std::size_t QUARTERLY = 800;
    if (nights <= EACH) return true;
    if (nights <= WEEKLY) return static_cast<long>(date) % 7 == 5;  // MJD 5 was a Monday
    const std::string text = dateOf(date);
    if (text.substr(8) != "01") return false;
    const int month = std::stoi(text.substr(5));
    if (nights <= MONTHLY) return true;
    return nights <= QUARTERLY ? month % 3 == 1 : month == 1;
}

/// The tics of the axis of dates, with their labels or without.
std::string dateTics(const Report& report, bool labelled) {
    std::string tics;
    for (const NightLine& night : report.nights) {
        if (!isLabelled(night.date, report.nights.size())) continue;
        tics += (tics.empty() ? "" : ", ") + quoted(labelled ? dateOf(night.date) : "") + " " +
                dateTic(night.date);
    }
    return "set xtics (" + tics + ") font ',9'\n";
}

/// A length as a part of the picture's width or height.
std::string part(int pixels, int of) { return fixed(static_cast<double>(pixels) / of, 4); }

/// Where a panel stands, between two distances from the picture's top [pixels].
std::string panel(int height, int top, int bottom) {
    return "set tmargin at screen " + part(height - top, height) + "\nset bmargin at screen " +
           part(height - bottom, height) + "\n";
}

/// The moon's panel: how much of it is lit.
std::string moonStrip(const Report& report) {
    std::string data = "$moon << END\n";
    for (const NightLine& night : report.nights)
        data += dateTic(night.date) + " " + percent(night.summary.illumination, 1) + "\n";
    return data +
           "END\n"
           "set yrange [0:100]\nset ytics ('0' 0, '50' 50, '100' 100) font ',8'\n"
           "set ylabel 'moon lit [%]' font ',9'\n"
           "plot $moon using 1:2 with filledcurves y1=0 linecolor rgb '#909090' notitle, "
           "$moon using 1:2 with lines linecolor rgb '#303030' notitle\n";
}

}  // namespace

std::string dateTic(double date) { return timeOf(date); }

std::string beginningOf(const Report& report, const PictureSize& size, const std::string& title) {
    constexpr double HALF = 0.5;  // each night is a cell around its date
    constexpr int STRIP_END = TITLE_HEIGHT + STRIP_HEIGHT;
    const auto& [height, left, below] = size;
    const Settings& settings = report.settings;
    TextWriter script;
    script << terminalOf(settings, WIDTH, height) << PALETTE << "set lmargin at screen "
           << part(left, WIDTH) << "\nset rmargin at screen " << part(WIDTH - RIGHT, WIDTH)
           << "\nset colorbox user origin " << part(WIDTH - RIGHT + COLORS_WIDTH / 2, WIDTH) << ","
           << part(below, height) << " size " << part(COLORS_WIDTH, WIDTH) << ","
           << part(height - below - STRIP_END - GAP, height)
           << "\nset cbtics font ',9'\nunset key\nset tics out nomirror\nset xrange ["
           << dateTic(report.nights.front().date - HALF) << ":"
           << dateTic(report.nights.back().date + HALF) << "]\nset multiplot title "
           << quoted(title + " at " + settings.site.name + " (" + coordinates(settings.site) + ")")
           << " noenhanced\n"
           << panel(height, TITLE_HEIGHT, STRIP_END) << dateTics(report, false) << moonStrip(report)
           << panel(height, STRIP_END + GAP, height - below) << dateTics(report, true);
    return script.str();
}

std::string endOf() { return "unset multiplot\n"; }

}  // namespace zarn::moon
