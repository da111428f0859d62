"""Moon, sun and sky.

Overloads give scalars for scalars and else arrays.
"""

# Scalars are array-likes as well: mypy must take the first overload that fits.
# mypy: disable-error-code=misc

from __future__ import annotations

from datetime import datetime
from typing import Any, Generic, NamedTuple, TypeVar, Union, overload

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _core, _inputs
from ._site import Site, place

Array = NDArray[np.float64]
Number = Union[float, np.floating[Any], np.integer[Any]]
Instant = Union[Number, datetime, np.datetime64]
Either = Union[float, Array]
Values = TypeVar("Values", bound=Either)

DARK_SKY = 21.8
EXTINCTION = 0.172

#: The names of the moon's phases, by the numbers that `phases` gives.
PHASES = ("new moon", "first quarter", "full moon", "last quarter")


class Moon(NamedTuple, Generic[Values]):
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


class Sun(NamedTuple, Generic[Values]):
    """The sun's place at each instant, in the equinox of date."""

    ra: Values
    """right ascension [deg], 0 to 360"""
    dec: Values
    """declination [deg]"""
    altitude: Values
    """[deg], without refraction"""


class Observation(NamedTuple, Generic[Values]):
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


class Position(NamedTuple, Generic[Values]):
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


def _value(array: Array) -> Either:
    return array if array.ndim > 0 else array[()]


@overload
def moon(mjd: Instant, site: Site) -> Moon[float]: ...
@overload
def moon(mjd: Any, site: Site) -> Moon[Array]: ...
def moon(mjd: Any, site: Site) -> Moon[Any]:
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
    return Moon(*map(_value, _core.moon(_inputs.instants(mjd), *place(site))))


@overload
def sun(mjd: Instant, site: Site) -> Sun[float]: ...
@overload
def sun(mjd: Any, site: Site) -> Sun[Array]: ...
def sun(mjd: Any, site: Site) -> Sun[Any]:
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
    return Sun(*map(_value, _core.sun(_inputs.instants(mjd), *place(site))))


@overload
def separation(ra: Number, dec: Number, mjd: Instant, site: Site) -> float: ...
@overload
def separation(ra: ArrayLike, dec: ArrayLike, mjd: Any, site: Site) -> Array: ...
def separation(ra: ArrayLike, dec: ArrayLike, mjd: Any, site: Site) -> Either:
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
    return _value(_core.separation(ra, dec, _inputs.instants(mjd), *place(site)))


@overload
def observe(
    ra: Number, dec: Number, mjd: Instant, site: Site, *,
    dark_sky: float = ..., extinction: float = ...,
) -> Observation[float]: ...
@overload
def observe(
    ra: ArrayLike, dec: ArrayLike, mjd: Any, site: Site, *,
    dark_sky: float = ..., extinction: float = ...,
) -> Observation[Array]: ...
def observe(
    ra: ArrayLike,
    dec: ArrayLike,
    mjd: Any,
    site: Site,
    *,
    dark_sky: float = DARK_SKY,
    extinction: float = EXTINCTION,
) -> Observation[Any]:
    """All that `altitude`, `airmass`, `separation`, `moonlight` and `sky` give, computed once.

    Parameters
    ----------
    ra, dec : array_like
        targets in the equinox of date [deg]
    mjd : instants
    site : Site
    dark_sky : float
        brightness of the sky without moon [V mag per square arc second], 10 to 30
    extinction : float
        at the zenith [mag per airmass], 0 to 10

    Returns
    -------
    Observation
        arrays of the instants' shape and behind it the targets'

    Raises
    ------
    ValueError
        for a declination beyond a pole, and for conditions out of range
    """
    ra, dec = _inputs.targets(ra, dec)
    grids = _core.observe(
        ra,
        dec,
        _inputs.instants(mjd),
        *place(site),
        _inputs.number(dark_sky, "dark_sky"),
        _inputs.number(extinction, "extinction"),
    )
    return Observation(*map(_value, grids))


