#include "zarn-moon/settings/SettingTable.h"

#include <stdexcept>
#include <utility>

#include "shared/sky/Calendar.h"
#include "zarn-moon/settings/Sites.h"

namespace zarn::moon {

namespace {

bool endsIn(const std::string& text, const std::string& end) {
    return text.size() > end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

}  // namespace

void readTelescope(Settings& settings, const std::string& name) {
    settings.site = telescopeSite(name);
}

void readSite(Settings& settings, const std::string& name) {
    const KnownSite known = siteNamed(name, settings.sites);
    settings.site = known.site;
    settings.timeZone = known.timeZone;
    settings.horizon = known.horizon;
    settings.extinction = known.extinction.value_or(settings.extinction);
    settings.darkSky = known.darkSky.value_or(settings.darkSky);
}

void readPlace(Settings& settings, const std::string& coordinates) {
    settings.site = siteAt(coordinates);
}

void readDate(Settings& settings, const std::string& date) {
    settings.date = mjdOfDate(date);
    if (settings.date < FIRST_MJD || settings.date > LAST_MJD)
        throw WrongValue("from " + dateOf(FIRST_MJD) + " to " + dateOf(LAST_MJD));
}

void readTarget(Settings& settings, const std::string& position) {
    settings.targets.push_back({position, parsePosition(position)});
}

void readTargetFile(Settings& settings, const std::string& fileName) {
    for (Target& target : readTargets(fileName)) settings.targets.push_back(std::move(target));
}

void readOutput(Settings& settings, const std::string& fileName) {
    if (fileName.empty()) throw std::invalid_argument("the name is empty");
    settings.output = fileName == STANDARD_STREAM ? "" : fileName;
}

void readMoonAvoidance(Settings& settings, const std::string& value) {
    constexpr double LEAST_DAYS = 0.1;
    constexpr double MOST_DAYS = 30.0;
    const std::string::size_type comma = value.find(',');
    if (comma == std::string::npos) throw WrongValue("an angle and days such as 120,7");
    settings.moonAvoidance = {parseNumber(value.substr(0, comma), 0.0, HALF_CIRCLE),
                              parseNumber(value.substr(comma + 1), LEAST_DAYS, MOST_DAYS)};
}

void readSunAltitude(Settings& settings, const std::string& degrees) {
    settings.sunAltitude = parseNumber(degrees, -ZENITH, 0.0);
}

void readPlot(Settings& settings, const std::string& fileName) {
    if (!endsIn(fileName, ".png") && !endsIn(fileName, ".svg"))
        throw WrongValue("a name that ends in .png or .svg");
    settings.plot = fileName;
}

}  // namespace zarn::moon
