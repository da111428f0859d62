"""A constraint for astroplan: the sky at the target must be dark enough.

Prints at which instants of a night a target can be observed under it. Ends with status 77 where
astroplan is not installed.
"""

import sys

import numpy as np

import zarnsys

try:
    import astropy.units as u
    from astroplan import Constraint, FixedTarget, Observer, is_event_observable
    from astropy.coordinates import EarthLocation, SkyCoord
    from astropy.time import Time
    from astropy.utils import iers
except ImportError as missing:
    print(f"needs astroplan: {missing}")
    sys.exit(77)


class SkyBrightnessConstraint(Constraint):
    """Requires a sky at least as dark as a limit [V mag per square arc second].

    Twilight is left out: use it with `AtNightConstraint.twilight_astronomical()`.
    """

    def __init__(self, limit, dark_sky=21.8, extinction=0.172):
        self.limit = limit
        self.conditions = {"dark_sky": dark_sky, "extinction": extinction}

    def compute_constraint(self, times, observer, targets):
        location, icrs = observer.location, targets.icrs
        site = zarnsys.Site(location.lat.deg, location.lon.deg)
        mjd = times.utc.mjd
        places = zarnsys.precess(icrs.ra.deg.ravel(), icrs.dec.deg.ravel(), mjd.mean())
        sky = zarnsys.sky(*places, mjd.ravel(), site, **self.conditions)
        # One row for each instant, one column for each target; astroplan broadcasts the two.
        instant, target = np.broadcast_arrays(
            np.arange(mjd.size).reshape(mjd.shape),
            np.arange(targets.size).reshape(targets.shape),
        )
        return sky[instant, target] >= self.limit


def main():
    iers.conf.auto_download = False
    iers.conf.auto_max_age = None
    observer = Observer(EarthLocation(lat=38.7421, lon=5.3168))
    target = FixedTarget(SkyCoord("05:35:17.3 -05:23:28", unit=("hourangle", "deg")), "sword")
    times = Time("2026-12-20T20:00") + np.arange(0, 9, 2) * u.hour
    dark = is_event_observable(SkyBrightnessConstraint(20.0), observer, target, times)
    for instant, observable in zip(times, dark[0]):
        print(instant.iso[:16], "dark enough" if observable else "too bright")


main()
