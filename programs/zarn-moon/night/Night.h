/// A night at a site: sun and moon minute by minute, and what happens when.
#ifndef ZARN_MOON_NIGHT_H
#define ZARN_MOON_NIGHT_H

#include <string>
#include <vector>

#include "zarn-moon/night/Ephemeris.h"
#include "zarn-moon/settings/Site.h"

namespace zarn::moon {

/// Altitudes [deg] of the centre of sun or moon at which something begins or ends.
inline constexpr double HORIZON = SkyGrid::HORIZON;  ///< rise and set of the upper limb
inline constexpr double CIVIL_TWILIGHT = -6.0;
inline constexpr double NAUTICAL_TWILIGHT = -12.0;
inline constexpr double ASTRONOMICAL_TWILIGHT = -18.0;

/// A night from local mean noon to the next, both included, minute by minute.
struct Night : SkyPath {
    Site site;
    double date;  ///< 0 h of the day that it begins on [MJD]
};

/// Computes the sun and the moon for a night.
///
/// @param date  0 h of the day that it begins on [MJD]
Night makeNight(const Ephemeris& ephemeris, const Site& site, double date);

/// The instant halfway between a night's two noons [MJD].
double middleOf(const Night& night);

/// Something that happens in a night: at no, one or, rarely, two times.
struct Event {
    std::string name;           ///< as "moonrise" or "civil dusk"
    std::vector<double> times;  ///< [MJD], in order
};

/// The twilights, rise, set and the moon's upper transit. What begins and ends within the same
/// minute goes unnoticed.
std::vector<Event> eventsOf(const Night& night);

/// The times of one of a night's events, by its name.
const std::vector<double>& timesOf(const std::vector<Event>& events, const std::string& name);

/// Where the sun is between the two noons.
enum class SunCourse { SETS, UP, DOWN };  // above and below the horizon, or all day on one side

/// The day's light. Of the twilights it has those that occur, civil ones first.
struct Daylight {
    SunCourse course;
    std::vector<std::string> twilights;
};

Daylight daylightOf(const Night& night);

/// One of the moon's four phases, new moon to last quarter.
struct Phase {
    std::string name;  ///< as "first quarter"
    double mjd;
};

/// The phases after an instant [MJD] and up to an end, in order; the next time of each at least.
std::vector<Phase> nextPhases(const Ephemeris& ephemeris, double mjd, double end);

/// How the moon affects a night.
struct Summary {
    double astronomicalHours;  ///< with the sun below -18 degrees
    double darkHours;          ///< the part of them with the moon below the horizon
    double illumination;       ///< fraction of the disc, halfway between the two noons
    double moonPhase;          ///< age over the mean synodic month, at the same instant
    std::string word;          ///< dark, grey or bright
};

/// The rule for `Summary::word`, for the help.
inline constexpr char RULE_OF_WORDS[] =
    R"(A night is dark when the moon is less than 25 % lit or up for less than a tenth
of the time with the sun below -18 degrees; bright when it is more than 65 % lit
and up for more than half of that time, or when there is no such time; else grey.)";

/// Sums up a night. Hours are counted in whole minutes.
Summary summaryOf(const Night& night);

/// A stretch of a night [MJD].
struct Window {
    double begin;
    double end;     ///< equal to `begin`: there is no such stretch
    bool moonDown;  ///< from begin to end
};

/// A target's best window: of the stretches that are allowed, the longest without moon if it lasts
/// an hour, else the longest.
///
/// @param allowed  one element per minute, see `Limits`
Window bestWindow(const Night& night, const std::vector<bool>& allowed);

/// Whether the sun is below -18 degrees and the moon below the horizon.
///
/// @param minute  from noon on
bool isDark(const Night& night, std::size_t minute);

/// The stretches of dark minutes, in order.
std::vector<Window> darkWindows(const Night& night);

}  // namespace zarn::moon

#endif  // ZARN_MOON_NIGHT_H
