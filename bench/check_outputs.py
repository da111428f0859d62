#!/usr/bin/env python3
"""Checks JSON results of zarn-moon, number by number, against ephem.

    check_outputs.py [DEGREES] FILE...     results of --format json --ephemeris erfa

DEGREES is what --min-altitude was, 30 without it, for targets that have none of their own. Prints
the largest difference of each kind, and ends with status 1 if one is larger than what rounding and
docs/accuracy.md allow. Moonlight, airmass and words follow from the published formulas, given ephem's
sun, moon and targets.
"""

import json
import math
import sys
from datetime import datetime

import ephem

from almanac import (EVENTS, HORIZON, MJD_OF_EPHEM, PHASES, Night, angle_between, eclipse_near)

SYNODIC_MONTH = 29.530588853
# The rounding of each kind and what is allowed besides.
ALLOWED = {"event [min]": 0.5 + 0.2, "phase [min]": 0.5 + 0.7, "sidereal time [s]": 0.1,
           "sun [deg]": 0.001, "moon [deg]": 0.01, "lit fraction": 0.0002, "age": 0.00002,
           "hours": 0.034, "target [deg]": 0.001, "distance from moon [deg]": 0.01,
           "airmass": 0.01, "moonlight [mag]": 0.002, "sky [mag]": 0.002, "window [min]": 1.5,
           "contact [min]": 0.5 + 1.0, "magnitude": 0.005, "word": 0}
worst = dict.fromkeys(ALLOWED, 0.0)


def note(kind, difference):
    worst[kind] = max(worst[kind], abs(difference))


def mjd_of(utc):
    form = "%Y-%m-%dT%H:%MZ" if len(utc) == 17 else "%Y-%m-%dT%H:%M:%SZ"
    return (datetime.strptime(utc, form) - datetime(1858, 11, 17)).total_seconds() / 86400.0


def same_presence(kind, one, other):
    """Whether both are there; one alone is a difference without measure."""
    if (one is None) != (other is None):
        note(kind, math.inf)
    return one is not None and other is not None


def age(mjd):
    new_moon = ephem.previous_new_moon(mjd - MJD_OF_EPHEM) + MJD_OF_EPHEM
    return (mjd - new_moon) / SYNODIC_MONTH


def airmass(altitude):
    """Pickering 2002, DIO 12, 3."""
    return 1.0 / math.sin(math.radians(altitude + 244.0 / (165.0 + 47.0 * altitude ** 1.1)))


def moonlight(sun_moon, distance, extinction, moon_altitude, altitude, radii):
    """Krisciunas & Schaefer 1991, with the moon's own distance and the opposition surge."""
    phase_angle = 180.0 - sun_moon
    light = 10.0 ** (-0.4 * (3.84 + 0.026 * phase_angle + 4e-9 * phase_angle ** 4))
    light *= (60.27 / radii) ** 2 * max(1.0, 1.35 - 0.05 * phase_angle)
    scattered = 10.0 ** (6.15 - distance / 40.0) if distance > 10.0 else 6.2e7 / distance ** 2
    scattered += 10.0 ** 5.36 * (1.06 + math.cos(math.radians(distance)) ** 2)

    def passing(at):
        x = 1.0 / math.sqrt(1.0 - 0.96 * math.cos(math.radians(at)) ** 2)
        return 10.0 ** (-0.4 * extinction * x)
    total = scattered * light * passing(moon_altitude) * (1.0 - passing(altitude))
    return 22.5 - 1.08574 * math.log(total / 34.08) if total > 0.001 else None


def body_of(target, mjd):
    body = ephem.FixedBody()
    body._ra, body._dec = math.radians(target["ra_deg"]), math.radians(target["dec_deg"])
    body._epoch = mjd - MJD_OF_EPHEM if target["equinox"] == "date" else ephem.J2000
    return body


def check_target(night, result, row, target, values):
    mjd = row["mjd"]
    place = night.horizontal(body_of(target, mjd), mjd)
    moon = night.horizontal(ephem.Moon(), mjd)
    sun = night.horizontal(ephem.Sun(), mjd)
    distance = angle_between(place, moon)
    note("target [deg]", values["alt_deg"] - place[0])
    note("distance from moon [deg]", values["moon_dist_deg"] - distance)
    up = place[0] >= 0.0
    expected = airmass(place[0]) if up else None
    if same_presence("airmass", values["airmass"], expected):
        note("airmass", values["airmass"] / expected - 1.0)
    light = None
    if up and moon[0] >= HORIZON:
        radii = night.seen(ephem.Moon(), mjd).earth_distance * 149597870.7 / 6378.137
        light = moonlight(angle_between(moon, sun), distance, result["extinction"], moon[0],
                          place[0], radii)
    if same_presence("moonlight [mag]", values["moon_sky_mag"], light):
        note("moonlight [mag]", values["moon_sky_mag"] - light)
    sky = None
    if up and sun[0] < -18.0:
        flux = 10.0 ** (-0.4 * result["dark_sky_mag"])
        flux += 10.0 ** (-0.4 * light) if light is not None else 0.0
        sky = -2.5 * math.log10(flux)
    if same_presence("sky [mag]", values["sky_mag"], sky):
        note("sky [mag]", values["sky_mag"] - sky)


