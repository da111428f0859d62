/// What a run of zarn-moon is asked to do.
#ifndef ZARN_MOON_SETTINGS_H
#define ZARN_MOON_SETTINGS_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "zarn-moon/settings/Site.h"
#include "zarn-moon/settings/Targets.h"

namespace zarn::moon {

/// With more targets the lines of a picture cannot be told apart.
inline constexpr std::size_t MOST_DRAWN_TARGETS = 12;

/// Forms of the result, in the order of the option's words.
enum class Format { TABLE, CSV, JSON, ICS };

/// To which equinox the targets' positions refer, in the order of the option's words.
enum class Equinox { J2000, OF_DATE };

/// Theories of sun and moon, in the order of the option's words.
enum class Theory { ERFA, LIBRARY };

/// How far from the moon a target must be.
struct MoonAvoidance {
    double degrees;  ///< at full moon
    double days;     ///< from full moon, at which half of the angle is enough
};

/// Everything that options set. A member holds its default until then.
struct Settings {
    std::vector<std::string> sites;  ///< files of sites; none: the default ones
    Site site = {};
    std::string timeZone;           ///< of the site; empty: the process's
    std::optional<double> horizon;  ///< of the site, below which no target can be seen [deg]
    std::vector<Target> targets;
    Equinox equinox = Equinox::J2000;
    Theory ephemeris = Theory::ERFA;

    double date = 0.0;          ///< 0 h of the day that the night begins on [MJD]
    std::optional<double> mjd;  ///< one instant instead of a night [d]
    unsigned nights = 0;        ///< number of nights, one line each; 0: the table of one night
    double step = 30.0;         ///< time between rows of the table [minutes]

    double extinction = 0.172;  ///< at the zenith [mag per airmass]
    double darkSky = 21.8;      ///< without moon [V mag per square arc second]

    // Limits within which a target can be observed.
    std::optional<double> minAltitude;           ///< [deg]
    std::optional<double> maxAirmass;            ///< at least 1
    std::optional<double> minMoonDistance;       ///< while the moon is up [deg]
    std::optional<MoonAvoidance> moonAvoidance;  ///< likewise
    std::optional<double> maxSky;                ///< brightest sky [V mag per square arc second]
    std::optional<double> sunAltitude;           ///< the sun must be below it [deg]; absent: -18

    double now = 0.0;    ///< when the program was asked [MJD]
    bool local = false;  ///< also show local times
    Format format = Format::TABLE;
    std::string output;       ///< file; empty: standard output
    std::string plot;         ///< file of the picture; empty: none
    bool help = false;        ///< show the help, and do nothing else
    bool version = false;     ///< likewise the version
    bool completion = false;  ///< likewise the completion script
    bool listSites = false;   ///< likewise the sites of the files
};

}  // namespace zarn::moon

#endif  // ZARN_MOON_SETTINGS_H
