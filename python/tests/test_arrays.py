"""Shapes, kinds of arguments, errors, memory and threads."""

import copy
import pickle
import resource
import time
from concurrent.futures import ThreadPoolExecutor
from datetime import datetime, timedelta, timezone

import astropy.units as u
import numpy as np
import pytest
from astropy.coordinates import Angle
from astropy.time import Time, TimeDelta

import zarnsys

NAN = float("nan")
SITE = zarnsys.Site(-29.0, -71.0)

PER_INSTANT = {
    "moon": lambda mjd, site: zarnsys.moon(mjd, site).altitude,
    "sun": lambda mjd, site: zarnsys.sun(mjd, site).ra,
}
PER_TARGET = {
    "altitude": zarnsys.altitude,
    "airmass": zarnsys.airmass,
    "separation": zarnsys.separation,
    "moonlight": zarnsys.moonlight,
    "sky": zarnsys.sky,
    "observe": lambda *arguments: zarnsys.observe(*arguments).sky,
    "precess": lambda ra, dec, mjd, site: zarnsys.precess(ra, dec, mjd).dec,
}
SHAPES = [
    # right ascensions, declinations, instants, result
    ((), (), (), ()),
    ((3,), (), (), (3,)),
    ((), (), (4,), (4,)),
    ((3,), (3,), (4,), (4, 3)),
    ((3, 1), (2,), (5, 4), (5, 4, 3, 2)),
    ((0,), (), (4,), (4, 0)),
    ((3,), (3,), (0,), (0, 3)),
]


@pytest.mark.parametrize("shape", [(), (4,), (2, 3), (0,)])
@pytest.mark.parametrize("function", PER_INSTANT.values(), ids=PER_INSTANT)
def test_shapes_of_instants(function, shape):
    result = function(np.full(shape, 61000.0), SITE)
    assert np.shape(result) == shape
    assert isinstance(result, np.ndarray if shape else float)


@pytest.mark.parametrize("ra, dec, mjd, result", SHAPES)
@pytest.mark.parametrize("function", PER_TARGET.values(), ids=PER_TARGET)
def test_shapes_of_targets(function, ra, dec, mjd, result):
    found = function(np.zeros(ra), np.zeros(dec), np.full(mjd, 61000.0), SITE)
    assert np.shape(found) == result
    assert isinstance(found, np.ndarray if result else float)


@pytest.mark.parametrize("function", PER_TARGET.values(), ids=PER_TARGET)
def test_each_element_is_its_own(function):
    ra = np.linspace(0.0, 360.0, 6).reshape(2, 3)[:, ::-1]
    dec = np.array([-60.0, 0.0, 45.0])
    mjd = 61000.0 + np.arange(8.0).reshape(4, 2).T / 8
    whole = function(ra, dec, mjd, SITE)
    for i, k in np.ndindex(mjd.shape):
        for m, n in np.ndindex(ra.shape):
            one = function(ra[m, n], dec[n], mjd[i, k], SITE)
            assert whole[i, k, m, n] == pytest.approx(one, abs=1e-8, nan_ok=True)


DAY = 61398.0  # the MJD of 2026-12-24
INSTANT = datetime(2026, 12, 24, 18, 30, 15, 250000)
MJD = DAY + (18 * 3600 + 30 * 60 + 15.25) / 86400
INSTANTS = [
    (INSTANT, MJD),
    (INSTANT.replace(tzinfo=timezone.utc), MJD),
    (INSTANT.replace(tzinfo=timezone.utc).astimezone(timezone(timedelta(hours=-3))), MJD),
    (np.datetime64("2026-12-24T18:30:15.250"), MJD),
    (np.datetime64("2026-12-24T18:30:15.250000000"), MJD),
    (np.array(INSTANT), MJD),
    (Time(INSTANT).tai, MJD),
    (np.datetime64("2200-01-01T06:00", "ns"), Time("2200-01-01T06:00").mjd),
    (np.arange("2026-12-24", "2026-12-28", dtype="datetime64[D]"), DAY + np.arange(4)),
    ([Time(INSTANT).tai, INSTANT, np.datetime64(INSTANT), MJD], [MJD] * 4),
    (np.ma.array([INSTANT] * 2, mask=[0, 1]), [MJD, NAN]),
    (np.ma.array([INSTANT] * 2, "datetime64[ms]", mask=[0, 1]), [MJD, NAN]),
]


