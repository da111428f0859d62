#include "zarn-ingest/header/moon/ExposureTime.h"

#include <algorithm>
#include <stdexcept>

#include "shared/sky/Angles.h"
#include "shared/sky/Calendar.h"
#include "zarn-ingest/header/moon/Fields.h"

namespace zarn::ingest {

namespace {

// What is plausible; outside, a placeholder or another unit is likelier than an exposure.
constexpr double FIRST_MJD = 1.0;      // 1858-11-18: MJD 0 stands where nobody knew the time
constexpr double LAST_MJD = 124593.0;  // 2200-01-01

constexpr std::size_t DATE_LENGTH = 10;  // of YYYY-MM-DD
constexpr double HOURS_PER_DAY = 24.0;

// In the order in which they are looked for.
constexpr const char* MJD_KEYWORDS[] = {"MJD-OBS", "MJD_OBS"};
constexpr const char* DATE_KEYWORDS[] = {"DATE-OBS", "DATE_OBS", "DATE-BEG"};
constexpr const char* TIME_KEYWORDS[] = {"TIME-OBS", "TIME_OBS", "TIME-BEG", "UTSTART", "UT-START",
                                         "UTC-OBS",  "UT-OBS",   "UTC",      "UT",      "TIME"};

template <typename Keywords>
std::optional<Field> firstOf(const HeaderText& text, const Keywords& keywords) {
    for (const char* keyword : keywords) {
        if (auto field = fieldOf(text, keyword)) return field;
    }
    return std::nullopt;
}

double mjdOf(const std::string& value) { return numberOf(value, FIRST_MJD, LAST_MJD); }

/// Whether a Modified Julian Date can be an exposure's: 0 often stands where nobody knew the time.
bool isPlausible(const std::string& value) {
    try {
        mjdOf(value);
        return true;
    } catch (const std::invalid_argument&) {
        return false;
    }
}

/// A date as YYYY-MM-DD, which may be written with slashes, or before 2000 as DD/MM/YY.
std::string dateIn(const std::string& text) {
    constexpr std::size_t OLD_LENGTH = 8;
    if (text.size() == OLD_LENGTH && text[2] == '/' && text[5] == '/')
        return "19" + text.substr(6, 2) + "-" + text.substr(3, 2) + "-" + text.substr(0, 2);
    std::string date = text.substr(0, DATE_LENGTH);
    for (const std::size_t at : {4U, 7U}) {
        if (date.size() == DATE_LENGTH && date[at] == '/') date[at] = '-';
    }
    return date;
}

/// An instant, whose parts a blank may divide and a Z may end.
double instantOf(const std::string& text) {
    std::string instant = dateIn(text) + text.substr(std::min(text.size(), DATE_LENGTH));
    if (instant.size() > DATE_LENGTH && instant[DATE_LENGTH] == ' ') instant[DATE_LENGTH] = 'T';
    if (instant.back() == 'Z') instant.pop_back();
    return mjdOfInstant(instant);
}

double plausible(double mjd, const std::string& value) {
    if (mjd < FIRST_MJD || mjd > LAST_MJD)
        refuseValue(value, "is not from 1858-11-18 to 2200-01-01");
    return mjd;
}

double mjdOfDateObs(const std::string& value) { return plausible(instantOf(textOf(value)), value); }

bool isDay(const std::string& value) {
    return isText(value) && textOf(value).size() <= DATE_LENGTH &&
           textOf(value).find_first_of("-/") != std::string::npos;
}

/// A text hh:mm:ss, or the same behind a date of its own, on the given day.
std::optional<double> timeOfDay(const std::string& value) {
    if (!isText(value)) return std::nullopt;
    const std::string text = textOf(value);
    const std::string time = text.substr(text.find_last_of("T ") + 1);
    if (time.find(':') == std::string::npos) return std::nullopt;
    try {
        return parseAngle(time, HOURS_PER_DAY, time) / HOURS_PER_DAY;
    } catch (const std::invalid_argument&) {
        return std::nullopt;  // another keyword may hold it
    }
}

ExposureTime onDay(const HeaderText& text, const Field& date) {
    const double day = parsed(date, [](const std::string& value) {
        return plausible(mjdOfDate(dateIn(textOf(value))), value);
    });
    for (const char* keyword : TIME_KEYWORDS) {
        const std::optional<Field> field = fieldOf(text, keyword);
        const std::optional<double> time = field ? timeOfDay(field->value) : std::nullopt;
        if (time) return {day + *time, field->keyword, field->line};
    }
    throw Malformed(
        date.keyword + ": holds the day alone, and no TIME-OBS, UT or the like the time",
        date.line);
}

}  // namespace

std::optional<ExposureTime> exposureTime(const HeaderText& text) {
    const std::optional<Field> day = firstOf(text, MJD_KEYWORDS);
    const std::optional<Field> field = firstOf(text, DATE_KEYWORDS);
    if (day && (!field || isPlausible(day->value)))
        return ExposureTime{parsed(*day, mjdOf), day->keyword, day->line};
    if (!field) return std::nullopt;
    if (isDay(field->value)) return onDay(text, *field);
    return ExposureTime{parsed(*field, mjdOfDateObs), field->keyword, field->line};
}

}  // namespace zarn::ingest
