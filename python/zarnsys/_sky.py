"""Moon, sun and sky."""

from __future__ import annotations

from typing import Any, NamedTuple, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _core, _inputs
from ._site import Site

Values = Union[np.float64, NDArray[np.float64]]

DARK_SKY = 21.8
EXTINCTION = 0.172

#: The names of the moon's phases, by the numbers that `phases` gives.
PHASES = ("new moon", "first quarter", "full moon", "last quarter")


class Moon(NamedTuple):
    """The moon's values at each instant, as the observer sees it."""

    altitude: Values
    """[deg], -90 to 90, without refraction"""
    azimuth: Values
    """[deg], 0 to 360, from north through east"""
    distance: Values
    """from the observer [Earth radii]"""
    elongation: Values
    """angle between sun and moon [deg], 0 new to 180 full"""
    illumination: Values
    """illuminated fraction, 0 to 1"""
    phase: Values
    """age over the mean synodic month: 0 new, near 0.5 full"""
    sidereal_time: Values
    """local mean sidereal time [h], 0 to 24"""


class Sun(NamedTuple):
    """The sun's place at each instant, in the equinox of date."""

    ra: Values
    """right ascension [deg], 0 to 360"""
    dec: Values
    """declination [deg]"""
    altitude: Values
    """[deg], without refraction"""


class Observation(NamedTuple):
    """What an observer has of each target at each instant."""

    altitude: Values
    """[deg], -90 to 90, without refraction"""
    airmass: Values
    """1 at the zenith; not-a-number below the horizon"""
    separation: Values
    """angle between moon and target [deg], 0 to 180"""
    moonlight: Values
    """brightness that the moon adds [V mag per square arc second]"""
    sky: Values
    """brightness of the sky with moonlight [V mag per square arc second]"""


class Position(NamedTuple):
    """Positions in the mean equinox of date."""

    ra: Values
    """right ascension [deg], 0 to 360"""
    dec: Values
    """declination [deg]"""


class Phases(NamedTuple):
    """Phases of the moon in rising order."""

    mjd: NDArray[np.float64]
    """instants [d], universal time"""
    phase: NDArray[np.intc]
    """which of `PHASES`: 0 new moon to 3 last quarter"""


def _value(array: NDArray[np.float64]) -> Values:
    return array if array.ndim > 0 else array[()]


def moon(mjd: Any, site: Site) -> Moon:
    """Where the moon is and how much of it is lit.

    Parameters
    ----------
    mjd : instants
    site : Site

    Returns
    -------
    Moon
        arrays of the instants' shape
    """
    return Moon(*map(_value, _core.moon(_inputs.instants(mjd), *site._place())))


def sun(mjd: Any, site: Site) -> Sun:
    """Where the sun is.

    Parameters
    ----------
    mjd : instants
    site : Site

    Returns
    -------
    Sun
        arrays of the instants' shape
    """
    return Sun(*map(_value, _core.sun(_inputs.instants(mjd), *site._place())))


def separation(ra: ArrayLike, dec: ArrayLike, mjd: Any, site: Site) -> Values:
    """Angle between moon and target.

    Parameters
    ----------
    ra, dec : array_like
        targets in the equinox of date [deg]
    mjd : instants
    site : Site

    Returns
    -------
    float or array
        [deg], 0 to 180, of the instants' shape and behind it the targets'

    Raises
    ------
    ValueError
        for a declination beyond a pole
    """
    ra, dec = _inputs.targets(ra, dec)
    return _value(_core.separation(ra, dec, _inputs.instants(mjd), *site._place()))


def observe(
    ra: ArrayLike,
    dec: ArrayLike,
    mjd: Any,
    site: Site,
    *,
    dark_sky: float = DARK_SKY,
    extinction: float = EXTINCTION,
) -> Observation:
    """All that `altitude`, `airmass`, `separation`, `moonlight` and `sky` give, computed once.

    Parameters
    ----------
    ra, dec : array_like
        targets in the equinox of date [deg]
    mjd : instants
    site : Site
    dark_sky : float
        brightness of the sky without moon [V mag per square arc second]
    extinction : float
        at the zenith [mag per airmass]

    Returns
    -------
    Observation
        arrays of the instants' shape and behind it the targets'

    Raises
    ------
    ValueError
        for a declination beyond a pole
    """
    ra, dec = _inputs.targets(ra, dec)
    grids = _core.observe(
        ra, dec, _inputs.instants(mjd), *site._place(), dark_sky, extinction
    )
    return Observation(*map(_value, grids))


def altitude(ra: ArrayLike, dec: ArrayLike, mjd: Any, site: Site) -> Values:
    """Altitude of targets [deg], without refraction; see `observe`."""
    return observe(ra, dec, mjd, site).altitude


def airmass(ra: ArrayLike, dec: ArrayLike, mjd: Any, site: Site) -> Values:
    """Airmass of targets, by Pickering 2002; not-a-number below the horizon; see `observe`."""
    return observe(ra, dec, mjd, site).airmass


def moonlight(
    ra: ArrayLike, dec: ArrayLike, mjd: Any, site: Site, *, extinction: float = EXTINCTION
) -> Values:
    """Brightness that the moon adds to the sky at targets [V mag per square arc second].

    By Krisciunas & Schaefer 1991; twilight is left out. Not-a-number while the moon or the target is
    below the horizon, and where the moonlight is negligible. See `observe`.
    """
    return observe(ra, dec, mjd, site, extinction=extinction).moonlight


def sky(
    ra: ArrayLike,
    dec: ArrayLike,
    mjd: Any,
    site: Site,
    *,
    dark_sky: float = DARK_SKY,
    extinction: float = EXTINCTION,
) -> Values:
    """Brightness of the sky at targets, dark sky and moonlight [V mag per square arc second].

    Twilight is left out. Not-a-number for targets below the horizon. See `observe`.
    """
    return observe(ra, dec, mjd, site, dark_sky=dark_sky, extinction=extinction).sky


def precess(ra: ArrayLike, dec: ArrayLike, mjd: Any) -> Position:
    """Positions of J2000 (or ICRS) in the mean equinox of date, by the IAU 2006 precession.

    Parameters
    ----------
    ra, dec : array_like
        mean positions of J2000 [deg]
    mjd : instants
        one for a night is enough: precession is 0.14 arc seconds a day

    Returns
    -------
    Position
        arrays [deg] of the instants' shape and behind it the targets'

    Raises
    ------
    ValueError
        for a declination beyond a pole
    """
    ra, dec = _inputs.targets(ra, dec)
    return Position(*map(_value, _core.precess(ra, dec, _inputs.instants(mjd))))


def phases(start: Any, stop: Any) -> Phases:
    """The moon's phases from `start` on and before `stop`.

    Parameters
    ----------
    start, stop : instant
        within 10,000 years of 1900

    Returns
    -------
    Phases
        arrays with an element for each phase

    Raises
    ------
    ValueError
        for other instants
    """
    return Phases(
        *_core.phases(float(_inputs.instants(start)), float(_inputs.instants(stop)))
    )
