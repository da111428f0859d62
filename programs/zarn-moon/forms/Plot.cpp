#include "zarn-moon/forms/Plot.h"

#include <algorithm>
#include <stdexcept>

#include "zarn-moon/forms/Gnuplot.h"
#include "zarn-moon/forms/HeatMap.h"
#include "zarn-moon/forms/PlotParts.h"
#include "zarn-moon/forms/PlotScript.h"
#include "zarn-moon/forms/SeasonMap.h"

namespace zarn::moon {

namespace {

/// The instants to draw: from half an hour before sunset to half an hour after sunrise.
std::vector<MJD_DATE> instantsToDraw(const Night& night) {
    constexpr std::size_t MARGIN = 30;  // [minutes]
    const auto isDown = [](double altitude) { return altitude < HORIZON; };
    const auto& sun = night.sunAltitudes;
    const auto first =
        static_cast<std::size_t>(std::find_if(sun.begin(), sun.end(), isDown) - sun.begin());
    const auto last =
        sun.size() -
        static_cast<std::size_t>(std::find_if(sun.rbegin(), sun.rend(), isDown) - sun.rbegin());
    const bool never = first == sun.size();
    const std::size_t begin = never || first < MARGIN ? 0 : first - MARGIN;
    const std::size_t end = never ? sun.size() : std::min(sun.size(), last + MARGIN);
    std::vector<MJD_DATE> instants;
    for (std::size_t i = begin; i < end; i += static_cast<std::size_t>(MINUTES_PER_POINT))
        instants.push_back(night.instants[i]);
    return instants;
}

/// The targets' best windows in the only night, if they are asked for.
std::vector<Window> windowsOf(const Report& report) {
    if (!hasLimits(report.settings)) return {};
    std::vector<Window> windows = report.windows;
    for (const Season& season : report.seasons) windows.push_back(season[0].best);
    return windows;
}

std::string nightScript(const Report& report) {
    const Settings& settings = report.settings;
    const Night& night = *report.night;
    const Ephemeris& ephemeris = ephemerisOf(settings.ephemeris);
    const std::vector<Row> rows =
        makeRows(settings, ephemeris.pathOver(settings.site, instantsToDraw(night)),
                 directionsOfDate(settings, ephemeris, middleOf(night)), windowsOf(report));
    return scriptOf(report, rows);
}

std::string script(const Report& report) {
    if (report.night) return nightScript(report);
    return report.settings.targets.size() > 1 ? heatMapScript(report) : seasonScript(report);
}

}  // namespace

std::string draw(const Report& report) {
    std::string picture = runGnuplot(script(report));
    const char* const end = isSvg(report.settings) ? "</svg>" : "IEND";
    if (picture.find(end) == std::string::npos)
        throw std::runtime_error("gnuplot did not draw the whole picture");
    return picture;
}

}  // namespace zarn::moon
