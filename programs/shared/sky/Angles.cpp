#include "shared/sky/Angles.h"

#include <zarnsys/util/StringUtils.h>

#include <algorithm>
#include <locale>
#include <vector>

#include "shared/cli/TextStreams.h"
#include "shared/cli/Value.h"

namespace zarn {

namespace {

constexpr double PARTS = 60.0;  // minutes to the first unit, seconds to the minute

/// A decimal number; messages quote `whole`, of which it is a part.
double decimal(const std::string& text, const std::string& whole) {
    // std::from_chars for floating-point numbers is missing from older standard libraries.
    TextReader stream(text);
    stream.imbue(std::locale::classic());
    double number = 0;
    stream >> std::noskipws >> number;
    const bool isNumber = stream && stream.peek() == TextReader::traits_type::eof();
    if (!isNumber || text.front() == '+') refuseText(whole, "is not a number");
    return number;
}

bool isMadeOf(const std::string& text, const char* characters) {
    return !text.empty() && text.find_first_not_of(characters) == std::string::npos;
}

bool isSexagesimal(const std::string& text) { return text.find(':') != std::string::npos; }

/// Minutes or seconds, as a fraction of the unit before them.
double fractionOf(const std::string& part, const std::string& whole) {
    const double number = decimal(part, whole);
    if (number >= PARTS) refuseText(whole, "has minutes or seconds of 60 or more");
    return number / PARTS;
}

/// An angle d:m or d:m:s, in the unit of its first part.
double sexagesimal(const std::string& text, const std::string& whole) {
    constexpr std::size_t MOST_PARTS = 3;
    std::vector<std::string> parts;
    TextReader rest(text + ':');
    for (std::string part; std::getline(rest, part, ':');) parts.push_back(part);
    const bool wellFormed =
        parts.size() <= MOST_PARTS && isMadeOf(parts.back(), "0123456789.") &&
        std::all_of(parts.begin(), parts.end() - 1,
                    [](const std::string& part) { return isMadeOf(part, "0123456789"); });
    if (!wellFormed) refuseText(whole, "is not an angle such as 12:34:56.7");
    const double seconds = parts.size() == MOST_PARTS ? fractionOf(parts[2], whole) : 0.0;
    return decimal(parts[0], whole) + fractionOf(parts[1], whole) + seconds / PARTS;
}

}  // namespace

double parseNumber(const std::string& text, double least, double most) {
    const double number = decimal(text, text);
    if (number < least || number > most)
        refuseText(text, "is not from " + shortest(least) + " to " + shortest(most));
    return number;
}

double parseAngle(const std::string& text, double most, const std::string& whole) {
    if (text.find_first_of("+-") == 0) refuseText(whole, "must not have a sign");
    const double angle = isSexagesimal(text) ? sexagesimal(text, whole) : decimal(text, whole);
    if (angle > most) refuseText(whole, "is greater than " + shortest(most));
    return angle;
}

double parseRightAscension(const std::string& text) {
    const double unit = isSexagesimal(text) ? DEG_PER_HOUR : 1.0;
    const double ra = parseAngle(text, FULL_CIRCLE / unit, text) * unit;
    return ra < FULL_CIRCLE ? ra : 0.0;
}

double parseDeclination(const std::string& text) {
    constexpr double POLE = 90.0;
    const bool isSigned = text.find_first_of("+-") == 0;
    const double size = parseAngle(text.substr(isSigned ? 1 : 0), POLE, text);
    return text[0] == '-' ? -size : size;
}

Position parsePosition(const std::string& ra, const std::string& dec) {
    if (isSexagesimal(ra) != isSexagesimal(dec))
        refuseText(ra + " " + dec, "must be two numbers in degrees or two sexagesimal ones");
    return {parseRightAscension(ra), parseDeclination(dec)};
}

Position parsePosition(const std::string& text) {
    std::vector<std::string> words;
    ZarnSys::split(text, " \t", words);
    if (words.size() != 2) refuseText(text, "is not a right ascension and a declination");
    return parsePosition(words[0], words[1]);
}

}  // namespace zarn
