from typing import Tuple

import numpy as np
from numpy.typing import NDArray

__version__: str

_Doubles = NDArray[np.float64]

def moon(
    mjd: _Doubles, latitude: float, west_longitude: float
) -> Tuple[_Doubles, _Doubles, _Doubles, _Doubles, _Doubles, _Doubles, _Doubles]: ...
def sun(
    mjd: _Doubles, latitude: float, west_longitude: float
) -> Tuple[_Doubles, _Doubles, _Doubles]: ...
def separation(
    ra: _Doubles, dec: _Doubles, mjd: _Doubles, latitude: float, west_longitude: float
) -> _Doubles: ...
def observe(
    ra: _Doubles,
    dec: _Doubles,
    mjd: _Doubles,
    latitude: float,
    west_longitude: float,
    dark_sky: float,
    extinction: float,
) -> Tuple[_Doubles, _Doubles, _Doubles, _Doubles, _Doubles]: ...
def precess(ra: _Doubles, dec: _Doubles, mjd: _Doubles) -> Tuple[_Doubles, _Doubles]: ...
def phases(start: float, stop: float) -> Tuple[_Doubles, NDArray[np.intc]]: ...
def telescope(name: str) -> Tuple[float, float]: ...
def header_to_fits(header_name: str, fits_name: bytes) -> Tuple[int, str]: ...
