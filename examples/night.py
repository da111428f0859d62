"""Plots a night: altitudes of targets, moon and sun, and the sky's brightness at each target.

    night.py TELESCOPE EVENING TARGETS PICTURE

    night.py OLAN 2026-12-20T16:00 targets.csv night.png

TELESCOPE is a name, EVENING the UTC at which the picture begins, TARGETS a CSV file with name, right
ascension and declination of J2000, both in degrees or sexagesimal. Needs matplotlib and astropy.
"""

import csv
import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402
import numpy as np  # noqa: E402
from astropy.coordinates import SkyCoord  # noqa: E402

import zarnsys  # noqa: E402

TWILIGHTS = ((-18.0, "0.55"), (-12.0, "0.7"), (-6.0, "0.85"), (0.0, "1.0"))  # altitude [deg], grey


def read_targets(name):
    with open(name, newline="") as file:
        lines = (line for line in file if not line.startswith("#"))
        rows = list(csv.DictReader(lines))
    units = (("hourangle" if ":" in row["ra"] else "deg", "deg") for row in rows)
    places = [SkyCoord(row["ra"], row["dec"], unit=unit) for row, unit in zip(rows, units)]
    return (
        [row["name"] for row in rows],
        np.array([place.ra.deg for place in places]),
        np.array([place.dec.deg for place in places]),
    )


def shade(axes, times, sun):
    """Greys from the night to the day, by the sun's altitude."""
    axes.set_facecolor("0.4")
    axes.margins(x=0)
    for altitude, grey in TWILIGHTS:
        axes.fill_between(times, 0, 1, where=sun > altitude, color=grey, lw=0,
                          transform=axes.get_xaxis_transform())


def main():
    telescope, evening, targets, picture = sys.argv[1:]
    site = zarnsys.Site.telescope(telescope)
    times = np.datetime64(evening) + np.arange(0, 16 * 60, 5).astype("timedelta64[m]")
    names, ra, dec = read_targets(targets)
    # One date for the night: in a day precession is 0.14 arc seconds.
    places = zarnsys.precess(ra, dec, times[len(times) // 2])
    targets_seen = zarnsys.observe(*places, times, site)
    sun = zarnsys.sun(times, site).altitude
    moon = zarnsys.moon(times, site)

    figure, (above, below) = plt.subplots(2, sharex=True, figsize=(9, 7), layout="constrained")
    shade(above, times, sun)
    above.plot(times, moon.altitude, "w--", label=f"moon, {moon.illumination.mean():.0%} lit")
    above.plot(times, targets_seen.altitude, label=names)
    above.set(ylim=(0, 90), ylabel="altitude [deg]", title=f"{site.name}, {evening[:10]}")
    above.legend(loc="upper right")
    shade(below, times, sun)
    sky = np.where(sun[:, np.newaxis] < -18.0, targets_seen.sky, np.nan)
    below.plot(times, sky)
    below.set(ylim=(np.nanmax(sky) + 0.2, np.nanmin(sky) - 0.2),
              ylabel="sky [V mag per square arc second]",
              xlabel="UTC")
    below.xaxis.set_major_formatter(matplotlib.dates.DateFormatter("%H:%M"))
    figure.savefig(picture)


main()
