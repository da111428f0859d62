"""The module beside astropy, within the bounds of docs/accuracy.md."""

import astropy.units as u
import numpy as np
import pytest
from astropy.coordinates import FK5, TETE, AltAz, Angle, EarthLocation, GeocentricTrueEcliptic
from astropy.coordinates import SkyCoord, get_body
from astropy.time import Time

import zarnsys

MOON = 0.39  # the moon's worst place [deg]
SUN = 0.014  # the sun's [deg]
NUTATION_AND_ABERRATION = 0.012  # which the module leaves out [deg]
MJD = np.random.default_rng(20).uniform(51544.0, 69000.0, 60)
PLACES = [(38.7, 5.3), (-29.9, -67.4), (0.0, 179.0), (59.0, 25.0)]


def night(latitude, longitude):
    """The module's site, astropy's frame there, and moon and sun in it."""
    location = EarthLocation(lon=longitude, lat=latitude, height=0.0)
    time = Time(MJD, format="mjd", location=location)
    time.delta_ut1_utc = 0.0
    horizon = AltAz(obstime=time, location=location, pressure=0 * u.hPa)
    moon, sun = (get_body(body, time, location).transform_to(horizon) for body in ("moon", "sun"))
    return zarnsys.Site(latitude, longitude), horizon, moon, sun


def moonlight(elongation, separation, moon_altitude, altitude, extinction):
    """Krisciunas & Schaefer 1991, equations 3, 8, 15, 20 and 21, in magnitudes."""
    alpha = 180.0 - elongation
    light = 10 ** (-0.4 * (3.84 + 0.026 * alpha + 4e-9 * alpha**4))
    scattering = 10**5.36 * (1.06 + np.cos(np.radians(separation)) ** 2)
    scattering += 10 ** (6.15 - separation / 40.0)
    heights = np.radians([moon_altitude, altitude])
    moon_air, air = (1 - 0.96 * np.cos(heights) ** 2) ** -0.5
    dimmed = light * 10 ** (-0.4 * extinction * moon_air)
    nanolamberts = scattering * dimmed * (1 - 10 ** (-0.4 * extinction * air))
    return (20.7233 - np.log(nanolamberts / 34.08)) / 0.92104


def angle_off(difference):
    return np.abs(Angle(difference, "deg").wrap_at("180d").deg)


@pytest.mark.parametrize("latitude, longitude", PLACES)
def test_moon(latitude, longitude):
    site, horizon, true, true_sun = night(latitude, longitude)
    moon = zarnsys.moon(MJD, site)
    place = SkyCoord(AltAz(az=moon.azimuth * u.deg, alt=moon.altitude * u.deg))
    assert np.all(place.separation(SkyCoord(AltAz(az=true.az, alt=true.alt))).deg < MOON)
    assert moon.distance == pytest.approx(true.distance.to_value(u.R_earth), rel=0.0035)
    elongation = true.separation(true_sun).deg
    assert moon.elongation == pytest.approx(elongation, abs=MOON)
    illumination = (1 - np.cos(np.radians(elongation))) / 2
    assert moon.illumination == pytest.approx(illumination, abs=0.004)
    seconds = angle_off((moon.sidereal_time - horizon.obstime.sidereal_time("mean").hour) * 15) * 240
    assert np.all(seconds < 1.2)


@pytest.mark.parametrize("latitude, longitude", PLACES)
def test_sun(latitude, longitude):
    site, horizon, _, seen = night(latitude, longitude)
    sun = zarnsys.sun(MJD, site)
    of_date = get_body("sun", horizon.obstime).transform_to(TETE(obstime=horizon.obstime))
    assert np.all(angle_off(sun.ra - of_date.ra.deg) < SUN * 1.1)
    assert sun.dec == pytest.approx(of_date.dec.deg, abs=SUN)
    # The sun's parallax is left out, too.
    assert sun.altitude == pytest.approx(seen.alt.deg, abs=SUN + 0.008)


