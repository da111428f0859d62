/// Numbers and positions as people write them.
///
/// A text must hold the number alone: no blanks, no other text after it, no infinity. The functions
/// throw std::invalid_argument with a message that quotes the text and says what is wrong with it.
#ifndef ZARN_PROGRAMS_ANGLES_H
#define ZARN_PROGRAMS_ANGLES_H

#include <string>

#include "shared/sky/Units.h"

namespace zarn {

/// A direction in the sky [deg].
struct Position {
    double ra;   ///< 0 <= ra < 360
    double dec;  ///< -90 to 90
};

/// A decimal number from `least` to `most`.
double parseNumber(const std::string& text, double least, double most);

/// An angle without sign, as a decimal number or as d:m or d:m:s, of which only the last part may
/// have a fraction. The result has the unit of the first part and lies between 0 and `most`.
///
/// @param whole  what messages quote: the angle with its sign or letter
double parseAngle(const std::string& text, double most, const std::string& whole);

/// A right ascension [deg], 0 <= ra < 360: in degrees ("83.8221") or in hours ("05:35:17.3").
double parseRightAscension(const std::string& text);

/// A declination [deg], -90 to 90: "-5.3911" or "-05:23:28".
double parseDeclination(const std::string& text);

/// A position: both in degrees ("83.8221", "-5.3911"), or both sexagesimal, the right ascension in
/// hours ("05:35:17.3", "-05:23:28"), with blanks for colons, or with units ("5h35m17.3s",
/// "-5d23m").
Position parsePosition(const std::string& ra, const std::string& dec);

/// The same from one text, with blanks between the two. Of more than two words, the declination
/// begins at the one with a sign, or in the middle.
Position parsePosition(const std::string& text);

}  // namespace zarn

#endif  // ZARN_PROGRAMS_ANGLES_H
