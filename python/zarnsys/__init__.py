"""Moon, sun and sky for schedulers, over the library ZarnSysUtil.

Angles are in degrees, longitudes positive to the east, instants Modified Julian Dates in universal
time, for which ``datetime64``, ``datetime`` and astropy's ``Time`` are taken as well. Positions are
in the mean equinox of date: `precess` brings those of J2000 there.

Arguments may be scalars or arrays of any shape. A result has the shape of the instants and behind it
that of the targets, to which right ascensions and declinations broadcast; scalars alone give a
scalar. Not-a-number stands for what an input that is not finite leaves open, and for what a function
says. All functions may run in several threads at once.
"""

from ._core import __version__
from ._fits import FitsError, header_to_fits
from ._site import Site
from ._sky import (
    PHASES,
    Moon,
    Observation,
    Phases,
    Position,
    Sun,
    airmass,
    altitude,
    moon,
    moonlight,
    observe,
    phases,
    precess,
    separation,
    sky,
    sun,
)

__all__ = [
    "PHASES",
    "FitsError",
    "Moon",
    "Observation",
    "Phases",
    "Position",
    "Site",
    "Sun",
    "__version__",
    "airmass",
    "altitude",
    "header_to_fits",
    "moon",
    "moonlight",
    "observe",
    "phases",
    "precess",
    "separation",
    "sky",
    "sun",
]
