/// Eclipses of the moon.
#ifndef ZARN_MOON_ECLIPSES_H
#define ZARN_MOON_ECLIPSES_H

#include <optional>
#include <string>
#include <vector>

#include "zarn-moon/night/Night.h"

namespace zarn::moon {

/// A moment of an eclipse.
struct Contact {
    std::string name;  ///< as "partial begin"
    double mjd;
    bool moonUp = false;  ///< at the site
};

/// An eclipse of the moon.
struct Eclipse {
    std::string kind;               ///< total, partial or penumbral
    double magnitude;               ///< most of the moon's diameter in the umbra; negative: none
    std::vector<Contact> contacts;  ///< in order, from penumbra to penumbra
};

/// What is there of an eclipse's contacts, in order; an eclipse has those that its kind comes to.
inline constexpr const char* CONTACTS[] = {"penumbral begin",  "partial begin", "total begin",
                                           "greatest eclipse", "total end",     "partial end",
                                           "penumbral end"};

/// The eclipse during which the moon is up for some time of a night, if there is one.
///
/// The times are those of the Earth's shadow and ERFA's moon, whatever the night's theory; that
/// says whether the moon is up. The shadow is enlarged by Danjon's rule, as in Espenak & Meeus
/// 2009, NASA/TP-2009-214172.
std::optional<Eclipse> eclipseIn(const Ephemeris& ephemeris, const Night& night);

}  // namespace zarn::moon

#endif  // ZARN_MOON_ECLIPSES_H