def check_rows(night, result):
    for row in result["instants"]:
        mjd = row["mjd"]
        note("sidereal time [s]",
             math.remainder(row["lst_h"] - night.sidereal_hours(mjd), 24.0) * 3600.0)
        note("sun [deg]", row["sun_alt_deg"] - night.altitude(ephem.Sun(), mjd))
        note("moon [deg]", angle_between((row["moon_alt_deg"], row["moon_az_deg"]),
                                         night.horizontal(ephem.Moon(), mjd)))
        note("lit fraction", row["illumination"] - night.lit_fraction(mjd))
        note("age", row["phase"] - age(mjd))
        note("word", row["moon_up"] != (night.altitude(ephem.Moon(), mjd) >= HORIZON))
        for target, values in zip(result["targets"], row["targets"]):
            check_target(night, result, row, target, values)


def minutes_of(night):
    """The altitudes of sun and moon for each minute."""
    return [(mjd, night.altitude(ephem.Sun(), mjd), night.altitude(ephem.Moon(), mjd))
            for mjd in (night.begin + i / 1440.0 for i in range(1441))]


def check_summary(night, line, minutes):
    dark = [moon < HORIZON for _, sun, moon in minutes[1:] if sun < -18.0]
    note("hours", line["astronomical_hours"] - len(dark) / 60.0)
    note("hours", line["dark_hours"] - sum(dark) / 60.0)
    middle = night.begin + 0.5
    lit = night.lit_fraction(middle)
    note("lit fraction", line["illumination"] - lit)
    note("age", line["phase"] - age(middle))
    up = 1.0 - sum(dark) / len(dark) if dark else 1.0
    word = "dark" if dark and (lit < 0.25 or up < 0.1) else (
        "bright" if not dark or lit > 0.65 and up > 0.5 else "grey")
    note("word", word != line["word"])


def longest(minutes, counts):
    best, begin = (0.0, 0.0), None
    for (mjd, *_), count in zip(minutes, counts):
        begin = (mjd if begin is None else begin) if count else None
        if count and mjd - begin > best[1] - best[0]:
            best = (begin, mjd)
    return best


def check_window(night, target, least, minutes):
    body = body_of(target, night.begin + 0.5)
    high = [sun < -18.0 and night.altitude(body, mjd) >= least for mjd, sun, _ in minutes]
    without = longest(minutes, [h and moon < HORIZON for h, (_, _, moon) in zip(high, minutes)])
    best = without if without[1] - without[0] >= 1.0 / 24.0 else longest(minutes, high)
    window = target["best_window"]
    if same_presence("window [min]", window, best if best[1] > best[0] else None):
        note("window [min]", (mjd_of(window["begin"]["utc"]) - best[0]) * 1440.0)
        note("window [min]", (mjd_of(window["end"]["utc"]) - best[1]) * 1440.0)
        note("word", window["moon_up"] == (best == without))


def check_eclipse(night, eclipse, minutes):
    middle = night.begin + 0.5
    full = min((find(middle - MJD_OF_EPHEM) + MJD_OF_EPHEM for find in
                (ephem.previous_full_moon, ephem.next_full_moon)), key=lambda t: abs(t - middle))
    contacts, magnitude = eclipse_near(full) if abs(full - middle) < 0.75 else ({}, 0.0)
    seen = contacts and any(moon >= HORIZON and
                            contacts["penumbral begin"] <= mjd <= contacts["penumbral end"]
                            for mjd, _, moon in minutes)
    if not same_presence("contact [min]", eclipse, contacts if seen else None):
        return
    note("magnitude", eclipse["magnitude"] - magnitude)
    note("word", [name.replace("_", " ") for name in eclipse["contacts"]]
         != sorted(contacts, key=contacts.get))
    for name, contact in eclipse["contacts"].items():
        time = contacts[name.replace("_", " ")]
        note("contact [min]", (mjd_of(contact["utc"]) - time) * 1440.0)
        note("word", contact["moon_up"] != (night.altitude(ephem.Moon(), time) >= HORIZON))


def check_night(night, line):
    for name in EVENTS:
        expected, _ = night.times(name)
        found = [mjd_of(time["utc"]) for time in line["events"][name.replace(" ", "_")]]
        if len(found) != len(expected):
            note("event [min]", math.inf)
        for ours, theirs in zip(found, expected):
            note("event [min]", (ours - theirs) * 1440.0)
    minutes = minutes_of(night)
    check_summary(night, line, minutes)
    check_eclipse(night, line["eclipse"], minutes)
    return minutes


def check(result, least):
    site = result["site"]
    place = (site["latitude_deg"], site["longitude_west_deg"], site.get("elevation_m", 0.0))
    night = Night(*place, 60000)
    for line in result["nights"]:
        night = Night(*place, mjd_of(line["night"] + "T00:00Z"))
        minutes = check_night(night, line)
        for target in result["targets"]:
            if "best_window" in target:
                check_window(night, target, target.get("min_altitude_deg") or least, minutes)
    check_rows(night, result)
    for phase in result["phases"]:
        time = mjd_of(phase["utc"])
        theirs = PHASES[phase["phase"]](time - MJD_OF_EPHEM - 1.0) + MJD_OF_EPHEM
        note("phase [min]", (time - theirs) * 1440.0)


def main(arguments):
    least = float(arguments.pop(0)) if arguments and arguments[0][0].isdigit() else 30.0
    if not arguments:
        sys.exit(__doc__)
    for name in arguments:
        with open(name, encoding="utf-8") as file:
            check(json.load(file), least)
    for kind, most in ALLOWED.items():
        print("%-26s %.5f%s" % (kind, worst[kind], "  too large" if worst[kind] > most else ""))
    sys.exit(any(worst[kind] > most for kind, most in ALLOWED.items()))


if __name__ == "__main__":
    main(sys.argv[1:])
