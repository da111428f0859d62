/// The night's table, row by row.
#ifndef ZARN_MOON_ROWS_H
#define ZARN_MOON_ROWS_H

#include <optional>
#include <vector>

#include "zarn-moon/night/Night.h"
#include "zarn-moon/settings/Settings.h"

namespace zarn::moon {

/// A target at an instant. A value that would have no meaning is absent.
struct TargetValues {
    double altitude;                ///< [deg], without refraction
    double moonDistance;            ///< angle between moon and target [deg]
    std::optional<double> airmass;  ///< above the horizon only
    std::optional<double> moonSky;  ///< added by the moon [V mag per square arc second], if both
                                    ///< are up and it is not negligible
    std::optional<double> sky;      ///< total brightness, if the target is up and the sun below
                                    ///< -18 degrees
    bool best;                      ///< within the target's best window
};

/// The sky at an instant. Altitudes are without refraction.
struct Row {
    double mjd;
    double lst;           ///< local sidereal time [h]
    double sunAltitude;   ///< [deg]
    double moonAltitude;  ///< [deg]
    double moonAzimuth;   ///< [deg], from north over east
    double illumination;  ///< fraction of the moon's disc
    double phase;         ///< age over the mean synodic month
    bool moonUp;
    std::vector<TargetValues> targets;  ///< in the order of the settings
};

/// The airmass at an altitude [deg] above the horizon, by Pickering 2002, DIO 12, 3.
double airmassAt(double altitude);

/// The directions of the settings' targets at a date [MJD].
std::vector<Direction> directionsOfDate(const Settings& settings, const Ephemeris& ephemeris,
                                        double mjd);

/// The values of a target at the i-th instant of a path, which may be that of a whole night.
TargetValues valuesOf(const Settings& settings, const SkyPath& sky, std::size_t i,
                      const Direction& target);

/// The instants of a night's table [MJD]: from sunset to sunrise, whole steps after 0 h UT.
std::vector<MJD_DATE> instantsOf(const Ephemeris& ephemeris, const Night& night,
                                 double stepMinutes);

/// The rows of a table, one per instant of the path.
///
/// @param windows  the best window of each target; empty: not asked for
std::vector<Row> makeRows(const Settings& settings, const SkyPath& sky,
                          const std::vector<Direction>& targets,
                          const std::vector<Window>& windows);

}  // namespace zarn::moon

#endif  // ZARN_MOON_ROWS_H
