/// When values pass a level.
#ifndef ZARN_MOON_CROSSINGS_H
#define ZARN_MOON_CROSSINGS_H

#include <vector>

namespace zarn::moon {

/// The times at which values, one for each instant, cross 0 upwards or downwards. Between two
/// instants they are taken as linear; where these are minutes, that is right to a fraction of a
/// second.
std::vector<double> crossings(const std::vector<double>& instants,
                              const std::vector<double>& values, bool upwards);

/// Values counted from a level, so that it becomes their zero.
std::vector<double> above(std::vector<double> values, double level);

}  // namespace zarn::moon

#endif  // ZARN_MOON_CROSSINGS_H