@pytest.mark.parametrize("instant, mjd", INSTANTS)
def test_instants(instant, mjd):
    expected = zarnsys.moon(mjd, SITE).altitude
    assert zarnsys.moon(instant, SITE).altitude == pytest.approx(expected, abs=1e-6, nan_ok=True)


def test_instants_of_pandas():
    pandas = pytest.importorskip("pandas")
    test_instants(pandas.Series(pandas.to_datetime([INSTANT, None], utc=True)), [MJD, NAN])
    test_instants(pandas.NaT, NAN)


def test_units_and_masks():
    expected = zarnsys.altitude([15.0, 30.0], 20.0, 61000.0, SITE)
    assert zarnsys.altitude(Angle([1, 2], u.hourangle), 20 * u.deg, 61000.0, SITE) == pytest.approx(expected)
    listed = [1 * u.hourangle, 30.0]
    assert zarnsys.altitude(listed, 20.0, 61000.0, SITE) == pytest.approx(expected)
    masked = np.ma.array([15.0, 30.0], mask=[False, True])
    found = zarnsys.altitude(masked, 20.0, 61000.0, SITE)
    assert found == pytest.approx([expected[0], NAN], nan_ok=True)


@pytest.mark.parametrize("function", PER_TARGET.values(), ids=PER_TARGET)
@pytest.mark.parametrize(
    "ra, dec, mjd",
    [(NAN, 0.0, 61000.0), (0.0, NAN, 61000.0), (0.0, 0.0, NAN), (0.0, 0.0, np.inf)]
    + [(np.inf, 0.0, 61000.0), (0.0, 0.0, np.datetime64("NaT"))],
)
def test_not_a_number(function, ra, dec, mjd, capfd):
    assert np.isnan(function(ra, dec, mjd, SITE))
    assert capfd.readouterr() == ("", "")


@pytest.mark.parametrize("function", [zarnsys.moon, zarnsys.sun])
def test_not_an_instant(function, capfd):
    for values in function([61000.0, NAN, np.inf], SITE):
        assert list(np.isnan(values)) == [False, True, True]
    assert capfd.readouterr() == ("", "")


def observe_with(condition, value):
    zarnsys.observe(0.0, 0.0, 61000.0, SITE, **{condition: value})


REFUSED = [
    # function, arguments, what the message names
    *[(zarnsys.Site, (latitude, 0.0), "latitude") for latitude in (90.5, -91.0, NAN, np.inf)],
    *[(zarnsys.Site, (0.0, longitude), "longitude") for longitude in (NAN, np.inf)],
    *[
        (function, (0.0, dec, 61000.0, SITE), "declination")
        for function in PER_TARGET.values()
        for dec in (90.1, [0.0, -91.0], np.inf)
    ],
    *[
        (function, ([1.0, 2.0], [1.0, 2.0, 3.0], 61000.0, SITE), "shape")
        for function in PER_TARGET.values()
    ],
    *[
        (zarnsys.phases, years, "10000 years")
        for years in ((61000.0, 1e9), (-np.inf, 0.0))
    ],
    (zarnsys.phases, (NAN, 61000.0), "start is no time"),
    (zarnsys.phases, (61000.0, np.datetime64("NaT")), "stop is no time"),
    *[(observe_with, ("extinction", x), "extinction.* 0 to 10: ") for x in (-0.1, 10.1, np.inf)],
    *[(observe_with, ("dark_sky", v), "dark_sky.* 10 to 30: ") for v in (-np.inf, 9.9, 30.1)],
    (zarnsys.Site.telescope, ("VEK5",), "OLAN, VEK1"),
]
NO_INSTANTS = ["2026-12-24", "61000", None, True, ["61000"], 1j, np.timedelta64(1, "D"), [None]]
NO_INSTANTS += [61000 * u.day, [61000 * u.day], TimeDelta(1, format="jd")]
WRONG_KINDS = [
    *[(zarnsys.moon, (mjd, SITE), "instants must be Modified Julian") for mjd in NO_INSTANTS],
    *[(zarnsys.sun, (61000, site), r"Site.telescope\(name\), not") for site in ((1, 2), "OLAN")],
    (zarnsys.phases, ([61000, 61001], 61002), "an instant"),
    (zarnsys.Site.telescope, (3,), "name, not int"),
    (zarnsys.Site, ([1.0], 0.0), "latitude must be a number"),
    (zarnsys.altitude, ([None], 0.0, 61000.0, SITE), "right ascensions must be"),
    (observe_with, ("extinction", [0.1, 0.2]), "extinction must be a number, not an array"),
    (observe_with, ("dark_sky", 21.0 * u.mag), "dark_sky must be a number, not Quantity"),
]


