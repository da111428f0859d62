#include "zarn-moon/night/ErfaEphemeris.h"

#include <erfa.h>
#include <erfam.h>

#include <cmath>
#include <utility>

#include "shared/sky/DeltaT.h"
#include "shared/sky/Units.h"
#include "zarn-moon/night/Apparent.h"
#include "zarn-moon/night/LibraryEphemeris.h"

namespace zarn::moon {

namespace {

/// Rotations that belong to a date: bias and precession by the IAU of 2006, nutation 2000B, which
/// is within 0.001 arc seconds of 2000A.
struct Frames {
    explicit Frames(double tt) {
        double longitude = 0;
        double obliquity = 0;
        double meanObliquity = 0;
        double bias[3][3];
        double precession[3][3];
        eraNut00b(ERFA_DJM0, tt, &longitude, &obliquity);
        eraPn06(ERFA_DJM0, tt, longitude, obliquity, &meanObliquity, bias, precession,
                toMean.matrix, nutation.matrix, toTrue.matrix);
    }

    Rotation toMean;    ///< from the celestial reference system to the mean equator and equinox
    Rotation nutation;  ///< from there to the true ones
    Rotation toTrue;    ///< both
};

/// The Greenwich apparent sidereal time around a date.
class SiderealClock {
public:
    SiderealClock(double mjd, double tt, const Rotation& toTrue) : mjd_(mjd) {
        Rotation rotation = toTrue;
        atDate_ = eraGst06(ERFA_DJM0, mjd, ERFA_DJM0, tt, rotation.matrix);
    }

    /// The time at a west longitude [deg]; 0 <= t < 24 [h].
    double operator()(double mjd, double longitude) const {
        constexpr double TURNS_PER_DAY = 1.00273790935;  // with the precession in right ascension
        const double turns = TURNS_PER_DAY * (mjd - mjd_);
        const double angle = atDate_ + ERFA_D2PI * turns - longitude / DEG_PER_RAD;
        const double hours = eraAnp(angle) * DEG_PER_RAD / DEG_PER_HOUR;
        return hours < HOURS_PER_DAY ? hours : 0.0;
    }

private:
    double mjd_;
    double atDate_;  ///< [rad]
};

/// From the Earth's centre to the observer in the frame of his horizon [Earth radii].
Vector observerAt(const Site& site) {
    const double latitude = site.latitude / DEG_PER_RAD;
    double metres[3];
    eraGd2gc(ERFA_WGS84, 0.0, latitude, site.elevation, metres);
    const double south = metres[0] / EARTH_RADIUS;
    const double pole = metres[2] / EARTH_RADIUS;
    return {south * std::cos(latitude) + pole * std::sin(latitude),
            pole * std::cos(latitude) - south * std::sin(latitude), 0.0};
}

/// The moon's age, for instants most of which are in the same lunation.
class Age {
public:
    explicit Age(const Ephemeris& ephemeris) : ephemeris_(ephemeris) {}

    /// [d]
    double operator()(double mjd) {
        if (mjd < begin_ || mjd >= end_) find(mjd);
        return mjd - begin_;
    }

private:
    /// The library's new moons are some minutes off: its lunation may be a neighbour.
    void find(double mjd) {
        const int lunation = lunationOf(mjd);
        begin_ = ephemeris_.phaseTime(lunation, 0);
        end_ = ephemeris_.phaseTime(lunation + 1, 0);
        if (mjd < begin_) {
            end_ = std::exchange(begin_, ephemeris_.phaseTime(lunation - 1, 0));
        } else if (mjd >= end_) {
            begin_ = std::exchange(end_, ephemeris_.phaseTime(lunation + 2, 0));
        }
    }

    const Ephemeris& ephemeris_;
    double begin_ = 0.0;
    double end_ = 0.0;  ///< equal to `begin_`: none was found yet
};

/// The fraction of the moon's disc that an observer sees lit.
double litFraction(const Vector& moon, const Vector& sun) {
    return (1.0 + cosineBetween(Vector{} - moon, sun - moon)) / 2.0;
}

/// Sun and moon during a day.
class Day {
public:
    /// @param begin, end  universal time [MJD]
    Day(double begin, double end)
        : deltaT_(deltaT(begin)),
          middle_((begin + end) / 2.0),
          frames_(middle_ + deltaT_),
          clock_(middle_, middle_ + deltaT_, frames_.toTrue),
          moon_(apparentMoon, frames_.toTrue, begin + deltaT_, end + deltaT_, MOON_STEP),
          sun_(apparentSun, frames_.toTrue, begin + deltaT_, end + deltaT_, SUN_STEP) {}

