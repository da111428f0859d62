"""An observer's place."""

from __future__ import annotations

from dataclasses import dataclass
from math import isfinite
from typing import NamedTuple

from . import _core


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
    latitude : float
        [deg], north positive, -90 to 90
    longitude : float
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
        object.__setattr__(self, "latitude", float(self.latitude))
        object.__setattr__(self, "longitude", float(self.longitude))
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
        latitude, west_longitude = _core.telescope(name)
        return cls(latitude, _mirrored(west_longitude), name.upper())

    def _place(self) -> _Place:
        return _Place(self.latitude, _mirrored(self.longitude))
