/// The picture of a night, drawn by gnuplot.
#ifndef ZARN_MOON_PLOT_H
#define ZARN_MOON_PLOT_H

#include <string>

#include "zarn-moon/settings/Settings.h"

/// The night's picture, in the format that the name in `settings.plot` ends in: altitudes of moon
/// and targets over universal time, and below them the sky brightness at the targets.
///
/// @throw std::runtime_error  when gnuplot is not installed or fails
std::string drawNight(const Settings& settings);

#endif  // ZARN_MOON_PLOT_H
