/// The night's table, row by row.
#ifndef ZARN_MOON_ROWS_H
#define ZARN_MOON_ROWS_H

#include <optional>
#include <vector>

#include "zarn-moon/night/Night.h"
#include "zarn-moon/settings/Settings.h"

/// A target at an instant. What would mean nothing is absent.
struct TargetValues {
    double altitude;                ///< [deg], without refraction
    double moonDistance;            ///< angle between moon and target [deg]
    std::optional<double> airmass;  ///< above the horizon only
    std::optional<double> moonSky;  ///< added by the moon [V mag per square arc second]; both up,
                                    ///< and the moon not negligible
    std::optional<double> sky;      ///< in all; target up, sun below -18 degrees
    bool best;                      ///< within the target's best window
};

struct Row {
    double mjd;
    double lst;  ///< [h]
    double sunAltitude;
    double moonAltitude;
    double moonAzimuth;
    double illumination;
    double phase;
    bool moonUp;
    std::vector<TargetValues> targets;  ///< in their order
};

/// The targets' places in the equinox of date.
std::vector<SkyPosition> placesOfDate(const Settings& settings, double mjd);

/// The instants of a night's table: whole steps of universal time from sunset to sunrise.
std::vector<MJD_DATE> instantsOf(const Night& night, double stepMinutes);

/// @param windows  the best window of each target; empty: not asked for
std::vector<Row> makeRows(const Settings& settings, const std::vector<MJD_DATE>& instants,
                          const std::vector<SkyPosition>& targets,
                          const std::vector<Window>& windows);

#endif  // ZARN_MOON_ROWS_H
