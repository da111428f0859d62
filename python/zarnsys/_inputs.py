"""Array-likes of callers as arrays of doubles."""

from __future__ import annotations

from datetime import datetime, timedelta, timezone
from typing import Any, Tuple

import numpy as np
from numpy.typing import NDArray

_Doubles = NDArray[np.float64]
_MJD_0 = datetime(1858, 11, 17)
_DAY = np.timedelta64(1, "D")
_INSTANTS = "instants must be Modified Julian Dates, datetime64, datetime or astropy's Time"


def _array(values: Any, rule: str) -> NDArray[Any]:
    """An array, whose masked elements are not-a-number or no time."""
    if hasattr(values, "to_value"):  # a unit or scale, which NumPy would drop
        raise TypeError(f"{rule}, not {type(values).__name__}")
    if hasattr(values, "filled"):
        if values.dtype.kind in "iu":
            values = values.astype(np.float64)
        kind = values.dtype.kind
        values = values.filled(values.dtype.type("NaT") if kind in "mM" else np.nan)
    try:
        return np.asarray(values)
    except TypeError as error:
        raise TypeError(f"{rule}: {error}") from None


def _numbers(values: Any, rule: str) -> _Doubles:
    array = _array(values, rule)
    if array.dtype.kind not in "iuf":
        kind = type(values).__name__ if array.dtype.kind == "O" else array.dtype
        raise TypeError(f"{rule}, not {kind}")
    return array.astype(np.float64, copy=False)


def _one(array: _Doubles, rule: str) -> float:
    if array.ndim > 0:
        raise TypeError(f"{rule}, not an array")
    return float(array)


def number(value: Any, name: str) -> float:
    """The number that an argument is."""
    rule = f"{name} must be a number"
    return _one(_numbers(value, rule), rule)


def _in_degrees(angle: Any) -> Any:
    """A quantity's number of degrees; anything else as it is."""
    return angle.to_value("deg") if hasattr(angle, "to_value") else angle


def _degrees(angles: Any, rule: str) -> _Doubles:
    if isinstance(angles, (list, tuple)):
        angles = [_in_degrees(angle) for angle in angles]
    return _numbers(_in_degrees(angles), rule)


def angle(value: Any, name: str) -> float:
    """The angle that an argument is [deg]."""
    rule = f"{name} must be a number of degrees or a quantity"
    return _one(_degrees(value, rule), rule)


def _mjd_of_dates(dates: NDArray[np.datetime64]) -> _Doubles:
    # Days apart from the time of day: nanoseconds since 1858 would not fit into 64 bits.
    days = dates.astype("datetime64[D]")
    return np.asarray((days - np.datetime64(_MJD_0, "D")) / _DAY + (dates - days) / _DAY)


def _is_time(value: Any) -> bool:
    """Of astropy, which may not be installed; a TimeDelta is none."""
    return hasattr(value, "sidereal_time")


def _mjd_of(one: Any) -> float:
    """Of an instant of whatever kind; a datetime is in UTC if it says nothing else."""
    if isinstance(one, datetime):
        zone = None if one.tzinfo is None else timezone.utc
        return (one - _MJD_0.replace(tzinfo=zone)) / timedelta(days=1)
    if not _is_time(one) and np.asarray(one).dtype == object:
        raise TypeError(f"{_INSTANTS}, not {type(one).__name__}")
    return instant(one)


def instants(mjd: Any) -> _Doubles:
    """Modified Julian Dates [d]."""
    if _is_time(mjd):
        mjd = mjd.utc.to_value("mjd")
    array = _array(mjd, _INSTANTS)
    if array.dtype.kind == "O":
        return np.array([_mjd_of(one) for one in array.ravel()], np.float64).reshape(array.shape)
    if array.dtype.kind == "M":
        return _mjd_of_dates(array)
    return _numbers(array, _INSTANTS)


def instant(mjd: Any) -> float:
    """One Modified Julian Date [d]."""
    return _one(instants(mjd), "an instant must be one")


def targets(ra: Any, dec: Any) -> Tuple[_Doubles, _Doubles]:
    """Right ascensions and declinations [deg] of one shape."""
    rule = "must be numbers of degrees or quantities"
    ra, dec = np.broadcast_arrays(
        _degrees(ra, f"right ascensions {rule}"), _degrees(dec, f"declinations {rule}")
    )
    wrong = dec[np.abs(dec) > 90.0]
    if wrong.size > 0:
        raise ValueError(f"a declination is not from -90 to 90 degrees: {wrong[0]}")
    return ra, dec