    /// Appends to a path what is seen at an instant [MJD]; the phase is left for others.
    void append(SkyPath& path, const Site& site, const Vector& observer, double mjd) const {
        MoonGrid& grid = path.moon;
        grid.siderealTime.push_back(clock_(mjd, site.longitude));
        const Horizon horizon(grid.siderealTime.back(), site.latitude);
        const Vector moon = horizon.turned(moon_(mjd + deltaT_)) - observer;
        const Vector sun = horizon.turned(sun_(mjd + deltaT_)) - observer;
        const double distance = lengthOf(moon);
        grid.altitude.push_back(altitudeOf(moon));
        grid.azimuth.push_back(azimuthOf(moon));
        grid.distance.push_back(distance);
        grid.elongation.push_back(angleBetween(moon, sun));
        grid.illumination.push_back(litFraction(moon, sun));
        path.instants.push_back(mjd);
        path.sunAltitudes.push_back(altitudeOf(sun));
        path.horizons.push_back(horizon);
        path.moonDirections.push_back(moon / distance);
    }

private:
    double deltaT_;
    double middle_;
    Frames frames_;
    SiderealClock clock_;
    Track moon_;
    Track sun_;
};

/// The first index from `begin` on that does not follow it within a day, in rising order.
std::size_t endOfDay(const std::vector<MJD_DATE>& instants, std::size_t begin) {
    std::size_t end = begin + 1;
    while (end < instants.size() && instants[end] >= instants[end - 1] &&
           instants[end] <= instants[begin] + 1.0)
        ++end;
    return end;
}

}  // namespace

SkyPath ErfaEphemeris::pathOver(const Site& site, const std::vector<MJD_DATE>& instants) const {
    const Vector observer = observerAt(site);
    SkyPath path;
    Age age(*this);
    for (std::size_t begin = 0; begin < instants.size();) {
        const std::size_t end = endOfDay(instants, begin);
        const Day day(instants[begin], instants[end - 1]);
        for (; begin < end; ++begin) {
            day.append(path, site, observer, instants[begin]);
            path.moon.phase.push_back(age(instants[begin]) / SYNODIC_MONTH);
        }
    }
    return path;
}

double ErfaEphemeris::phaseTime(int lunation, int phase) const {
    constexpr double DEG_PER_DAY = 12.19;  // mean motion of the moon from the sun
    constexpr double QUARTER = 90.0;       // [deg]
    const auto ahead = [phase](double tt) {
        return std::remainder(elongationInLongitude(tt) - QUARTER * phase, FULL_CIRCLE);
    };
    // The library's series is some minutes off: a line through two points near the phase is within
    // 0.1 s.
    const double near = LibraryEphemeris().phaseTime(lunation, phase);
    const double first = near + deltaT(near);
    const double aheadAtFirst = ahead(first);
    const double second = first - aheadAtFirst / DEG_PER_DAY;
    const double aheadAtSecond = ahead(second);
    const double tt = second == first ? first
                                      : second - aheadAtSecond * (second - first) /
                                                     (aheadAtSecond - aheadAtFirst);
    return tt - deltaT(tt);
}

std::vector<Direction> ErfaEphemeris::directionsOfDate(const std::vector<Position>& positions,
                                                       Equinox equinox, double mjd) const {
    const double tt = mjd + deltaT(mjd);
    const Frames frames(tt);
    const bool ofDate = equinox == Equinox::OF_DATE;
    const Rotation& rotation = ofDate ? frames.nutation : frames.toTrue;
    const Vector earth = ofDate ? frames.toMean(earthVelocity(tt)) : earthVelocity(tt);
    std::vector<Direction> directions;
    for (const auto& [ra, dec] : positions) {
        const Vector moved = directionOf({ra, dec}) + earth;  // by aberration
        directions.push_back(rotation(moved / lengthOf(moved)));
    }
    return directions;
}

}  // namespace zarn::moon
