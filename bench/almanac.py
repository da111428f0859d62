#!/usr/bin/env python3
"""Compares what zarn-moon makes of nights with ephem and with astropy, for both of its ephemerides.

    almanac.py PROGRAM [NIGHTS]     PROGRAM: build/release/bench/night-values; 150 nights an epoch

Random nights of four epochs in two bands of latitude, the eclipses of the moon of 1950 to 2050, and
phases from 1901 to 2199: prints the tables of docs/accuracy.md, the sizes of the differences. Ephem
has its own series of sun and moon, and its own delta T. Astropy has its own way from the places of
sun and moon to altitude and azimuth, with measured delta T; the places are ERFA's there, too, so it
checks all but these.
"""

import math
import random
import subprocess
import sys
import warnings

import ephem
from astropy import units
from astropy.coordinates import AltAz, EarthLocation, get_body
from astropy.time import Time
from astropy.utils import iers

MJD_OF_EPHEM = 15019.5  # its days count from 1899-12-31 12 h
FIRST, LAST = 15385, 124592  # 1901-01-01, 2199-12-31
EPOCHS = [("1901-1950", FIRST, 33282), ("1950-2050", 33282, 69807), ("2050-2100", 69807, 88069),
          ("2100-2199", 88069, LAST)]
BANDS = [("latitudes to 60", 0.0, 60.0), ("60 to 72", 60.0, 72.0)]
MEASURED = (41700, 59500)  # 1973 to 2021: dates whose UT1 astropy has without a download
HORIZON = -0.833
SUN_EVENTS = {"sunset": (HORIZON, -1), "civil dusk": (-6.0, -1), "nautical dusk": (-12.0, -1),
              "astronomical dusk": (-18.0, -1), "astronomical dawn": (-18.0, 1),
              "nautical dawn": (-12.0, 1), "civil dawn": (-6.0, 1), "sunrise": (HORIZON, 1)}
MOON_EVENTS = {"moonrise": (HORIZON, 1), "moonset": (HORIZON, -1), "moon transit": (0.0, 1)}
EVENTS = {**SUN_EVENTS, **MOON_EVENTS}
PHASES = {"new moon": ephem.next_new_moon, "first quarter": ephem.next_first_quarter_moon,
          "full moon": ephem.next_full_moon, "last quarter": ephem.next_last_quarter_moon}


def angle_between(one, other):
    """The angle between two places, altitude and azimuth or the like, all in degrees."""
    (alt1, az1), (alt2, az2) = [map(math.radians, place) for place in (one, other)]
    cross = math.hypot(math.cos(alt2) * math.sin(az2 - az1),
                       math.cos(alt1) * math.sin(alt2)
                       - math.sin(alt1) * math.cos(alt2) * math.cos(az2 - az1))
    dot = math.sin(alt1) * math.sin(alt2) + math.cos(alt1) * math.cos(alt2) * math.cos(az2 - az1)
    return math.degrees(math.atan2(cross, dot))


def lit_fraction(moon, sun, moon_place, sun_place):
    """The lit fraction of the moon's disc, given how far and where sun and moon are seen."""
    angle = math.radians(angle_between(moon_place, sun_place))
    phase_angle = math.atan2(sun.earth_distance * math.sin(angle),
                             moon.earth_distance - sun.earth_distance * math.cos(angle))
    return (1.0 + math.cos(phase_angle)) / 2.0


def geocentric(body):
    """Declination and right ascension, seen from the Earth's centre."""
    return math.degrees(body.g_dec), math.degrees(body.g_ra)


def central_lit_fraction(mjd):
    """The lit fraction seen from the Earth's centre."""
    moon, sun = ephem.Moon(mjd - MJD_OF_EPHEM), ephem.Sun(mjd - MJD_OF_EPHEM)
    return lit_fraction(moon, sun, geocentric(moon), geocentric(sun))


