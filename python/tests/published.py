"""Formulas as they were published."""

import numpy as np


def moonlight(elongation, separation, moon_altitude, altitude, extinction):
    """Krisciunas & Schaefer 1991, equations 3, 8, 15, 20 and 21, in magnitudes."""
    alpha = 180.0 - elongation
    light = 10 ** (-0.4 * (3.84 + 0.026 * alpha + 4e-9 * alpha**4))
    cosine = np.cos(np.radians(separation))
    scattering = 10**5.36 * (1.06 + cosine**2) + 10 ** (6.15 - separation / 40.0)
    moon_air, air = (
        (1 - 0.96 * np.cos(np.radians(h)) ** 2) ** -0.5
        for h in (moon_altitude, altitude)
    )
    nanolamberts = (
        scattering
        * light
        * 10 ** (-0.4 * extinction * moon_air)
        * (1 - 10 ** (-0.4 * extinction * air))
    )
    return (20.7233 - np.log(nanolamberts / 34.08)) / 0.92104
