/// gnuplot as a helper process.
#ifndef ZARN_MOON_GNUPLOT_H
#define ZARN_MOON_GNUPLOT_H

#include <string>

/// What gnuplot writes to its standard output for a script. A full memory or quota may cut it: look
/// at its end.
///
/// @throw std::runtime_error  when it is not installed, or with its own words when it fails
std::string runGnuplot(const std::string& script);

#endif  // ZARN_MOON_GNUPLOT_H
