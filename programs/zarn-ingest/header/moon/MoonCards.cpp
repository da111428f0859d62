#include "zarn-ingest/header/moon/MoonCards.h"

#include <zarnsys/util/StringUtils.h>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iterator>
#include <optional>

#include "shared/cli/BeginsWith.h"
#include "shared/cli/TextStreams.h"
#include "shared/sky/Angles.h"
#include "shared/sky/Precession.h"
#include "shared/sky/Telescopes.h"
#include "shared/sky/Units.h"
#include "zarn-ingest/header/moon/ExposureTime.h"
#include "zarn-ingest/header/moon/Fields.h"

namespace zarn::ingest {

namespace {

// What is plausible; outside, another unit is likelier.
constexpr double FIRST_EQUINOX = 1800;  // [yr]
constexpr double LAST_EQUINOX = 2200;

// Columns of a card in the fixed format: keyword, "= ", and the value, which ends in column 30.
constexpr int KEYWORD_WIDTH = 8;
constexpr int VALUE_WIDTH = 20;

// Time scales that are less than two minutes from universal time today.
constexpr const char* TIME_SCALES[] = {"UTC", "UT", "UT1", "GMT", "TAI", "IAT", "TT",
                                       "TDT", "ET", "TDB", "TCG", "TCB", "GPS"};

/// When an exposure was made, and the moon then.
struct Moment {
    ExposureTime time;
    ZarnMoonVal moon;
};

/// An angle of two or three parts, with colons between them where blanks may stand, too.
std::string sexagesimalOf(const std::string& value) {
    std::vector<std::string> parts;
    ZarnSys::split(textOf(value), " ", parts);
    std::string angle;
    for (const std::string& part : parts) angle += (angle.empty() ? "" : ":") + part;
    if (angle.find(':') == std::string::npos)
        refuseValue(value, "is neither a number nor of the form 12:34:56.7");
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

/// A year, which texts may hold as 'J2000.0' or '2000'.
double equinoxOf(const std::string& value) {
    const std::string year = isText(value) ? textOf(value) : value;
    const bool isMarked = isText(value) && (beginsWith(year, "J") || beginsWith(year, "B"));
    return numberOf(isMarked ? year.substr(1) : year, FIRST_EQUINOX, LAST_EQUINOX);
}

/// Makes sure that a time scale is near universal time; its realisation is no matter: TT(TAI).
void checkTimeScale(const std::string& value) {
    const std::string scale = textOf(value);
    const std::string name = scale.substr(0, scale.find('('));
    const bool isNear =
        std::find(std::begin(TIME_SCALES), std::end(TIME_SCALES), name) != std::end(TIME_SCALES);
    if (!isNear) refuseValue(value, "is no time scale near universal time");
}

/// The moon's values for a text's headers, and when they hold; nothing where there is no position
/// or no time.
std::optional<Moment> valuesFor(const HeaderText& text, Telescope telescope) {
    const std::optional<Field> ra = fieldOf(text, "RA");
    const std::optional<Field> dec = fieldOf(text, "DEC");
    if (!ra || !dec) return std::nullopt;
    const std::optional<ExposureTime> time = exposureTime(text);
    if (!time) return std::nullopt;
    const std::optional<Field> equinox = fieldOf(text, "EQUINOX");
    const std::optional<Field> scale = fieldOf(text, "TIMESYS");
    const Position position = {parsed(*ra, raOf), parsed(*dec, decOf)};
    const double epoch = equinox ? parsed(*equinox, equinoxOf) : J2000_EPOCH;
    if (scale) parsed(*scale, checkTimeScale);
    const Position ofDate = precessed(position, epoch, time->mjd);
    return Moment{*time, ZarnMoonVal(ofDate.ra, ofDate.dec, time->mjd, telescope)};
}

// In the order of the result. The series are up to 0.38 degrees off: more digits would say nothing.
const struct Value {
    const char* keyword;
    double (*of)(const ZarnMoonVal&);
    const char* comment;
    int decimals;
    bool local;  ///< differs between places: the comment names the telescope
} VALUES[] = {
    {"MOONALT", [](const ZarnMoonVal& moon) { return moon.getMoonAlt(); },
     "[deg] moon altitude, no refraction", 2, true},
    {"MOONAZ", [](const ZarnMoonVal& moon) { return moon.getMoonAz(); },
     "[deg] moon azimuth, N through E", 2, true},
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
    const double rounded = std::round(value.of(moon) * unit) / unit;
    TextWriter card;
    card << std::left << std::setw(KEYWORD_WIDTH) << value.keyword << "= " << std::right
         << std::setw(VALUE_WIDTH) << std::fixed << std::setprecision(value.decimals)
         << std::fmod(rounded, FULL_CIRCLE) + 0.0  // neither 360.00 nor -0.00
         << " / " << value.comment;
    if (value.local) card << " (" << telescopeName(telescope) << ")";
    return card.str();
}

}  // namespace

MoonCards moonCards(const HeaderText& text, Telescope telescope) {
    MoonCards result;
    try {
        const std::optional<Moment> moment = valuesFor(text, telescope);
        result.state = moment ? MoonCards::State::GIVEN : MoonCards::State::WITHOUT;
        if (!moment) return result;
        const auto& [mjd, keyword, line] = moment->time;
        if (keyword != "MJD-OBS" && keyword != "DATE-OBS")
            result.remarks.push_back(
                {line, "the moon's values are for the time in " + keyword, false});
        for (const Value& value : VALUES) {
            const Card* const own = cardOf(text.headers().front(), value.keyword);
            if (own == nullptr) {
                result.lines.push_back(cardLine(value, moment->moon, telescope));
            } else {
                result.remarks.push_back(
                    {own->number, std::string(value.keyword) + " is there already and is kept",
                     true});
            }
        }
    } catch (const Malformed& problem) {
        result.state = MoonCards::State::MALFORMED;
        result.remarks = {{problem.line(), std::string("no moon values: ") + problem.what(), true}};
    }
    return result;
}

}  // namespace zarn::ingest