@pytest.mark.parametrize("latitude, longitude", PLACES)
@pytest.mark.parametrize("ra, dec", [(10.0, -80.0), (123.4, 20.0), (300.0, -5.0)])
def test_target(latitude, longitude, ra, dec):
    site, horizon, moon, sun = night(latitude, longitude)
    ones = np.ones(MJD.shape) * u.deg
    place = SkyCoord(ra * ones, dec * ones, frame=FK5(equinox=horizon.obstime))
    true = place.transform_to(horizon)
    altitude = zarnsys.altitude(ra, dec, MJD, site)
    assert altitude == pytest.approx(true.alt.deg, abs=NUTATION_AND_ABERRATION)

    up = true.alt.deg > 0.02
    h = true.alt.deg[up]
    pickering = 1 / np.sin(np.radians(h + 244 / (165 + 47 * h**1.1)))
    airmass = zarnsys.airmass(ra, dec, MJD, site)
    assert airmass[up] == pytest.approx(pickering, rel=0.01)
    assert np.all(np.isnan(airmass[true.alt.deg < -0.02]))

    separation = moon.separation(true).deg
    assert zarnsys.separation(ra, dec, MJD, site) == pytest.approx(separation, abs=MOON)

    elongation = moon.separation(sun).deg
    bright = (moon.alt.deg > 5) & (true.alt.deg > 20) & (separation > 10) & (elongation > 30)
    bright &= elongation < 170
    published = moonlight(elongation, separation, moon.alt.deg, true.alt.deg, 0.4)[bright]
    found = zarnsys.moonlight(ra, dec, MJD, site, extinction=0.4)
    assert found[bright] == pytest.approx(published, abs=0.22)
    assert np.all(np.isnan(found[(moon.alt.deg < -1.3) | (true.alt.deg < -0.02)]))

    sky = zarnsys.sky(ra, dec, MJD, site, dark_sky=21.5, extinction=0.4)
    both = -2.5 * np.log10(10 ** (-0.4 * 21.5) + 10 ** (-0.4 * published))
    assert sky[bright] == pytest.approx(both, abs=0.22)
    assert np.all(sky[(moon.alt.deg < -1.3) & up] == 21.5)


def test_precess():
    ra, dec = np.array([0.1, 83.82, 201.3, 359.9]), np.array([89.0, -5.39, -11.16, 45.0])
    date = Time(66000.0, format="mjd")
    true = SkyCoord(ra, dec, unit="deg").transform_to(FK5(equinox=date))
    found = SkyCoord(*zarnsys.precess(ra, dec, 66000.0), unit="deg", frame=FK5(equinox=date))
    assert np.all(found.separation(true).arcsec < 0.1)


def test_phases():
    phases = zarnsys.phases(60000.0, 61000.0)
    assert np.all(np.diff(phases.mjd) > 6.0) and np.all(np.diff(phases.mjd) < 8.8)
    assert phases.mjd[0] < 60008.8 and phases.mjd[-1] > 60991.2
    time = Time(phases.mjd, format="mjd")
    ecliptic = GeocentricTrueEcliptic(obstime=time, equinox=time)
    moon, sun = (get_body(body, time).transform_to(ecliptic) for body in ("moon", "sun"))
    # Four minutes, in which the moon goes at most 0.041 degrees.
    assert np.all(angle_off((moon.lon - sun.lon).deg - 90.0 * phases.phase) < 0.041)


@pytest.mark.parametrize("start", [-3600000.0, 15020.0, 60000.0, 3600000.0])
def test_phases_of_each_day(start):
    days = start + np.arange(301.0)
    by_day = [mjd for a, b in zip(days, days[1:]) for mjd in zarnsys.phases(a, b).mjd]
    assert by_day == list(zarnsys.phases(days[0], days[-1]).mjd)
    assert 39 <= len(by_day) <= 42


def test_instants_at_the_bounds_of_phases():
    first, second = zarnsys.phases(60000.0, 60020.0).mjd[:2]
    assert list(zarnsys.phases(first, second).mjd) == [first]
    assert zarnsys.phases(second, first).mjd.shape == (0,)
