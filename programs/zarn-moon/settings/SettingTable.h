/// Every option of zarn-moon.
///
/// A new one is a row here, a member of Settings that its row names, and a paragraph in the manual.
#ifndef ZARN_MOON_SETTINGTABLE_H
#define ZARN_MOON_SETTINGTABLE_H

#include <string>

#include "shared/cli/SettingTable.h"
#include "shared/sky/SkyLimits.h"
#include "shared/sky/Telescopes.h"
#include "zarn-moon/settings/Settings.h"

namespace zarn::moon {

/// The theories hold for some decades around 2000; these are where they must not be asked [MJD].
inline constexpr double FIRST_MJD = 15385.0;  ///< 1901-01-01
inline constexpr double LAST_MJD = 124592.0;  ///< 2199-12-31

inline constexpr unsigned MOST_NIGHTS = 3700;  ///< ten years
inline constexpr double LEAST_STEP = 0.1;      ///< [minutes]
inline constexpr double MOST_STEP = 720.0;     ///< [minutes]
inline constexpr double ZENITH = 90.0;         ///< [deg]
inline constexpr double HALF_CIRCLE = 180.0;   ///< [deg]
inline constexpr double MOST_AIRMASS = 38.0;   ///< less than at the horizon
inline constexpr double SEMESTER_STEP = 5.0;   ///< unless another is given [minutes]

/// Readers of values that have a form of their own.
void readTelescope(Settings& settings, const std::string& name);
void readSite(Settings& settings, const std::string& name);
void readPlace(Settings& settings, const std::string& coordinates);
void readDate(Settings& settings, const std::string& date);
void readTarget(Settings& settings, const std::string& position);
void readTargetFile(Settings& settings, const std::string& fileName);
void readOutput(Settings& settings, const std::string& fileName);
void readMoonAvoidance(Settings& settings, const std::string& value);
void readSunAltitude(Settings& settings, const std::string& degrees);
void readPlot(Settings& settings, const std::string& fileName);

using MoonKinds = Kinds<Settings>;
inline constexpr char NO_LETTER = GenConfig::NO_SHORT_NAME;
inline constexpr const char* NO_SECTION = nullptr;  ///< zarn-moon has no properties file

inline constexpr SettingRow<Settings> SETTINGS[] = {
    // Where. The files of sites are read before the site is looked for in them.
    {"telescope", 'T', TELESCOPES, "Use the site of a telescope", MoonKinds::Own{readTelescope}},
    {"place", 'p', "PLACE", "Latitude and longitude with their letters: \"42.5N 12.3E\"",
     MoonKinds::Own{readPlace}},
    {"sites", NO_LETTER, "FILE", "Look for sites in FILE instead; may be repeated",
     &Settings::sites, NO_SECTION, "~/.config/zarnsys/sites.ini and /etc/zarnsys/sites.ini"},
    {"site", NO_LETTER, "SITE", "Use a site of the user's or the system's file, with its sky",
     MoonKinds::Own{readSite}},
    {"list-sites", NO_LETTER, "", "List the sites that --site takes", &Settings::listSites},

    // When.
    {"date", 'd', "YYYY-MM-DD", "The night that begins on this date, from local mean noon to noon",
     MoonKinds::Own{readDate}, NO_SECTION, "tonight"},
    {"mjd", NO_LETTER, "X", "One instant, a Modified Julian Date, instead of a night",
     MoonKinds::OptionalNumber{&Settings::mjd, FIRST_MJD, LAST_MJD}},
    {"nights", NO_LETTER, "N", "One line per night for N nights, and for each target",
     MoonKinds::Whole{&Settings::nights, 1, MOST_NIGHTS}},
    {"step", 's', "MINUTES", "Time between two rows of the night's table",
     MoonKinds::Number{&Settings::step, LEAST_STEP, MOST_STEP}},

    // What the observer looks at.
    {"target", 't', "RA DEC",
     "A position: \"83.82 -5.39\" or \"05:35:17.3 -05:23:28\"; may be repeated",
     MoonKinds::Each{readTarget}},
    {"targets", NO_LETTER, "FILE",
     "Read targets from FILE (-: standard input), one per line: name, RA, DEC, ...",
     MoonKinds::Each{readTargetFile}},
    {"equinox", NO_LETTER, "J2000|date", "Equinox of the targets' positions",
     choice<&Settings::equinox, Settings>()},

    // Limits. They bound a target's best window, and what counts in a semester.
    {"min-altitude", NO_LETTER, "DEG", "Mark each target's best window above this altitude",
     MoonKinds::OptionalNumber{&Settings::minAltitude, 0.0, ZENITH}},
    {"max-airmass", NO_LETTER, "X", "Observe targets within this airmass only",
     MoonKinds::OptionalNumber{&Settings::maxAirmass, 1.0, MOST_AIRMASS}},
    {"min-moon-distance", NO_LETTER, "DEG",
     "Observe targets this far from the moon only, while it is up",
     MoonKinds::OptionalNumber{&Settings::minMoonDistance, 0.0, HALF_CIRCLE}},
    {"moon-avoidance", NO_LETTER, "DEG,DAYS",
     "Least distance from the moon: DEG at full moon, half of that DAYS from it",
     MoonKinds::Own{readMoonAvoidance}},
    {"max-sky", NO_LETTER, "V", "Observe targets only where the sky is no brighter than this",
     MoonKinds::OptionalNumber{&Settings::maxSky, BRIGHTEST_DARK_SKY, DARKEST_SKY}},
    {"sun-altitude", NO_LETTER, "DEG", "Observe targets only while the sun is below this altitude",
     MoonKinds::Own{readSunAltitude}, NO_SECTION, "-18"},

    // The sky: behind the site, whose values these override.
    {"ephemeris", NO_LETTER, "erfa|library", "Theory of sun and moon",
     choice<&Settings::ephemeris, Settings>()},
    {"dark-sky", NO_LETTER, "V", "Sky brightness without moon [V mag per square arc second]",
     MoonKinds::Number{&Settings::darkSky, BRIGHTEST_DARK_SKY, DARKEST_SKY}},
    {"extinction", 'k', "X", "Extinction at the zenith [mag per airmass]",
     MoonKinds::Number{&Settings::extinction, 0.0, MOST_EXTINCTION}},

    // The result.
    {"format", NO_LETTER, "table|csv|json|ics", "Format of the result",
     choice<&Settings::format, Settings>()},
    {"local", NO_LETTER, "", "Also show local times, in the site's time zone or TZ",
     &Settings::local},
    {"output", 'o', "FILE", "Write the result to FILE, complete or not at all",
     MoonKinds::Own{readOutput}, NO_SECTION, "standard output"},
    {"plot", NO_LETTER, "FILE", "Draw the night or nights into FILE.png or FILE.svg, with gnuplot",
     MoonKinds::Own{readPlot}},

    {"help", 'h', "", "Show this help", &Settings::help},
    {"version", 'V', "", "Show the version", &Settings::version},
    {"bash-completion", NO_LETTER, "", "Write a completion script for bash", &Settings::completion},
    {"zsh-completion", NO_LETTER, "", "Write a completion script for zsh", &Settings::completion},
    {"fish-completion", NO_LETTER, "", "Write a completion script for fish", &Settings::completion},
};

/// Options that exclude each other.
inline constexpr const char* EXCLUSIONS[][2] = {
    {"telescope", "place"},    {"telescope", "site"},
    {"place", "site"},         {"date", "mjd"},
    {"mjd", "nights"},         {"mjd", "plot"},
    {"mjd", "step"},           {"mjd", "min-altitude"},
    {"mjd", "max-airmass"},    {"mjd", "min-moon-distance"},
    {"mjd", "moon-avoidance"}, {"mjd", "max-sky"},
    {"mjd", "sun-altitude"},
};

/// Options that say nothing without a target.
inline constexpr const char* LIMITS[] = {"min-altitude",   "max-airmass", "min-moon-distance",
                                         "moon-avoidance", "max-sky",     "sun-altitude"};

}  // namespace zarn::moon

#endif  // ZARN_MOON_SETTINGTABLE_H
