#include "Angles.h"

#include <zarnsys/util/StringUtils.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "Printable.h"

namespace {

constexpr double DEG_PER_HOUR = 15.0;
constexpr double PARTS = 60.0;  // minutes to the first unit, seconds to the minute

[[noreturn]] void fail(const std::string& text, const std::string& problem) {
    throw std::invalid_argument("\"" + printable(text) + "\" " + problem);
}

std::string shown(double number) {
    std::ostringstream text;
    text << number;
    return text.str();
}

double decimal(const std::string& text) {
    double number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest != end || !std::isfinite(number)) fail(text, "is no number");
    return number;
}

bool isWhole(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

bool isSexagesimal(const std::string& text) { return text.find(':') != std::string::npos; }

/// The part after the first one or two of a sexagesimal angle, as a fraction of what stands before.
double minutesOrSeconds(const std::string& angle, const std::string& part) {
    const double number = part.find_first_of("+-") == std::string::npos ? decimal(part) : -1.0;
    if (number < 0.0 || number >= PARTS) fail(angle, "has minutes or seconds outside 0 to 60");
    return number / PARTS;
}

double sexagesimal(const std::string& text) {
    constexpr std::size_t MOST_PARTS = 3;
    std::vector<std::string> parts;
    std::istringstream rest(text + ':');
    for (std::string part; std::getline(rest, part, ':');) parts.push_back(part);
    const bool whole = std::all_of(parts.begin(), parts.end() - 1, isWhole);
    if (parts.size() > MOST_PARTS || !whole) fail(text, "is no angle of the form 12:34:56.7");
    const double seconds = parts.size() == MOST_PARTS ? minutesOrSeconds(text, parts[2]) : 0.0;
    return decimal(parts[0]) + minutesOrSeconds(text, parts[1]) + seconds / PARTS;
}

}  // namespace

double parseNumber(const std::string& text, double least, double most) {
    const double number = decimal(text);
    if (number < least || number > most)
        fail(text, "is not from " + shown(least) + " to " + shown(most));
    return number;
}

double parseAngle(const std::string& text, double most) {
    if (text.find_first_of("+-") == 0) fail(text, "must have no sign");
    const double angle = isSexagesimal(text) ? sexagesimal(text) : decimal(text);
    if (angle > most) fail(text, "is more than " + shown(most));
    return angle;
}

double parseRightAscension(const std::string& text) {
    const double unit = isSexagesimal(text) ? DEG_PER_HOUR : 1.0;
    constexpr double CIRCLE = 360.0;  // [deg]
    const double ra = parseAngle(text, CIRCLE / unit) * unit;
    return ra < CIRCLE ? ra : 0.0;
}

double parseDeclination(const std::string& text) {
    constexpr double POLE = 90.0;
    const bool isSigned = text.find_first_of("+-") == 0;
    const double size = parseAngle(text.substr(isSigned ? 1 : 0), POLE);
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
