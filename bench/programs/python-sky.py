"""Altitudes, separations and moonlight of 100 targets at 200 instants of a night in Python: by the
module zarnsys, by astropy and by astroplan, from positions of J2000 on. Prints lists of seconds by
processor time as JSON: python-sky.py ROUNDS
"""

import json
import os
import random
import sys
import time
import warnings

import astropy.units as u
import numpy as np
from astroplan import Observer
from astropy.coordinates import AltAz, EarthLocation, SkyCoord, get_body
from astropy.time import Time
from astropy.utils import iers

import zarnsys

SOURCES = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.append(f"{SOURCES}/python/tests")
from test_against_astropy import moonlight  # noqa: E402

iers.conf.auto_download = False
iers.conf.auto_max_age = None
warnings.simplefilter("ignore")

EXTINCTION = 0.172
random_numbers = np.random.default_rng(1)
RA = random_numbers.uniform(0.0, 360.0, 100)
DEC = np.degrees(np.arcsin(random_numbers.uniform(-1.0, 1.0, 100)))
MJD = 61398.0 + np.linspace(0.0, 0.4, 200)

SITE = zarnsys.Site(-29.0, -71.0)
LOCATION = EarthLocation(lat=SITE.latitude, lon=SITE.longitude)
TIME = Time(MJD, format="mjd")
TARGETS = SkyCoord(RA, DEC, unit="deg")
OBSERVER = Observer(LOCATION)


def ours(function):
    return lambda: function(*zarnsys.precess(RA, DEC, MJD[100]), MJD, SITE)


def horizon():
    """One frame for every instant, with room for an axis of targets."""
    return AltAz(obstime=TIME[:, np.newaxis], location=LOCATION)


def moon(frame):
    return get_body("moon", frame.obstime, LOCATION).transform_to(frame)


def astropy_altitude():
    return TARGETS[np.newaxis].transform_to(horizon()).alt.deg


def astropy_separation():
    frame = horizon()
    return moon(frame).separation(TARGETS[np.newaxis].transform_to(frame)).deg


def astropy_moonlight():
    frame = horizon()
    targets, bright = TARGETS[np.newaxis].transform_to(frame), moon(frame)
    sun = get_body("sun", frame.obstime, LOCATION).transform_to(frame)
    light = moonlight(bright.separation(sun).deg, bright.separation(targets).deg, bright.alt.deg,
                      targets.alt.deg, EXTINCTION)
    return np.where((targets.alt > 0 * u.deg) & (bright.alt > -0.833 * u.deg), light, np.nan)


def astroplan_altitude():
    return OBSERVER.altaz(TIME, TARGETS, grid_times_targets=True).alt.deg.T


SIDES = {
    "python-altitude/ours": ours(zarnsys.altitude),
    "python-altitude/astropy": astropy_altitude,
    "python-altitude/astroplan": astroplan_altitude,
    "python-separation/ours": ours(zarnsys.separation),
    "python-separation/astropy": astropy_separation,
    "python-moonlight/ours": ours(zarnsys.moonlight),
    "python-moonlight/astropy": astropy_moonlight,
}


def check():
    """All sides of a row must mean the same, within the accuracy of the moon."""
    for name, function in SIDES.items():
        expected = SIDES[name.split("/")[0] + "/ours"]()
        close = np.isclose(function(), expected, atol=0.5, equal_nan=True)
        if np.mean(close) < 0.99:
            raise RuntimeError(f"{name} differs")


def main():
    check()
    measured = {name: [] for name in SIDES}
    for _ in range(int(sys.argv[1])):
        for name, function in random.sample(list(SIDES.items()), len(SIDES)):
            start = time.process_time()
            function()
            measured[name].append(time.process_time() - start)
    print(json.dumps(measured))


main()
