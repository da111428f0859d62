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

constexpr char NO_UNIT = ' ';

/// An angle as it is read further, its parts with colons between them, and its unit if it says so.
struct Notation {
    std::string text;
    char unit;  ///< h: hours; d: degrees
};

/// The notation of "5h35m17.3s", "+5d23m" or "05 35 17.3"; of any other text itself.
Notation notationOf(const std::string& text) {
    std::string parts;
    std::string marks;
    for (const char c : text) {
        const char mark = c == '\t' ? ' ' : c;
        if (!isMadeOf({mark}, "hdms ")) {
            parts += mark;
        } else if (mark != ' ' || parts.empty() || parts.back() != ':') {
            parts += ':';
            marks += mark;
        }
    }
    for (const char* const known : {"h", "hm", "hms", "d", "dm", "dms", " ", "  "}) {
        if (marks != known) continue;
        if (parts.back() == ':') parts.pop_back();
        return {parts, marks.front()};
    }
    return {text, NO_UNIT};
}

/// A right ascension [deg], 0 <= ra < 360, in the unit that it names or its form implies.
double rightAscension(const Notation& notation, const std::string& whole) {
    const bool isHours =
        notation.unit == 'h' || (notation.unit == NO_UNIT && isSexagesimal(notation.text));
    const double unit = isHours ? DEG_PER_HOUR : 1.0;
    const double ra = parseAngle(notation.text, FULL_CIRCLE / unit, whole) * unit;
    return ra < FULL_CIRCLE ? ra : 0.0;
}

double declination(const std::string& text, const std::string& whole) {
    constexpr double POLE = 90.0;
    const bool isSigned = text.find_first_of("+-") == 0;
    const double size = parseAngle(text.substr(isSigned ? 1 : 0), POLE, whole);
    return text[0] == '-' ? -size : size;
}

using Words = std::vector<std::string>;

std::string joined(Words::const_iterator begin, Words::const_iterator end) {
    std::string text;
    for (auto word = begin; word != end; ++word) text += (word == begin ? "" : " ") + *word;
    return text;
}

/// Which word of a position begins its declination: the one with a sign, or else the first of the
/// second half; the number of words if neither can be.
std::size_t secondAngle(const Words& words) {
    constexpr std::size_t MOST = 6;  // three of each
    if (words.empty() || words.size() > MOST) return words.size();
    const auto sign = std::find_if(words.begin() + 1, words.end(), [](const std::string& word) {
        return word.find_first_of("+-") == 0;
    });
    if (sign != words.end()) return static_cast<std::size_t>(sign - words.begin());
    return words.size() % 2 == 0 ? words.size() / 2 : words.size();
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
    return rightAscension({text, NO_UNIT}, text);
}

double parseDeclination(const std::string& text) { return declination(text, text); }

Position parsePosition(const std::string& ra, const std::string& dec) {
    const Notation right = notationOf(ra);
    const Notation down = notationOf(dec);
    const bool sayUnits = right.unit != NO_UNIT || down.unit != NO_UNIT;
    if (!sayUnits && isSexagesimal(right.text) != isSexagesimal(down.text))
        refuseText(ra + " " + dec, "must be two numbers in degrees or two sexagesimal ones");
    if (down.unit == 'h') refuseText(dec, "is a declination in hours");
    return {rightAscension(right, ra), declination(down.text, dec)};
}

Position parsePosition(const std::string& text) {
    std::vector<std::string> words;
    ZarnSys::split(text, " \t", words);
    const std::size_t second = secondAngle(words);
    if (second == words.size()) refuseText(text, "is not a right ascension and a declination");
    const auto middle = words.begin() + static_cast<std::ptrdiff_t>(second);
    return parsePosition(joined(words.begin(), middle), joined(middle, words.end()));
}

}  // namespace zarn
