/// Pictures, drawn by gnuplot.
#ifndef ZARN_MOON_PLOT_H
#define ZARN_MOON_PLOT_H

#include <string>

#include "zarn-moon/forms/Report.h"

namespace zarn::moon {

/// The picture of the report, in the format that the name in `settings.plot` ends in: of a night,
/// the altitudes of moon and targets over UT, and below them the sky brightness at the targets; of
/// several nights, what they are worth for the targets, or for one target hour by hour.
///
/// @throw std::runtime_error  when gnuplot is not installed or fails
std::string draw(const Report& report);

}  // namespace zarn::moon

#endif  // ZARN_MOON_PLOT_H