@overload
def altitude(ra: Number, dec: Number, mjd: Instant, site: Site) -> float: ...
@overload
def altitude(ra: ArrayLike, dec: ArrayLike, mjd: Any, site: Site) -> Array: ...
def altitude(ra: ArrayLike, dec: ArrayLike, mjd: Any, site: Site) -> Either:
    """Altitude of targets, without refraction.

    Parameters
    ----------
    ra, dec : array_like
        targets in the equinox of date [deg]
    mjd : instants
    site : Site

    Returns
    -------
    float or array
        [deg], -90 to 90, of the instants' shape and behind it the targets'

    Raises
    ------
    ValueError
        for a declination beyond a pole
    """
    return observe(ra, dec, mjd, site).altitude


@overload
def airmass(ra: Number, dec: Number, mjd: Instant, site: Site) -> float: ...
@overload
def airmass(ra: ArrayLike, dec: ArrayLike, mjd: Any, site: Site) -> Array: ...
def airmass(ra: ArrayLike, dec: ArrayLike, mjd: Any, site: Site) -> Either:
    """Airmass of targets, by Pickering 2002; not-a-number below the horizon.

    Parameters
    ----------
    ra, dec : array_like
        targets in the equinox of date [deg]
    mjd : instants
    site : Site

    Returns
    -------
    float or array
        1 to 38.7, of the instants' shape and behind it the targets'

    Raises
    ------
    ValueError
        for a declination beyond a pole
    """
    return observe(ra, dec, mjd, site).airmass


@overload
def moonlight(
    ra: Number, dec: Number, mjd: Instant, site: Site, *, extinction: float = ...
) -> float: ...
@overload
def moonlight(
    ra: ArrayLike, dec: ArrayLike, mjd: Any, site: Site, *, extinction: float = ...
) -> Array: ...
def moonlight(
    ra: ArrayLike, dec: ArrayLike, mjd: Any, site: Site, *, extinction: float = EXTINCTION
) -> Either:
    """Brightness that the moon adds to the sky at targets.

    By Krisciunas & Schaefer 1991; twilight is left out. Not-a-number while the moon or the target is
    below the horizon, and where the moonlight is negligible.

    Parameters
    ----------
    ra, dec : array_like
        targets in the equinox of date [deg]
    mjd : instants
    site : Site
    extinction : float
        at the zenith [mag per airmass], 0 to 10

    Returns
    -------
    float or array
        [V mag per square arc second], of the instants' shape and behind it the targets'

    Raises
    ------
    ValueError
        for a declination beyond a pole, and for an extinction out of range
    """
    return observe(ra, dec, mjd, site, extinction=extinction).moonlight


@overload
def sky(
    ra: Number, dec: Number, mjd: Instant, site: Site, *,
    dark_sky: float = ..., extinction: float = ...,
) -> float: ...
@overload
def sky(
    ra: ArrayLike, dec: ArrayLike, mjd: Any, site: Site, *,
    dark_sky: float = ..., extinction: float = ...,
) -> Array: ...
def sky(
    ra: ArrayLike,
    dec: ArrayLike,
    mjd: Any,
    site: Site,
    *,
    dark_sky: float = DARK_SKY,
    extinction: float = EXTINCTION,
) -> Either:
    """Brightness of the sky at targets, dark sky and moonlight.

    Twilight is left out. Not-a-number for targets below the horizon.

    Parameters
    ----------
    ra, dec : array_like
        targets in the equinox of date [deg]
    mjd : instants
    site : Site
    dark_sky : float
        brightness of the sky without moon [V mag per square arc second], 10 to 30
    extinction : float
        at the zenith [mag per airmass], 0 to 10

    Returns
    -------
    float or array
        [V mag per square arc second], of the instants' shape and behind it the targets'

    Raises
    ------
    ValueError
        for a declination beyond a pole, and for conditions out of range
    """
    return observe(ra, dec, mjd, site, dark_sky=dark_sky, extinction=extinction).sky


@overload
def precess(ra: Number, dec: Number, mjd: Instant) -> Position[float]: ...
@overload
def precess(ra: ArrayLike, dec: ArrayLike, mjd: Any) -> Position[Array]: ...
def precess(ra: ArrayLike, dec: ArrayLike, mjd: Any) -> Position[Any]:
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
    return Phases(*_core.phases(_inputs.instant(start), _inputs.instant(stop)))
