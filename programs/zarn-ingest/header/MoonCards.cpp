#include "zarn-ingest/header/MoonCards.h"

#include <zarnsys/util/StringUtils.h>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iterator>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "shared/cli/Printable.h"
#include "shared/sky/Angles.h"
#include "shared/sky/Calendar.h"
#include "shared/sky/Precession.h"
#include "shared/sky/Telescopes.h"
#include "zarn-ingest/header/Fits.h"

namespace {

// What is plausible; outside, a placeholder or another unit is likelier than an exposure.
constexpr double FIRST_MJD = 1.0;       // 1858-11-18: MJD 0 stands where nobody knew the time
constexpr double LAST_MJD = 124593.0;   // 2200-01-01
constexpr double FIRST_EQUINOX = 1800;  // [yr]
constexpr double LAST_EQUINOX = 2200;

// Columns of a card in the fixed format: keyword, "= ", and the value, which ends in column 30.
constexpr int KEYWORD_WIDTH = 8;
constexpr int VALUE_WIDTH = 20;

// Time scales that are less than two minutes from universal time today.
constexpr const char* TIME_SCALES[] = {"UTC", "UT", "UT1", "GMT", "TAI", "IAT", "TT",
                                       "TDT", "ET", "TDB", "TCG", "TCB", "GPS"};

/// Why a header gives no values, and the line.
class Malformed : public std::runtime_error {
public:
    Malformed(const std::string& text, std::size_t line) : std::runtime_error(text), line_(line) {}

