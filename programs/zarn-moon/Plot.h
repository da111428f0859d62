/// The picture of a night, drawn by gnuplot.
#ifndef ZARN_MOON_PLOT_H
#define ZARN_MOON_PLOT_H

#include <cstddef>
#include <string>

#include "Settings.h"

/// With more targets their lines cannot be told apart.
constexpr std::size_t MOST_DRAWN_TARGETS = 12;

/// The night's picture, in the format that the name in `settings.plot` ends in: altitudes of moon
/// and targets over universal time, and below them the sky brightness at the targets.
///
/// @throw std::runtime_error  when gnuplot is not installed or fails
std::string drawNight(const Settings& settings);

#endif  // ZARN_MOON_PLOT_H
