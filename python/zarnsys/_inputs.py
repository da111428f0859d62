"""Array-likes of callers as arrays of doubles."""

from __future__ import annotations

from datetime import datetime, timezone
from typing import Any, Tuple

import numpy as np
from numpy.typing import NDArray

_Doubles = NDArray[np.float64]
_MJD_0 = np.datetime64("1858-11-17", "D")
_DAY = np.timedelta64(1, "D")


def _numbers(values: Any, what: str) -> _Doubles:
    if hasattr(values, "filled"):  # a masked array
        values = values.astype(np.float64).filled(np.nan)
    array = np.asarray(values)
    if array.dtype.kind not in "iuf":
        raise TypeError(f"{what} must be numbers, not {array.dtype}")
    return array.astype(np.float64, copy=False)


def _degrees(values: Any, what: str) -> _Doubles:
    if hasattr(values, "to_value"):  # a quantity
        values = values.to_value("deg")
    return _numbers(values, what)


def _utc64(instant: Any) -> np.datetime64:
    """A datetime, in UTC if it says nothing else."""
    if not isinstance(instant, datetime):
        raise TypeError(f"an instant cannot be of {type(instant).__name__}")
    if instant.tzinfo is not None:
        instant = instant.astimezone(timezone.utc).replace(tzinfo=None)
    return np.datetime64(instant, "us")


def _mjd_of_dates(dates: NDArray[np.datetime64]) -> _Doubles:
    # Days apart from the time of day: nanoseconds since 1858 would not fit into 64 bits.
    days = dates.astype("datetime64[D]")
    return np.asarray((days - _MJD_0) / _DAY + (dates - days) / _DAY)


def instants(mjd: Any) -> _Doubles:
    """Modified Julian Dates [d]."""
    if hasattr(mjd, "to_value"):  # a Time
        mjd = mjd.utc.to_value("mjd")
    array = np.asarray(mjd)
    if array.dtype == object:
        dates = [_utc64(instant) for instant in array.ravel()]
        array = np.array(dates, "datetime64[us]").reshape(array.shape)
    if array.dtype.kind == "M":
        return _mjd_of_dates(array)
    return _numbers(mjd, "instants")


def targets(ra: Any, dec: Any) -> Tuple[_Doubles, _Doubles]:
    """Right ascensions and declinations [deg] of one shape."""
    ra, dec = np.broadcast_arrays(
        _degrees(ra, "right ascensions"), _degrees(dec, "declinations")
    )
    wrong = dec[np.abs(dec) > 90.0]
    if wrong.size > 0:
        raise ValueError(f"a declination is not from -90 to 90 degrees: {wrong[0]}")
    return ra, dec