@pytest.mark.parametrize(
    "error, function, arguments, words",
    [(ValueError, *row) for row in REFUSED] + [(TypeError, *row) for row in WRONG_KINDS],
)
def test_refused(error, function, arguments, words):
    with pytest.raises(error, match=words):
        function(*arguments)


def test_telescopes():
    # The table's longitudes are 5.3168 degrees east and 67.4125 degrees west.
    olan = zarnsys.Site.telescope("olan")
    assert (olan.latitude, olan.longitude, olan.name) == (38.7421, 5.3168, "OLAN")
    assert zarnsys.Site.telescope("VEK1").longitude == -67.4125


def test_site_is_a_value():
    assert pickle.loads(pickle.dumps(SITE)) == copy.copy(SITE) == zarnsys.Site(-29, -71)
    assert len({SITE, zarnsys.Site(-29.0, -71.0), zarnsys.Site(-29 * u.deg, Angle("-71d"))}) == 1
    with pytest.raises(AttributeError):
        SITE.latitude = 0.0


def owner(array):
    while isinstance(array.base, np.ndarray):
        array = array.base
    return type(array.base).__name__


def test_results_are_the_tables_themselves():
    ra, mjd = np.arange(3.0), 61000.0 + np.arange(4.0)
    results = [
        *zarnsys.moon(mjd, SITE),
        *zarnsys.sun(mjd, SITE),
        *zarnsys.observe(ra, 0.0, mjd, SITE),
        *zarnsys.precess(ra, 0.0, mjd),
        *zarnsys.phases(61000.0, 61100.0),
        zarnsys.separation(ra, 0.0, mjd, SITE),
    ]
    assert {owner(result) for result in results} == {"PyCapsule"}
    assert all(result.flags.writeable for result in results)


def test_memory_is_given_back():
    ra, mjd = np.linspace(0.0, 360.0, 500), 61000.0 + np.linspace(0.0, 1.0, 500)
    zarnsys.observe(ra, 0.0, mjd, SITE)
    before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    for _ in range(40):  # 10 MB each
        zarnsys.observe(ra, 0.0, mjd, SITE)
    assert resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before < 100000  # [KiB]


def test_threads_compute_what_one_does():
    mjd = 61000.0 + np.linspace(0.0, 30.0, 400)
    targets = [np.linspace(0.0, 360.0, 100) + i for i in range(16)]

    def observed(ra):
        return np.array(zarnsys.observe(ra, 10.0, mjd, SITE))

    with ThreadPoolExecutor(8) as threads:
        found = list(threads.map(observed, targets))
    for ra, result in zip(targets, found):
        assert np.array_equal(result, observed(ra), equal_nan=True)


def longest_pause(function):
    """How long at most this thread stands still while another calls a function, over the call."""

    def timed():
        start = time.perf_counter()
        function()
        return time.perf_counter() - start

    longest, last = 0.0, time.perf_counter()
    with ThreadPoolExecutor(1) as other:
        call = other.submit(timed)
        is_over = False
        while not is_over:
            is_over = call.done()
            now = time.perf_counter()
            longest, last = max(longest, now - last), now
    return longest / call.result()


@pytest.mark.parametrize("function", PER_TARGET.values(), ids=PER_TARGET)
def test_other_threads_run_meanwhile(function):
    ra, mjd = np.linspace(0.0, 360.0, 2000), 61000.0 + np.linspace(0.0, 1.0, 1000)
    # A busy machine may hold a thread up now and then.
    trials = (longest_pause(lambda: function(ra, 0.0, mjd, SITE)) for _ in range(10))
    assert any(pause < 0.5 for pause in trials)
