/// The sites that users and administrators keep in files.
#ifndef ZARN_MOON_SITES_H
#define ZARN_MOON_SITES_H

#include <optional>
#include <string>
#include <vector>

#include "shared/cli/SettingRow.h"
#include "zarn-moon/settings/Site.h"

namespace zarn::moon {

/// A site of a file, with what else is known of it.
struct KnownSite {
    Site site = {"", 0.0, 0.0};
    std::string timeZone;              ///< as TZ has it; empty: the process's
    std::optional<double> extinction;  ///< at the zenith [mag per airmass]
    std::optional<double> darkSky;     ///< without moon [V mag per square arc second]
    std::optional<double> horizon;     ///< altitude below which no target can be seen [deg]
};

/// The administrator's file. It has this name whatever prefix the program was installed with.
inline constexpr char SYSTEM_SITES[] = "/etc/zarnsys/sites.ini";

void readLatitude(KnownSite& site, const std::string& text);
void readLongitude(KnownSite& site, const std::string& text);
void readElevation(KnownSite& site, const std::string& text);
void readTimeZone(KnownSite& site, const std::string& text);
void readSiteExtinction(KnownSite& site, const std::string& text);
void readSiteDarkSky(KnownSite& site, const std::string& text);
void readHorizon(KnownSite& site, const std::string& text);

/// What a site's section may hold.
inline constexpr SettingRow<KnownSite> SITE_ROWS[] = {
    {"latitude", '\0', "DEG", nullptr, Kinds<KnownSite>::Own{readLatitude}},
    {"longitude", '\0', "DEG", nullptr, Kinds<KnownSite>::Own{readLongitude}},
    {"elevation", '\0', "M", nullptr, Kinds<KnownSite>::Own{readElevation}},
    {"timezone", '\0', "ZONE", nullptr, Kinds<KnownSite>::Own{readTimeZone}},
    {"extinction", '\0', "X", nullptr, Kinds<KnownSite>::Own{readSiteExtinction}},
    {"dark-sky", '\0', "V", nullptr, Kinds<KnownSite>::Own{readSiteDarkSky}},
    {"horizon", '\0', "DEG", nullptr, Kinds<KnownSite>::Own{readHorizon}},
};

/// The files that have the sites unless others are given: the user's, in the directory of XDG for
/// settings, and the administrator's.
std::vector<std::string> defaultSiteFiles();

/// All sites of the files, the first of each name.
///
/// @param files  empty: the default ones, which may be missing
/// @throw UsageError  naming file, line, section and key of what is wrong
std::vector<KnownSite> sitesIn(const std::vector<std::string>& files);

/// The site of a name, in capitals or not, from the first file that has it.
///
/// @throw WrongValue  when no file has it
/// @throw UsageError  as above
KnownSite siteNamed(const std::string& name, const std::vector<std::string>& files);

}  // namespace zarn::moon

#endif  // ZARN_MOON_SITES_H