    std::size_t line() const { return line_; }

private:
    std::size_t line_;
};

/// A keyword that has a value.
struct Field {
    std::string keyword;
    std::string value;  ///< as `valueOf` gives it, not empty
    std::size_t line;
};

[[noreturn]] void fail(const std::string& value, const std::string& problem) {
    throw std::invalid_argument("\"" + printable(value) + "\" " + problem);
}

bool isText(const std::string& value) { return value.rfind('\'', 0) == 0; }

/// What stands between the quotes, without trailing blanks.
std::string textOf(const std::string& value) {
    if (!isText(value)) fail(value, "is no text in quotes");
    const std::size_t end = value.find_last_not_of(" '");
    return end == std::string::npos ? "" : value.substr(1, end);
}

/// A number as FITS writes it: with a plus sign, or a D for the exponent, as may be.
double numberOf(const std::string& value, double least, double most) {
    std::string number = value;
    if (value.find_first_not_of("+-.0123456789D") == std::string::npos)
        std::replace(number.begin(), number.end(), 'D', 'E');
    const bool plus = number.find('+') == 0 && number.find('-') != 1;
    return parseNumber(plus ? number.substr(1) : number, least, most);
}

/// An angle of two or three parts, with colons between them where blanks may stand, too.
std::string sexagesimalOf(const std::string& value) {
    std::vector<std::string> parts;
    ZarnSys::split(textOf(value), " ", parts);
    std::string angle;
    for (const std::string& part : parts) angle += (angle.empty() ? "" : ":") + part;
    if (angle.find(':') == std::string::npos)
        fail(value, "is neither a number nor of the form 12:34:56.7");
    return angle;
}

double raOf(const std::string& value) {
    constexpr double CIRCLE = 360.0;
    return isText(value) ? parseRightAscension(sexagesimalOf(value)) : numberOf(value, 0.0, CIRCLE);
}

double decOf(const std::string& value) {
    constexpr double POLE = 90.0;
    return isText(value) ? parseDeclination(sexagesimalOf(value)) : numberOf(value, -POLE, POLE);
}

double equinoxOf(const std::string& value) { return numberOf(value, FIRST_EQUINOX, LAST_EQUINOX); }

double mjdOf(const std::string& value) { return numberOf(value, FIRST_MJD, LAST_MJD); }

double mjdOfDateObs(const std::string& value) {
    const double mjd = mjdOfInstant(textOf(value));
    if (mjd < FIRST_MJD || mjd > LAST_MJD) fail(value, "is not from 1858-11-18 to 2200-01-01");
    return mjd;
}

/// Makes sure that a time scale is near universal time; its realisation is no matter: TT(TAI).
void checkTimeScale(const std::string& value) {
    const std::string scale = textOf(value);
    const std::string name = scale.substr(0, scale.find('('));
    const bool isNear =
        std::find(std::begin(TIME_SCALES), std::end(TIME_SCALES), name) != std::end(TIME_SCALES);
    if (!isNear) fail(value, "is no time scale near universal time");
}

/// The value, and what CFITSIO would ignore behind it where no slash divides them: `05 35 17.3` is
/// not 5 degrees.
std::string wholeValueOf(const std::string& card) {
    std::string value = valueOf(card);
    const std::size_t begin = card.find(value, card.find('='));
    if (value.empty() || isText(value) || begin == std::string::npos) return value;
    const std::size_t next = card.find_first_not_of(' ', begin + value.size());
    const bool ends = next == std::string::npos || card[next] == '/';
    return ends ? value : card.substr(begin);
}

/// The first card of a keyword, as readers take it, or none.
const Card* cardOf(const Header& header, const std::string& keyword) {
    const auto found = std::find_if(header.begin(), header.end(), [&keyword](const Card& card) {
        return card.keyword == keyword;
    });
    return found == header.end() ? nullptr : &*found;
}

/// The same, in the first of a text's headers that has it.
const Card* cardOf(const HeaderText& text, const std::string& keyword) {
    for (const Header& header : text.headers()) {
        if (const Card* const card = cardOf(header, keyword)) return card;
    }
    return nullptr;
}

/// The keyword, unless it is missing, without value, or blank.
std::optional<Field> fieldOf(const HeaderText& header, const std::string& keyword) {
    const Card* const card = cardOf(header, keyword);
    if (card == nullptr) return std::nullopt;
    const std::string value = wholeValueOf(card->text);
    if (value.empty() || (isText(value) && textOf(value).empty())) return std::nullopt;
    return Field{keyword, value, card->number};
}

/// What `parse` makes of a field's value.
///
/// @throw Malformed  naming the keyword, where `parse` throws
template <typename Parse>
auto parsed(const Field& field, Parse parse) {
    try {
        return parse(field.value);
    } catch (const std::invalid_argument& error) {
        throw Malformed("no moon values: " + field.keyword + ": " + error.what(), field.line);
    }
}

/// The moon's values for a header; nothing where it has no position or no time.
std::optional<ZarnMoonVal> valuesFor(const HeaderText& header, Telescope telescope) {
    const std::optional<Field> ra = fieldOf(header, "RA");
    const std::optional<Field> dec = fieldOf(header, "DEC");
    const std::optional<Field> mjdObs = fieldOf(header, "MJD-OBS");
    const std::optional<Field> dateObs = fieldOf(header, "DATE-OBS");
    const std::optional<Field> equinox = fieldOf(header, "EQUINOX");
    const std::optional<Field> scale = fieldOf(header, "TIMESYS");
    if (!ra || !dec || (!mjdObs && !dateObs)) return std::nullopt;
    const Position position = {parsed(*ra, raOf), parsed(*dec, decOf)};
    const double mjd = mjdObs ? parsed(*mjdObs, mjdOf) : parsed(*dateObs, mjdOfDateObs);
    const double epoch = equinox ? parsed(*equinox, equinoxOf) : J2000_EPOCH;
    if (scale) parsed(*scale, checkTimeScale);
    const Position ofDate = precessed(position, epoch, mjd);
    return ZarnMoonVal(ofDate.ra, ofDate.dec, mjd, telescope);
}

double azimuthOf(const ZarnMoonVal& moon) {
    constexpr double ROUNDS_TO_CIRCLE = 359.995;
    return moon.getMoonAz() < ROUNDS_TO_CIRCLE ? moon.getMoonAz() : 0.0;
}

// In the order of the result. The series are good for 0.3 degrees: more digits would say nothing.
const struct Value {
    const char* keyword;
    double (*of)(const ZarnMoonVal&);
    const char* comment;
    int decimals;
    bool local;  ///< differs between places: the comment names the telescope
} VALUES[] = {
    {"MOONALT", [](const ZarnMoonVal& moon) { return moon.getMoonAlt(); },
     "[deg] moon altitude, no refraction", 2, true},
    {"MOONAZ", azimuthOf, "[deg] moon azimuth, N through E", 2, true},
    {"MOONDIST", [](const ZarnMoonVal& moon) { return moon.getMoonDistance(); },
     "[deg] angle between moon and RA, DEC", 2, true},
    {"MOONFLI", [](const ZarnMoonVal& moon) { return moon.getFLI(); },
     "illuminated fraction of the moon, 0 to 1", 3, true},
    {"MOONPHAS", [](const ZarnMoonVal& moon) { return moon.getMoonPhase(); },
     "age of the moon over mean synodic month", 3, false},
};

/// A value's card in the fixed format.
std::string cardLine(const Value& value, const ZarnMoonVal& moon, Telescope telescope) {
    const double unit = std::pow(10.0, value.decimals);
    const double rounded = std::round(value.of(moon) * unit) / unit + 0.0;  // no -0.00
    std::ostringstream card;
    card << std::left << std::setw(KEYWORD_WIDTH) << value.keyword << "= " << std::right
         << std::setw(VALUE_WIDTH) << std::fixed << std::setprecision(value.decimals) << rounded
         << " / " << value.comment;
    if (value.local) card << " (" << telescopeName(telescope) << ")";
    return card.str();
}

}  // namespace

MoonCards moonCards(const HeaderText& header, Telescope telescope) {
    MoonCards result;
    try {
        const std::optional<ZarnMoonVal> moon = valuesFor(header, telescope);
        result.state = moon ? MoonCards::State::GIVEN : MoonCards::State::WITHOUT;
        if (!moon) return result;
        for (const Value& value : VALUES) {
            const Card* const own = cardOf(header.headers().front(), value.keyword);
            if (own == nullptr) {
                result.lines.push_back(cardLine(value, *moon, telescope));
            } else {
                result.remarks.push_back(
                    {own->number, std::string(value.keyword) + " is there already and is kept"});
            }
        }
    } catch (const Malformed& problem) {
        result.state = MoonCards::State::MALFORMED;
        result.remarks = {{problem.line(), problem.what()}};
    }
    return result;
}