def root(value, low, high):
    """Where a value that rises crosses 0 between two instants."""
    while high - low > 1e-6:
        middle = (low + high) / 2.0
        low, high = (middle, high) if value(middle) < 0.0 else (low, middle)
    return (low + high) / 2.0


class Night:
    """A night as ephem has it. Times are MJD in UT, angles in degrees."""

    def __init__(self, latitude, west, elevation, date):
        self.place, self.date = (latitude, west, elevation), date
        self.begin = date + 0.5 + west / 360.0
        self.observer = ephem.Observer()
        self.observer.lat, self.observer.lon = math.radians(latitude), math.radians(-west)
        self.observer.elevation, self.observer.pressure = elevation, 0
        self.paths = {}

    def line(self):
        return "%.6f %.6f %.1f %d" % (*self.place, self.date)

    def seen(self, body, mjd):
        """The body as the observer sees it."""
        self.observer.date = mjd - MJD_OF_EPHEM
        body.compute(self.observer)
        return body

    def horizontal(self, body, mjd):
        """Altitude and azimuth."""
        body = self.seen(body, mjd)
        return math.degrees(body.alt), math.degrees(body.az)

    def altitude(self, body, mjd):
        return self.horizontal(body, mjd)[0]

    def west_of_meridian(self, body, mjd):
        ra = self.seen(body, mjd).ra
        return math.degrees(math.remainder(self.observer.sidereal_time() - ra, math.tau))

    def sidereal_hours(self, mjd):
        self.observer.date = mjd - MJD_OF_EPHEM
        return math.degrees(self.observer.sidereal_time()) / 15.0

    def lit_fraction(self, mjd):
        """As the observer sees it."""
        moon, sun = self.seen(ephem.Moon(), mjd), self.seen(ephem.Sun(), mjd)
        return lit_fraction(moon, sun, self.horizontal(moon, mjd), self.horizontal(sun, mjd))

    def times(self, name):
        """When an event comes, and whether the body's extremes are within a degree of its level."""
        body = ephem.Sun() if name in SUN_EVENTS else ephem.Moon()
        level, direction = EVENTS[name]
        transit = name == "moon transit"
        value = self.west_of_meridian if transit else self.altitude
        step = 10.0 / 1440.0
        path = self.paths.setdefault((type(body), transit), [])
        if not path:
            path += [value(body, self.begin + i * step) for i in range(145)]
        times = []
        for i, (before, after) in enumerate(zip(path, path[1:])):
            crosses = (before - level) * direction < 0 <= (after - level) * direction
            if crosses and not (transit and after - before > 90.0):
                start = self.begin + i * step
                times.append(root(lambda mjd: (value(body, mjd) - level) * direction,
                                  start, start + step))
        grazing = not transit and min(abs(max(path) - level), abs(min(path) - level)) < 1.0
        return times, grazing


def shadow_depths(mjd):
    """How deep ephem's moon is in the shadow's three zones and its share of the moon's diameter,
    by Danjon's rule: penumbra, partly in the umbra, wholly in the umbra [deg]."""
    moon, sun = ephem.Moon(mjd - MJD_OF_EPHEM), ephem.Sun(mjd - MJD_OF_EPHEM)
    moon_distance, sun_distance = (body.earth_distance * 149597870.7 / 6378.137
                                   for body in (moon, sun))
    moon_radius = math.degrees(math.asin(0.2725076 / moon_distance))
    sun_radius = math.degrees(math.asin(109.12 / sun_distance))
    earth = math.degrees(1.01 * math.asin(1.0 / moon_distance) + math.asin(1.0 / sun_distance))
    declination, right_ascension = geocentric(sun)
    separation = angle_between(geocentric(moon), (-declination, right_ascension + 180.0))
    penumbral = earth + sun_radius + moon_radius - separation
    return (penumbral, penumbral - 2.0 * sun_radius,
            penumbral - 2.0 * sun_radius - 2.0 * moon_radius), 2.0 * moon_radius


