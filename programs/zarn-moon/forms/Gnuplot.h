/// gnuplot as a helper process.
#ifndef ZARN_MOON_GNUPLOT_H
#define ZARN_MOON_GNUPLOT_H

#include <string>

namespace zarn::moon {

/// What gnuplot writes to its standard output for a script. If memory or a quota ran out, the end
/// is missing: the caller checks it.
///
/// @throw std::runtime_error  when gnuplot is not installed, or with its own message when it fails
std::string runGnuplot(const std::string& script);

}  // namespace zarn::moon

#endif  // ZARN_MOON_GNUPLOT_H
