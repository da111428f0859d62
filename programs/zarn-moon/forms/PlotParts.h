/// What the scripts for gnuplot have in common.
#ifndef ZARN_MOON_PLOTPARTS_H
#define ZARN_MOON_PLOTPARTS_H

#include <string>

#include "zarn-moon/settings/Settings.h"

namespace zarn::moon {

/// Whether the picture is an SVG; else it is a PNG.
bool isSvg(const Settings& settings);

/// The command that begins a picture of this size [pixels].
std::string terminalOf(const Settings& settings, int width, int height);

/// A text as a quoted string for gnuplot.
std::string quoted(const std::string& text);

/// A time for gnuplot: seconds since 1970.
std::string timeOf(double mjd);

/// The color of the background, 0xRRGGBB: from day to night in steps of twilight.
///
/// @param sunAltitude  [deg]
unsigned shadeOf(double sunAltitude);

}  // namespace zarn::moon

#endif  // ZARN_MOON_PLOTPARTS_H