def eclipse_near(full_moon):
    """The contacts of ephem's eclipse, by name, and its magnitude; nothing without one."""
    step = 1.0 / 1440.0
    minutes = [full_moon + i * step for i in range(-360, 361)]
    depths = [shadow_depths(mjd)[0] for mjd in minutes]
    deepest = max(range(len(minutes)), key=lambda i: depths[i][1])
    contacts = {"greatest eclipse": minutes[deepest]}  # to half a minute
    for zone, name in enumerate(("penumbral", "partial", "total")):
        for i in range(len(minutes) - 1):
            before, after = depths[i][zone], depths[i + 1][zone]
            if (before < 0.0) != (after < 0.0):
                word = " begin" if before < 0.0 else " end"
                contacts[name + word] = minutes[i] + step * before / (before - after)
    if len(contacts) == 1:
        return {}, 0.0
    return contacts, depths[deepest][1] / shadow_depths(minutes[deepest])[1]


def night_around(mjd):
    """The night at the equator whose middle an instant is."""
    west = math.remainder(mjd, 1.0) * 360.0
    return Night(0.0, west, 0.0, round(mjd - 1.0 - west / 360.0))


class Figures:
    """Sizes of differences by what they are of."""

    def __init__(self):
        self.sizes = {}

    def add(self, what, group, difference):
        self.sizes.setdefault((what, group), []).append(abs(difference))

    def of(self, row):
        sizes = sorted(self.sizes[row])
        return ["%.2g" % sizes[int(share * (len(sizes) - 1))] for share in (0.5, 0.95, 1.0)]


def values_of(program, theory, lines):
    """The program's values: for each line of its input, names and lists of numbers."""
    answer = subprocess.run([program, theory], input="\n".join(lines) + "\n", text=True,
                            stdout=subprocess.PIPE, check=True).stdout
    values = [[] for _ in lines]
    for line in answer.splitlines():
        number, *words = line.split()
        name = [word for word in words if word[0].isalpha()]
        values[int(number)].append((" ".join(name), [float(w) for w in words[len(name):]]))
    return values


def compare_times(night, values, group, figures):
    for names, title in ((SUN_EVENTS, "sun's rise, set and twilights [min]"),
                         (("moonrise", "moonset"), "moonrise and moonset [min]"),
                         (("moon transit",), "moon's transit [min]")):
        for name in names:
            expected, grazing = night.times(name)
            if grazing:
                continue
            found = [numbers[0] for what, numbers in values if what == name]
            for time in expected:
                if night.begin + 0.02 < time < night.begin + 0.98:
                    nearest = min((abs(time - other) for other in found), default=math.inf)
                    figures.add(title, group, nearest * 1440.0)


def compare_places(night, values, group, figures):
    for numbers in (numbers for what, numbers in values if what == "sky"):
        mjd, sidereal, sun, altitude, azimuth, lit = numbers
        place = night.horizontal(ephem.Moon(), mjd)
        figures.add("moon's place [deg]", group, angle_between((altitude, azimuth), place))
        figures.add("sun's altitude [deg]", group, sun - night.altitude(ephem.Sun(), mjd))
        figures.add("lit fraction", group, lit - night.lit_fraction(mjd))
        figures.add("lit fraction, seen from the Earth's centre", group,
                    lit - central_lit_fraction(mjd))
        figures.add("sidereal time [s]", group,
                    math.remainder(sidereal - night.sidereal_hours(mjd), 24.0) * 3600.0)


