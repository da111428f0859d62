#include "zarn-moon/forms/PlotParts.h"

#include "shared/cli/Printable.h"
#include "shared/sky/Calendar.h"
#include "zarn-moon/forms/Texts.h"
#include "zarn-moon/night/Night.h"

namespace zarn::moon {

bool isSvg(const Settings& settings) {
    return settings.plot.rfind(".svg") == settings.plot.size() - std::string(".svg").size();
}

std::string terminalOf(const Settings& settings, int width, int height) {
    return std::string("set terminal ") + (isSvg(settings) ? "svg" : "pngcairo") + " size " +
           std::to_string(width) + "," + std::to_string(height) + " background 'white'\n";
}

std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : printable(text)) result.append(c == '\'' ? 2 : 1, c);
    return result + "'";
}

std::string timeOf(double mjd) { return fixed((mjd - MJD_OF_EPOCH) * SECONDS_PER_DAY, 0); }

unsigned shadeOf(double sunAltitude) {
    constexpr unsigned NIGHT = 0xC0C9DD;
    constexpr struct {
        double altitude;  // at least
        unsigned color;
    } SHADES[] = {
        {HORIZON, 0xFDF6E3},
        {CIVIL_TWILIGHT, 0xECEFF6},
        {NAUTICAL_TWILIGHT, 0xDDE2EE},
        {ASTRONOMICAL_TWILIGHT, 0xCED5E5},
    };
    for (const auto& [altitude, color] : SHADES) {
        if (sunAltitude >= altitude) return color;
    }
    return NIGHT;
}

}  // namespace zarn::moon
