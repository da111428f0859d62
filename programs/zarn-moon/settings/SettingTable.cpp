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

void readPlot(Settings& settings, const std::string& fileName) {
    if (!endsIn(fileName, ".png") && !endsIn(fileName, ".svg"))
        throw WrongValue("a name that ends in .png or .svg");
    settings.plot = fileName;
}

}  // namespace zarn::moon
