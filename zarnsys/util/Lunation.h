/// The search for the lunation of an instant, behind `lun_age` and the moon grid.
#ifndef ZARNSYS_UTIL_LUNATION_H
#define ZARNSYS_UTIL_LUNATION_H

/// A lunation, as `flmoon` counts them.
struct Lunation {
    int number;
    double newMoon;      ///< that it begins with, Julian Date [d]; not a number: none was found
    double uncertainty;  ///< of that against what `flmoon` gives [d], at most
    double lastsUntil;   ///< for certain, Julian Date [d]: at most the next new moon
};

/// The lunation of an instant, by the search that `lun_age` describes.
Lunation findLunation(double jd);

/// Whether `findLunation` would find this lunation again for another instant; false when in doubt.
bool holds(const Lunation& lunation, double jd);

/// The moon's age at an instant of a lunation, see `lun_age`: to the last bit that of the new moon
/// by `flmoon`, which takes its place in the lunation where its uncertainty matters.
float ageIn(Lunation& lunation, double jd);

#endif  // ZARNSYS_UTIL_LUNATION_H
