/// What gnuplot is told to draw of a night.
#ifndef ZARN_MOON_PLOTSCRIPT_H
#define ZARN_MOON_PLOTSCRIPT_H

#include <string>
#include <vector>

#include "zarn-moon/forms/Report.h"

namespace zarn::moon {

inline constexpr double MINUTES_PER_POINT = 4.0;  ///< between two points of a curve

/// The script for a picture of a night.
///
/// @param report  on a single night
/// @param rows    its points, MINUTES_PER_POINT apart
std::string scriptOf(const Report& report, const std::vector<Row>& rows);

}  // namespace zarn::moon

#endif  // ZARN_MOON_PLOTSCRIPT_H
