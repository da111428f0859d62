/// What a night's conditions can be; what lies beyond is a slip.
#ifndef ZARN_PROGRAMS_SKYLIMITS_H
#define ZARN_PROGRAMS_SKYLIMITS_H

namespace zarn {

inline constexpr double MOST_EXTINCTION = 10.0;     ///< at the zenith [mag per airmass]
inline constexpr double BRIGHTEST_DARK_SKY = 10.0;  ///< [V mag per square arc second]
inline constexpr double DARKEST_SKY = 30.0;         ///< [V mag per square arc second]

}  // namespace zarn

#endif  // ZARN_PROGRAMS_SKYLIMITS_H
