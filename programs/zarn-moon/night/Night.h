/// A night at a site: sun and moon minute by minute, and what happens when.
#ifndef ZARN_MOON_NIGHT_H
#define ZARN_MOON_NIGHT_H

#include <zarnsys/util/MoonGrid.h>

#include <string>
#include <vector>

#include "zarn-moon/settings/Site.h"

/// Altitudes [deg] at which something begins or ends.
constexpr double HORIZON = -0.833;  ///< of a centre, as the upper limb meets the horizon
constexpr double CIVIL_TWILIGHT = -6.0;
constexpr double NAUTICAL_TWILIGHT = -12.0;
constexpr double ASTRONOMICAL_TWILIGHT = -18.0;

/// From local mean noon to the next, both included. Times are MJD, universal time.
struct Night {
    Site site;
    double date;                       ///< 0 h of the day that it begins on [d]
    std::vector<MJD_DATE> minutes;     ///< every minute from noon to noon
    std::vector<double> sunAltitudes;  ///< at each of them [deg]
    MoonGrid moon;                     ///< at each of them
};

Night makeNight(const Site& site, double date);

/// The sun's altitude [deg], without refraction, where it is `lst` hours of sidereal time.
double sunAltitude(double mjd, double lst, double latitude);

/// What happens in a night, as often as it does: none, one, seldom two times.
struct Event {
    std::string name;  ///< as "moonrise" or "civil dusk"
    std::vector<double> times;
};

/// The twilights, rise, set and the moon's upper transit. One that begins and ends within a minute
/// is not noticed.
std::vector<Event> eventsOf(const Night& night);

/// Of the moon's four phases each comes once.
struct Phase {
    std::string name;  ///< as "first quarter"
    double mjd;
};

/// The next four phases after an instant.
std::vector<Phase> nextPhases(double mjd);

/// What the moon does to a night.
struct Summary {
    double astronomicalHours;  ///< with the sun below -18 degrees
    double darkHours;          ///< of these, those with the moon below the horizon
    double illumination;       ///< at the middle between the two noons
    double moonPhase;          ///< age over the mean synodic month, at the same instant
    std::string word;          ///< dark, grey or bright
};

/// The rule for the word, for the help.
extern const char* const RULE_OF_WORDS;

Summary summaryOf(const Night& night);

/// A stretch of a night.
struct Window {
    double begin;
    double end;
    bool moonDown;  ///< all the time
};

/// Of the stretches with the sun below -18 degrees and a target at least at an altitude, the
/// longest without moon if that lasts an hour, else the longest. `begin` equal to `end`: there is
/// none.
Window bestWindow(const Night& night, const SkyPosition& target, double leastAltitude);

/// A target's altitude [deg], without refraction.
double altitudeOf(const SkyPosition& target, double lst, double latitude);

#endif  // ZARN_MOON_NIGHT_H
