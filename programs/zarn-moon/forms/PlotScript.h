/// What gnuplot is told to draw.
#ifndef ZARN_MOON_PLOTSCRIPT_H
#define ZARN_MOON_PLOTSCRIPT_H

#include <string>
#include <vector>

#include "zarn-moon/night/Night.h"
#include "zarn-moon/night/Rows.h"
#include "zarn-moon/settings/Settings.h"

namespace zarn::moon {

inline constexpr double MINUTES_PER_POINT = 4.0;  ///< between two points of a curve

/// Whether the picture is an SVG; else it is a PNG.
bool isSvg(const Settings& settings);

/// The script for a picture of a night.
///
/// @param rows  its points, MINUTES_PER_POINT apart
std::string scriptOf(const Settings& settings, const std::vector<Row>& rows,
                     const Summary& summary);

}  // namespace zarn::moon

#endif  // ZARN_MOON_PLOTSCRIPT_H
