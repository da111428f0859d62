#include "shared/sky/Angles.h"

#include <zarnsys/util/StringUtils.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "shared/cli/Printable.h"
#include "shared/cli/Value.h"

namespace {

constexpr double PARTS = 60.0;  // minutes to the first unit, seconds to the minute

[[noreturn]] void fail(const std::string& text, const std::string& problem) {
    throw std::invalid_argument("\"" + printable(text) + "\" " + problem);
}

double decimal(const std::string& text, const std::string& whole) {
    double number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest != end || !std::isfinite(number)) fail(whole, "is no number");
    return number;
}

bool isMadeOf(const std::string& text, const char* characters) {
    return !text.empty() && text.find_first_not_of(characters) == std::string::npos;
}

bool isSexagesimal(const std::string& text) { return text.find(':') != std::string::npos; }

/// Minutes or seconds, as a fraction of the unit before them.
double fractionOf(const std::string& part, const std::string& whole) {
    const double number = decimal(part, whole);
    if (number >= PARTS) fail(whole, "has minutes or seconds outside 0 to 60");
    return number / PARTS;
}

double sexagesimal(const std::string& text, const std::string& whole) {
    constexpr std::size_t MOST_PARTS = 3;
    std::vector<std::string> parts;
    std::istringstream rest(text + ':');
    for (std::string part; std::getline(rest, part, ':');) parts.push_back(part);
    const bool wellFormed =
        parts.size() <= MOST_PARTS && isMadeOf(parts.back(), "0123456789.") &&
        std::all_of(parts.begin(), parts.end() - 1,
                    [](const std::string& part) { return isMadeOf(part, "0123456789"); });
    if (!wellFormed) fail(whole, "is no angle of the form 12:34:56.7");
    const double seconds = parts.size() == MOST_PARTS ? fractionOf(parts[2], whole) : 0.0;
    return decimal(parts[0], whole) + fractionOf(parts[1], whole) + seconds / PARTS;
}

}  // namespace

double parseNumber(const std::string& text, double least, double most) {
    const double number = decimal(text, text);
    if (number < least || number > most)
        fail(text, "is not from " + shortest(least) + " to " + shortest(most));
    return number;
}

double parseAngle(const std::string& text, double most, const std::string& whole) {
    if (text.find_first_of("+-") == 0) fail(whole, "must have no sign");
    const double angle = isSexagesimal(text) ? sexagesimal(text, whole) : decimal(text, whole);
    if (angle > most) fail(whole, "is beyond " + shortest(most));
    return angle;
}

double parseRightAscension(const std::string& text) {
    const double unit = isSexagesimal(text) ? DEG_PER_HOUR : 1.0;
    constexpr double CIRCLE = 360.0;  // [deg]
    const double ra = parseAngle(text, CIRCLE / unit, text) * unit;
    return ra < CIRCLE ? ra : 0.0;
}

double parseDeclination(const std::string& text) {
    constexpr double POLE = 90.0;
    const bool isSigned = text.find_first_of("+-") == 0;
    const double size = parseAngle(text.substr(isSigned ? 1 : 0), POLE, text);
    return text[0] == '-' ? -size : size;
}

Position parsePosition(const std::string& ra, const std::string& dec) {
    if (isSexagesimal(ra) != isSexagesimal(dec))
        fail(ra + " " + dec, "is neither two numbers in degrees nor two sexagesimal ones");
    return {parseRightAscension(ra), parseDeclination(dec)};
}

Position parsePosition(const std::string& text) {
    std::vector<std::string> words;
    ZarnSys::split(text, " \t", words);
    if (words.size() != 2) fail(text, "is not a right ascension and a declination");
    return parsePosition(words[0], words[1]);
}
