/// The picture of a night, drawn by gnuplot.
#ifndef ZARN_MOON_PLOT_H
#define ZARN_MOON_PLOT_H

#include <string>

#include "zarn-moon/forms/Report.h"

namespace zarn::moon {

/// The picture of the report's night, in the format that the name in `settings.plot` ends in: the
/// altitudes of moon and targets over UT, and below them the sky brightness at the targets.
///
/// @param report  on a single night
///
/// @throw std::runtime_error  when gnuplot is not installed or fails
std::string drawNight(const Report& report);

}  // namespace zarn::moon

#endif  // ZARN_MOON_PLOT_H
