#include <cmath>
#include <nlohmann/json.hpp>

#include "shared/sky/Calendar.h"
#include "zarn-moon/forms/Report.h"
#include "zarn-moon/forms/Texts.h"

namespace zarn::moon {

namespace {

using Json = nlohmann::ordered_json;

/// A number with this many decimals.
double rounded(double number, int decimals) {
    const double scale = std::pow(10.0, decimals);
    return std::round(number * scale) / scale + 0.0;  // no -0
}

/// The same on a circle: what would be rounded up to the full circle is 0.
double onCircle(double number, int decimals, double circle) {
    const double result = rounded(number, decimals);
    return result < circle ? result : 0.0;
}

Json orNull(const std::optional<double>& number, int decimals) {
    return number ? Json(rounded(*number, decimals)) : Json();
}

/// A time, by the minute.
Json timeOf(double mjd, bool local) {
    Json time = {{"utc", utcMinute(mjd)}};
    if (local) time["local"] = localMinute(mjd);
    return time;
}

/// An eclipse, or null.
Json eclipseOf(const std::optional<Eclipse>& eclipse, bool local) {
    if (!eclipse) return {};
    Json contacts = Json::object();
    for (const Contact& contact : eclipse->contacts) {
        Json& entry = contacts[keyOf(contact.name)] = timeOf(contact.mjd, local);
        entry["moon_up"] = contact.moonUp;
    }
    return {{"kind", eclipse->kind},
            {"magnitude", rounded(eclipse->magnitude, FRACTION_DECIMALS)},
            {"contacts", contacts}};
}

Json nightOf(const NightLine& line, bool local) {
    // A null that becomes an object without memory for it crashes when it is destroyed.
    Json events = Json::object();
    for (const Event& event : line.events) {
        const std::string key = keyOf(event.name);
        events[key] = Json::array();
        for (const double time : event.times) events[key].push_back(timeOf(time, local));
    }
    const Summary& summary = line.summary;
    return {{"night", dateOf(line.date)},
            {"word", summary.word},
            {"astronomical_hours", rounded(summary.astronomicalHours, HOURS_DECIMALS)},
            {"dark_hours", rounded(summary.darkHours, HOURS_DECIMALS)},
            {"illumination", rounded(summary.illumination, FRACTION_DECIMALS)},
            {"phase", rounded(summary.moonPhase, FRACTION_DECIMALS)},
            {"sun", keyOf(line.daylight.course)},
            {"twilights", line.daylight.twilights},
            {"events", events},
            {"eclipse", eclipseOf(line.eclipse, local)}};
}

/// A window, or null for none.
Json windowOf(const Window& window, bool local) {
    if (window.begin == window.end) return {};
    return {{"begin", timeOf(window.begin, local)},
            {"end", timeOf(window.end, local)},
            {"moon_up", !window.moonDown}};
}

/// The dates of a season's best nights, the best first.
Json bestOf(const Report& report, const Season& season) {
    Json dates = Json::array();
    for (const std::size_t i : bestNights(season)) dates.push_back(dateOf(report.nights[i].date));
    return dates;
}

/// A target with its best window or best nights, if those were asked for.
Json targetOf(const Report& report, std::size_t i) {
    const Target& asked = report.settings.targets[i];
    Json target = {{"name", asked.name},
                   {"ra_deg", onCircle(asked.position.ra, POSITION_DECIMALS, FULL_CIRCLE)},
                   {"dec_deg", rounded(asked.position.dec, POSITION_DECIMALS)},
                   {"equinox", report.settings.equinox == Equinox::OF_DATE ? "date" : "J2000"}};
    if (asked.minAltitude) target["min_altitude_deg"] = *asked.minAltitude;
    if (asked.weight) target["weight"] = *asked.weight;
    for (const auto& [title, text] : asked.columns) target["columns"][title] = text;
    if (!report.seasons.empty()) target["best_nights"] = bestOf(report, report.seasons[i]);
    if (!report.windows.empty())
        target["best_window"] = windowOf(report.windows[i], report.settings.local);
    return target;
}

Json valuesOf(const TargetValues& values) {
    return {{"alt_deg", rounded(values.altitude, ANGLE_DECIMALS)},
            {"airmass", orNull(values.airmass, FRACTION_DECIMALS)},
            {"moon_dist_deg", rounded(values.moonDistance, SEPARATION_DECIMALS)},
            {"moon_sky_mag", orNull(values.moonSky, BRIGHTNESS_DECIMALS)},
            {"sky_mag", orNull(values.sky, BRIGHTNESS_DECIMALS)}};
}

Json rowOf(const Row& row, bool local) {
    Json json = {{"utc", utcSecond(row.mjd)}, {"mjd", rounded(row.mjd, MJD_DECIMALS)}};
    if (local) json["local"] = localSecond(row.mjd);
    json["lst_h"] = onCircle(row.lst, SIDEREAL_DECIMALS, HOURS_PER_DAY);
    json["sun_alt_deg"] = rounded(row.sunAltitude, ANGLE_DECIMALS);
    json["moon_alt_deg"] = rounded(row.moonAltitude, ANGLE_DECIMALS);
    json["moon_az_deg"] = onCircle(row.moonAzimuth, ANGLE_DECIMALS, FULL_CIRCLE);
    json["illumination"] = rounded(row.illumination, FRACTION_DECIMALS);
    json["phase"] = rounded(row.phase, FRACTION_DECIMALS);
    json["moon_up"] = row.moonUp;
    json["targets"] = Json::array();
    for (const TargetValues& values : row.targets) json["targets"].push_back(valuesOf(values));
    return json;
}

/// The site, with what its file says of it.
Json siteOf(const Settings& settings) {
    Json site = {{"name", settings.site.name},
                 {"latitude_deg", settings.site.latitude},
                 {"longitude_west_deg", settings.site.longitude}};
    if (settings.site.elevation != 0.0) site["elevation_m"] = settings.site.elevation;
    if (settings.horizon) site["horizon_deg"] = *settings.horizon;
    if (!settings.timeZone.empty()) site["timezone"] = settings.timeZone;
    return site;
}

Json seasonNightOf(const NightLine& line, const Target& target, const TargetNight& night,
                   bool local) {
    return {{"night", dateOf(line.date)},
            {"target", target.name},
            {"usable_hours", rounded(night.usableHours, HOURS_DECIMALS)},
            {"dark_equivalent_hours", rounded(night.darkEquivalentHours, WORTH_DECIMALS)},
            {"rank", night.rank > 0 ? Json(night.rank) : Json()},
            {"best_window", windowOf(night.best, local)}};
}

/// A value on one line. Replacement characters take the place of what is not UTF-8.
std::string dumped(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// An array. It may be very long: each element becomes text by itself, on a line of its own.
template <typename Element>
std::string linesOf(std::size_t size, Element element) {
    std::string text = "[";
    for (std::size_t i = 0; i < size; ++i) text += (i > 0 ? ",\n  " : "\n  ") + dumped(element(i));
    return text + (size == 0 ? "]" : "\n ]");
}

/// The targets' nights, all targets of a night together.
std::string seasonsOf(const Report& report) {
    const std::size_t targets = report.seasons.size();
    return linesOf(targets * report.nights.size(), [&report, targets](std::size_t i) {
        const std::size_t night = i / targets;
        const std::size_t target = i % targets;
        return seasonNightOf(report.nights[night], report.settings.targets[target],
                             report.seasons[target][night], report.settings.local);
    });
}

Json limitsOf(const Settings& settings) {
    const auto orAbsent = [](const std::optional<double>& limit) {
        return limit ? Json(*limit) : Json();
    };
    const std::optional<MoonAvoidance>& avoidance = settings.moonAvoidance;
    return {{"min_altitude_deg", orAbsent(settings.minAltitude)},
            {"max_airmass", orAbsent(settings.maxAirmass)},
            {"min_moon_distance_deg", orAbsent(settings.minMoonDistance)},
            {"moon_avoidance_deg", avoidance ? Json(avoidance->degrees) : Json()},
            {"moon_avoidance_days", avoidance ? Json(avoidance->days) : Json()},
            {"max_sky_mag", orAbsent(settings.maxSky)},
            {"sun_altitude_deg", settings.sunAltitude.value_or(ASTRONOMICAL_TWILIGHT)}};
}

}  // namespace

std::string jsonOf(const Report& report) {
    constexpr int INDENT = 1;
    const Settings& settings = report.settings;
    const bool local = settings.local;
    Json json = {{"site", siteOf(settings)},
                 {"ephemeris", settings.ephemeris == Theory::ERFA ? "erfa" : "library"},
                 {"extinction", settings.extinction},
                 {"dark_sky_mag", settings.darkSky}};
    if (!report.seasons.empty()) json["limits"] = limitsOf(settings);
    json["nights"] = Json::array();
    json["phases"] = Json::array();
    json["targets"] = Json::array();
    for (const NightLine& line : report.nights) json["nights"].push_back(nightOf(line, local));
    for (const Phase& phase : report.phases) {
        Json entry = timeOf(phase.mjd, local);
        entry["phase"] = phase.name;
        json["phases"].push_back(entry);
    }
    for (std::size_t i = 0; i < settings.targets.size(); ++i)
        json["targets"].push_back(targetOf(report, i));
    // Replacement characters take the place of what is not UTF-8: an exception would end the
    // program.
    std::string text = json.dump(INDENT, ' ', false, Json::error_handler_t::replace);
    const auto row = [&report, local](std::size_t i) { return rowOf(report.rows[i], local); };
    text.replace(text.rfind('\n'), std::string::npos,
                 ",\n \"instants\": " + linesOf(report.rows.size(), row));
    if (!report.seasons.empty()) text += ",\n \"semester\": " + seasonsOf(report);
    return text + "\n}\n";
}

}  // namespace zarn::moon
