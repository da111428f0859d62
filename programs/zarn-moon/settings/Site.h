/// The sites that nights are computed for.
#ifndef ZARN_MOON_SITE_H
#define ZARN_MOON_SITE_H

#include <zarnsys/util/MoonGrid.h>

#include <string>

namespace zarn::moon {

/// A site on the Earth.
struct Site {
    std::string name;        ///< as messages and results call it
    double latitude;         ///< [deg], north positive
    double longitude;        ///< [deg], WEST positive
    double elevation = 0.0;  ///< above the ellipsoid [m]
};

/// The site of a telescope.
///
/// @throw WrongValue  listing the names, for any other name
Site telescopeSite(const std::string& name);

/// The site at a latitude and longitude, in degrees or sexagesimal, each followed by the letter of
/// its hemisphere, such as "42.5N 12.3E".
///
/// @throw std::invalid_argument  saying what is wrong
Site siteAt(const std::string& text);

/// A latitude or a longitude with the letter of its hemisphere, in degrees, as `Site` has them.
///
/// @throw std::invalid_argument  saying what is wrong
double parseLatitude(const std::string& text);
double parseLongitude(const std::string& text);

/// Where a site is, as the library's grids take it.
Place placeOf(const Site& site);

/// Local mean noon of a day whose 0 h is `date` [MJD].
double noonOf(const Site& site, double date);

/// The night that an instant [MJD] belongs to: 0 h of the day that it begins on [MJD].
double nightOf(const Site& site, double mjd);

/// Latitude and longitude with the letters of their hemispheres, and the elevation unless it is 0.
std::string coordinates(const Site& site);

}  // namespace zarn::moon

#endif  // ZARN_MOON_SITE_H
