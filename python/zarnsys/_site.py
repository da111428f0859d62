"""An observer's place."""

from __future__ import annotations

from dataclasses import dataclass
from math import isfinite
from typing import NamedTuple

from . import _core, _inputs


def _mirrored(longitude: float) -> float:
    """A longitude counted to the other side: east for people here, west for the library."""
    return -longitude


class _Place(NamedTuple):
    """A place as the library has it."""

    latitude: float
    west_longitude: float


@dataclass(frozen=True)
class Site:
    """An observer's place on the Earth.

    Parameters
    ----------
    latitude : float or quantity
        [deg], north positive, -90 to 90
    longitude : float or quantity
        [deg], EAST positive; whole circles more or less do not matter
    name : str
        for people only

    Raises
    ------
    ValueError
        for a latitude beyond a pole, and for coordinates that are not finite
    """

    latitude: float
    longitude: float
    name: str = ""

    def __post_init__(self) -> None:
        for name in ("latitude", "longitude"):
            object.__setattr__(self, name, _inputs.angle(getattr(self, name), f"the {name}"))
        if not -90.0 <= self.latitude <= 90.0:
            raise ValueError(f"the latitude is not from -90 to 90 degrees: {self.latitude}")
        if not isfinite(self.longitude):
            raise ValueError(f"the longitude is not finite: {self.longitude}")

    @classmethod
    def telescope(cls, name: str) -> Site:
        """The site of a telescope that the library knows, by its name in upper or lower case.

        Raises
        ------
        ValueError
            for another name; the message lists those that are known
        """
        if not isinstance(name, str):
            raise TypeError(f"the telescope must be a name, not {type(name).__name__}")
        latitude, west_longitude = _core.telescope(name)
        return cls(latitude, _mirrored(west_longitude), name.upper())


def place(site: Site) -> _Place:
    """Where a site is, for the library."""
    if not isinstance(site, Site):
        raise TypeError(
            "the site must be a Site(latitude, longitude) or Site.telescope(name), "
            f"not {type(site).__name__}"
        )
    return _Place(site.latitude, _mirrored(site.longitude))
