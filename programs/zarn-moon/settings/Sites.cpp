#include "zarn-moon/settings/Sites.h"

#include <zarnsys/util/StringUtils.h>
#include <zarnsys/util/WexoProperties.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "shared/cli/Printable.h"
#include "shared/cli/PropertiesFile.h"
#include "shared/cli/PropertyReader.h"
#include "shared/cli/UsageError.h"
#include "shared/sky/SkyLimits.h"
#include "zarn-moon/settings/SettingTable.h"
#include "zarn-moon/settings/TimeZone.h"

namespace zarn::moon {

namespace {

constexpr double LOWEST_SITE = -500.0;   // [m]
constexpr double HIGHEST_SITE = 9000.0;  // [m]

[[noreturn]] void refuseSite(const std::string& fileName, const std::string& name,
                             const std::string& problem) {
    throw UsageError(printable(fileName) + ": [" + printable(name) + "]: " + problem);
}

/// Makes sure that a name can be typed and completed without quotes, and means one section: a slash
/// would begin another one within.
void checkName(const std::string& fileName, const std::string& name) {
    const auto isPlain = [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= 0x80 || std::isalnum(byte) != 0 || c == '.' || c == '_' || c == '-';
    };
    if (name.front() == '-' || !std::all_of(name.begin(), name.end(), isPlain) ||
        printable(name) != name)
        refuseSite(fileName, name, "the name of a site has letters, digits, '.', '_' and '-' only");
}

/// The file's place for a message about a key.
std::string placeOf(const std::string& fileName, const std::string& name, const std::string& key) {
    const std::size_t line = lineOf(fileName, name, key);
    return line == 0 ? fileName : fileName + ":" + std::to_string(line);
}

/// Reads a site's section, whose keys it takes away.
KnownSite readSection(const std::string& fileName, const std::string& name, PropertyKeys& keys) {
    checkName(fileName, name);
    KnownSite known;
    known.site.name = name;
    for (const SettingRow<KnownSite>& row : SITE_ROWS) {
        const bool isThere = keys.erase({name, row.name}) > 0;
        const bool mustBe =
            std::string(row.name) == "latitude" || std::string(row.name) == "longitude";
        if (!isThere && mustBe) refuseSite(fileName, name, std::string(row.name) + " is missing");
        if (isThere) readProperty(placeOf(fileName, name, row.name), name, row, known);
    }
    if (!keys.empty() && keys.begin()->first == name) {
        const std::string& key = keys.begin()->second;
        throw UsageError(printable(placeOf(fileName, name, key)) + ": [" + name +
                         "] has an unknown key " + printable(key));
    }
    return known;
}

std::vector<KnownSite> sitesOf(const std::string& fileName) {
    checkPropertiesFile(fileName);
    if (WexoProperties::instance()->load(fileName) != 0)
        throw UsageError(printable(fileName) + ": cannot be read");
    std::vector<KnownSite> sites;
    PropertyKeys keys = keysIn(fileName);
    while (!keys.empty()) {
        const std::string name = keys.begin()->first;
        sites.push_back(readSection(fileName, name, keys));
    }
    return sites;
}

/// The user's file; empty if the environment names no directory.
std::string userSites() {
    const auto named = [](const char* variable) {
        const char* const value = std::getenv(variable);
        return std::filesystem::path(value != nullptr ? value : "");
    };
    std::filesystem::path directory = named("XDG_CONFIG_HOME");
    if (!directory.is_absolute()) directory = named("HOME") / ".config";
    return directory.is_absolute() ? (directory / "zarnsys/sites.ini").string() : "";
}

bool isMissing(const std::string& fileName) {
    std::error_code error;
    return std::filesystem::status(fileName, error).type() == std::filesystem::file_type::not_found;
}

/// The files to read: those given, or those of the default ones that are there.
std::vector<std::string> filesToRead(std::vector<std::string> files) {
    if (!files.empty()) return files;
    files = defaultSiteFiles();
    files.erase(std::remove_if(files.begin(), files.end(), isMissing), files.end());
    return files;
}

/// The site of a name, whatever its capitals; null: none.
const KnownSite* findSite(const std::vector<KnownSite>& sites, const std::string& name) {
    const auto found = std::find_if(sites.begin(), sites.end(), [&name](const KnownSite& known) {
        return ZarnSys::lower(known.site.name) == ZarnSys::lower(name);
    });
    return found == sites.end() ? nullptr : &*found;
}

}  // namespace

void readLatitude(KnownSite& site, const std::string& text) {
    site.site.latitude = parseLatitude(text);
}

void readLongitude(KnownSite& site, const std::string& text) {
    site.site.longitude = parseLongitude(text);
}

void readElevation(KnownSite& site, const std::string& text) {
    site.site.elevation = parseNumber(text, LOWEST_SITE, HIGHEST_SITE);
}

void readTimeZone(KnownSite& site, const std::string& text) {
    if (text.empty()) throw WrongValue("a time zone");
    checkTimeZone(text);
    site.timeZone = text;
}

void readSiteExtinction(KnownSite& site, const std::string& text) {
    site.extinction = parseNumber(text, 0.0, MOST_EXTINCTION);
}

void readSiteDarkSky(KnownSite& site, const std::string& text) {
    site.darkSky = parseNumber(text, BRIGHTEST_DARK_SKY, DARKEST_SKY);
}

void readHorizon(KnownSite& site, const std::string& text) {
    site.horizon = parseNumber(text, 0.0, ZENITH);
}

std::vector<std::string> defaultSiteFiles() {
    const std::string user = userSites();
    if (user.empty()) return {SYSTEM_SITES};
    return {user, SYSTEM_SITES};
}

std::vector<KnownSite> sitesIn(const std::vector<std::string>& files) {
    std::vector<KnownSite> all;
    for (const std::string& fileName : filesToRead(files)) {
        for (KnownSite& known : sitesOf(fileName)) {
            if (findSite(all, known.site.name) == nullptr) all.push_back(std::move(known));
        }
    }
    return all;
}

KnownSite siteNamed(const std::string& name, const std::vector<std::string>& files) {
    for (const std::string& fileName : filesToRead(files)) {
        const std::vector<KnownSite> sites = sitesOf(fileName);
        if (const KnownSite* const known = findSite(sites, name)) return *known;
    }
    std::string searched;
    for (const std::string& fileName : files.empty() ? defaultSiteFiles() : files)
        searched += (searched.empty() ? "" : " or ") + printable(fileName);
    throw WrongValue("a site of " + searched);
}

}  // namespace zarn::moon
