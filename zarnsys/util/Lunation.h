/// The search for the lunation of an instant, behind `lun_age` and the moon grid.
#ifndef ZARNSYS_UTIL_LUNATION_H
#define ZARNSYS_UTIL_LUNATION_H

/// A lunation, as `flmoon` counts them. Times are Julian Dates [d].
struct Lunation {
    int number;
    double newMoon;      ///< that it begins with; not a number: none was found
    double uncertainty;  ///< of that against what `flmoon` gives [d], at most
    double after;        ///< instants after this one, up to the next, are in it for certain
    double until;
};

/// The lunation of an instant, by the search that `lun_age` describes.
Lunation findLunation(double jd);

/// Puts what `flmoon` gives in the place of the new moon.
void makeExact(Lunation& lunation);

/// Whether `findLunation` would find this lunation again for another instant; false when in doubt.
inline bool holds(const Lunation& lunation, double jd) {
    return lunation.after < jd && jd <= lunation.until;
}

/// The moon's age at an instant of a lunation, see `lun_age`: to the last bit as from the new moon
/// that `flmoon` gives, which is computed where it matters.
inline float ageIn(Lunation& lunation, double jd) {
    const auto least = static_cast<float>(jd - (lunation.newMoon + lunation.uncertainty));
    const auto most = static_cast<float>(jd - (lunation.newMoon - lunation.uncertainty));
    if (!(least < most)) return most;
    makeExact(lunation);
    return static_cast<float>(jd - lunation.newMoon);
}

#endif  // ZARNSYS_UTIL_LUNATION_H