def compare_astropy(nights, values, group, figures):
    """Altitudes and azimuths by astropy."""
    for night, found in zip(nights, values):
        sky = [numbers for what, numbers in found if what == "sky"]
        latitude, west, elevation = night.place
        where = EarthLocation.from_geodetic(-west * units.deg, latitude * units.deg,
                                            elevation * units.m)
        when = Time([numbers[0] for numbers in sky], format="mjd", scale="ut1")
        frame = AltAz(obstime=when, location=where)
        moon = get_body("moon", when, where).transform_to(frame)
        sun = get_body("sun", when, where).transform_to(frame)
        for i, (_, _, altitude, *moons, _) in enumerate(sky):
            place = (moon.alt[i].deg, moon.az[i].deg)
            figures.add("moon's place [deg]", group, angle_between(moons, place))
            figures.add("sun's altitude [deg]", group, altitude - sun.alt[i].deg)


def compare_phases(values, group, figures):
    for name, numbers in values[::7]:  # a sample in which all four take their turn
        theirs = PHASES[name](numbers[0] - MJD_OF_EPHEM - 1.0) + MJD_OF_EPHEM
        figures.add("phases [min]", group, (numbers[0] - theirs) * 1440.0)


def compare_eclipses(program, figures):
    """The contacts of 1950 to 2050, which do not depend on the ephemeris."""
    expected, nights = [], []
    mjd = 33282.0
    while mjd < 69807.0:
        mjd = ephem.next_full_moon(mjd - MJD_OF_EPHEM + 1.0) + MJD_OF_EPHEM
        contacts = eclipse_near(mjd)
        if contacts[0]:
            expected.append(contacts)
            nights.append(night_around(contacts[0]["greatest eclipse"]))
    found = values_of(program, "erfa", [night.line() for night in nights])
    for (contacts, magnitude), values in zip(expected, found):
        ours = {what: numbers[0] for what, numbers in values}
        for name, time in contacts.items():
            figures.add("contacts of eclipses [min]", "1950-2050",
                        (ours.get(name, math.inf) - time) * 1440.0)
        figures.add("magnitudes of eclipses", "1950-2050", ours.get("magnitude", 9.0) - magnitude)
    return len(nights)


def print_table(name, figures):
    print("\nAgainst %s:\n" % name)
    print("| quantity | years | erfa, median | 95 % | worst | library, median | 95 % | worst |")
    print("|---|---|---|---|---|---|---|---|")
    for row in sorted(figures["erfa"].sizes):
        cells = [cell for theory in figures.values()
                 for cell in (theory.of(row) if row in theory.sizes else ["", "", ""])]
        print("| %s | %s | %s |" % (*row, " | ".join(cells)))


def main(program, count):
    warnings.simplefilter("ignore")
    iers.conf.auto_download = False
    dice = random.Random(2026)
    with_ephem = {"erfa": Figures(), "library": Figures()}
    with_astropy = {"erfa": Figures(), "library": Figures()}
    for epoch, begin, end in EPOCHS:
        for band, least, most in BANDS:
            nights = [Night(dice.uniform(least, most) * dice.choice((-1, 1)),
                            dice.uniform(-180.0, 180.0), dice.uniform(0.0, 3000.0),
                            dice.randrange(begin, end)) for _ in range(count)]
            for theory, figures in with_ephem.items():
                values = values_of(program, theory, [night.line() for night in nights])
                for night, found in zip(nights, values):
                    compare_times(night, found, epoch + ", " + band, figures)
                    compare_places(night, found, epoch, figures)
                some = [i for i, night in enumerate(nights)
                        if MEASURED[0] < night.date < MEASURED[1]]
                compare_astropy([nights[i] for i in some], [values[i] for i in some],
                                "1973-2021", with_astropy[theory])
        for theory, figures in with_ephem.items():
            values = values_of(program, theory, ["phases %d %d" % (begin, end)])
            compare_phases(values[0], epoch, figures)
    eclipses = compare_eclipses(program, with_ephem["erfa"])
    print_table("ephem " + ephem.__version__, with_ephem)
    print("\n%d eclipses; their greatest phase is known to half a minute here." % eclipses)
    print_table("astropy", with_astropy)


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    main(sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 150)
