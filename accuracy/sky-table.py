#!/usr/bin/env python3
"""Makes sky-values.txt: the moon and sky routines' formulas with 50 digits (python3-mpmath).

  accuracy/sky-table.py >tests/data/library/sky-values.txt

A row: routine, inputs, "=", and each output with its tolerance, which is four units of the last
place of the largest number that enters it, in its unit. Inputs are the very doubles; constants are
the decimals that the formulas name.
"""
import struct
from functools import lru_cache

from mpmath import acos, asin, atan, cos, floor, log, mp, mpf, nstr, sin, sqrt

mp.dps = 50
D, H, PI = mpf('57.2957795130823'), mpf('3.819718634205'), mpf('3.14159265358979')
DAY = mpf('2415020.75933')
MOON = (('6.29', '134.9', '477198.85'), ('-1.27', '259.2', '-413335.38'),
        ('0.66', '235.7', '890534.23'), ('0.21', '269.9', '954397.7'),
        ('-0.19', '357.5', '35999.05'), ('-0.11', '186.6', '966404.05'))
NORTH = (('5.13', '93.3', '483202.03'), ('0.28', '228.2', '960400.87'),
         ('-0.28', '318.3', '6003.18'), ('-0.17', '217.6', '-407332.2'))
NEAR = (('0.0518', '134.9', '477198.85'), ('0.0095', '259.2', '-413335.38'),
        ('0.0078', '235.7', '890534.23'), ('0.0028', '269.9', '954397.7'))
# Multiples of M, M' and F; days for new and full moon; for the quarters.
PHASES = ((2, 0, 0, '0.0021', '0.0021'), (0, 1, 0, '-0.4068', '-0.628'),
          (0, 2, 0, '0.0161', '0.0089'), (0, 3, 0, '-0.0004', '-0.0004'),
          (0, 0, 2, '0.0104', '0.0079'), (1, 1, 0, '-0.0051', '-0.0119'),
          (1, -1, 0, '-0.0074', '-0.0047'), (1, 0, 2, '0.0004', '0.0003'),
          (-1, 0, 2, '-0.0004', '-0.0004'), (0, 1, 2, '-0.0006', '-0.0006'),
          (0, -1, 2, '0.001', '0.0021'), (1, 2, 0, '0.0005', '0.0003'),
          (1, -2, 0, '0', '0.0004'), (2, 1, 0, '0', '-0.0003'))
SITES = (('38.7421', '-5.3168'), ('-29.8643', '67.4125'), ('-29.8641', '67.4129'),
         ('-29.8639', '67.4134'), ('-29.8646', '67.4138'))  # latitude, longitude west


def m(text): return mpf(text)
def trunc(x): return floor(x) if x >= 0 else -floor(-x)
def series(terms, f, T): return sum(m(a) * f((m(p) + m(r) * T) / D) for a, p, r in terms)
def single(x): return mpf(struct.unpack('f', struct.pack('f', float(x)))[0])


# Each routine gives pairs: a value, and the largest number that enters it.
def lst(jd, west):
    day = trunc(jd)
    part = jd - day
    midnight, ut = (day - m('0.5'), part + m('0.5')) if part < 0.5 else (day + m('0.5'), part - m('0.5'))
    t = (midnight - 2451545) / 36525
    turns = (m('24110.54841') + m('8640184.812866') * t + m('0.093104') * t**2 - m('6.2e-6') * t**3) / 86400
    sid = turns - trunc(turns) + m('1.0027379093') * ut - west / 24
    sid = (sid - trunc(sid)) * 24
    return [(sid + 24 if sid < 0 else sid, 24 * max(1, abs(turns)))]


def adj_time(x):
    while x > 12: x -= 24
    while x < -12: x += 24
    return [(x, x)]


def circle(x, y):
    if x == 0: return PI / 2 * (1 if y > 0 else 3 if y < 0 else 0)
    theta = atan(y / x) + (PI if x < 0 else 0)
    return theta + 2 * PI if theta < 0 else theta


def atan_circ(x, y): return [(circle(x, y), 2 * PI if x and y else 0)]  # a constant on the axes


def altit(dec, ha, lat):
    d, h, p = dec / D, ha / H, lat / D
    up = cos(d) * cos(h) * cos(p) + sin(d) * sin(p)
    az = circle(sin(d) * cos(p) - cos(d) * cos(h) * sin(p), -cos(d) * sin(h))
    return [(asin(up) * D, 90), (az * D, 360)]


def subtend(ra1, dec1, ra2, dec2):
    a, b, c, d = ra1 / H, dec1 / D, ra2 / H, dec2 / D
    theta = acos(cos(a) * cos(b) * cos(c) * cos(d) + sin(a) * cos(b) * sin(c) * cos(d) + sin(b) * sin(d))
    limit = m('1.5697963267948951')
    if theta >= m('1e-5') or abs(b) >= limit or abs(d) >= limit: return [(theta, 1 / sin(theta))]
    east = c - a
    if abs(east) > PI: east -= 24 / H * (1 if east > 0 else -1)
    return [(sqrt((east * cos((b + d) / 2))**2 + (d - b)**2), max(abs(x) for x in (a, b, c, d)))]


def lpsun(jd):
    n = jd - 2451545
    g = (m('357.528') + m('0.9856003') * n) / D
    L = m('280.46') + m('0.9856474') * n
    lam = (L + m('1.915') * sin(g) + m('0.02') * sin(2 * g)) / D
    eps = (m('23.439') - m('4e-7') * n) / D
    size = max(360, abs(L))
    return [(circle(cos(lam), cos(eps) * sin(lam)) * H, size / 15), (asin(sin(eps) * sin(lam)) * D, size)]


def lpmoon(jd, lat, sid):
    T = (jd - 2451545) / 36525
    lam = (m('218.32') + m('481267.883') * T + series(MOON, sin, T)) / D
    beta = series(NORTH, sin, T) / D
    dist = 1 / sin((m('0.9508') + series(NEAR, cos, T)) / D)
    l = cos(beta) * cos(lam)
    y = m('0.9175') * cos(beta) * sin(lam) - m('0.3978') * sin(beta)
    n = m('0.3978') * cos(beta) * sin(lam) + m('0.9175') * sin(beta)
    p, q = lat / D, sid / H
    x, y, z = l * dist - cos(p) * cos(q), y * dist - cos(p) * sin(q), n * dist - sin(p)
    r = sqrt(x * x + y * y + z * z)
    size = max(360, abs(481267 * T))
    return [(circle(x / r, y / r) * H, size / 15), (asin(z / r) * D, size), (r, max(60, size / 57))]


@lru_cache(maxsize=None)
def flmoon(n, nph):
    k = n + mpf(nph) / 4
    T = k / m('1236.85')
    jd = DAY + m('29.53058868') * k + m('0.0001178') * T**2 - m('1.55e-7') * T**3 + \
        m('0.00033') * sin((m('166.56') + m('132.87') * T - m('0.009173') * T**2) / D)
    M = (m('359.2242') + m('29.10535608') * k - m('3.33e-5') * T**2 - m('3.47e-6') * T**3) / D
    N = (m('306.0253') + m('385.81691806') * k + m('0.0107306') * T**2 + m('1.236e-5') * T**3) / D
    F = (m('21.2964') + m('390.67050646') * k - m('0.0016528') * T**2 - m('2.39e-6') * T**3) / D
    new = nph in (0, 2)
    cor = (m('0.1734') - m('0.000393') * T if new else m('0.1721') - m('0.0004') * T) * sin(M)
    cor += sum(m(a if new else b) * sin(i * M + j * N + f * F) for i, j, f, a, b in PHASES)
    shift = m('0.0028') - m('0.0004') * cos(M) + m('0.0003') * cos(N)
    return [(jd + cor + shift * {1: 1, 3: -1}.get(int(nph), 0), max(DAY, abs(30 * k)))]


def lun_age(jd):
    n = int(trunc((jd - m('2415020.5')) / m('29.5307') - 1))
    while flmoon(n + 1, 0)[0][0] < jd: n += 1
    days = jd - flmoon(n, 0)[0][0]
    same = single(days - jd * mpf(2)**-50) == single(days + jd * mpf(2)**-50)  # whatever a double's rounding
    return [(single(days), 0 if same else jd / 4 + 2**27 * days), (mpf(n), 0)]


def lunskybright(alpha, rho, k, altmoon, alt, dist):
    a, d = abs(180 - alpha), dist / m('60.27')
    light = 10**(m('-0.4') * (m('3.84') + m('0.026') * a + m('4e-9') * a**4)) / d**2
    if a < 7: light *= m('1.35') - m('0.05') * a
    f = m('229087') * (m('1.06') + cos(rho / D)**2)
    f += 10**(m('6.15') - rho / 40) if abs(rho) > 10 else m('6.2e7') / rho**2 if abs(rho) > 0.25 else m('9.9e8')
    def mass(h): return 1 / sqrt(1 - m('0.96') * sin((90 - h) / D)**2)
    dim = 10**(m('-0.4') * k * mass(alt))
    b = f * light * 10**(m('-0.4') * k * mass(altmoon)) * (1 - dim)
    return [(m('22.5') - m('1.08574') * log(b / m('34.08')), 32 / (1 - dim))] if b > m('0.001') else [(mpf(99), 0)]


def computeMoonParam(ra, dec, mjd, longitude, latitude):
    jd = mjd + m('2400000.5')
    sid, = lst(jd, longitude / 15)
    moon = lpmoon(jd, latitude, sid[0])
    sun, size = lpsun(jd), moon[1][1] * 2
    moonRa, moonDec = moon[0][0], moon[1][0]
    apart = subtend(ra / 15, dec, moonRa, moonDec)[0][0] * m('57.29577951308238')
    ha, = adj_time(sid[0] - moonRa)
    alt, az = altit(moonDec, ha[0], latitude)
    angle = subtend(sun[0][0], sun[1][0], moonRa, moonDec)[0][0]
    return [sid, ((1 - cos(angle)) / 2, size / 57), (apart, size), (alt[0], size), (az[0], size),
            (lun_age(jd)[0][0] / m('29.5305888531'), 1), (angle, size / 57), moon[2]]


def ZarnMoonVal(ra, dec, mjd, telescope):
    latitude, longitude = (mpf(float(x)) for x in SITES[int(telescope)]) if telescope < 5 else (mpf(0), mpf(0))
    _, fli, apart, alt, az, phase, _, _ = computeMoonParam(ra, dec, mjd, longitude, latitude)
    return [alt, az, apart, fli, phase]


# 1900, 2199, and up to four centuries off; days that end in .5, and the moment before.
DATES = (2451545.0, 2415020.5, 2524593.75, 2305447.921875, 2597641.984375, 2451544.4921875)
TARGETS = ((0.0, 0.0), (123.25, 45.5), (310.5, -62.75), (200.0, 5.25), (15.75, -30.0))
TINY = 0.000537109375  # [deg], 9.4e-6 rad
ROWS = [(lst, jd, west) for jd, west in zip(DATES, (0.0, -3.25, 7.5, 11.875, -11.5, 1.0))] + [
    (adj_time, x) for x in (12.0, -12.0, 12.25, -12.25, 36.5, -30.0, 99999.0)] + [
    (atan_circ, x, y) for x, y in ((0.0, 0.0), (0.0, 2.0), (0.0, -2.0), (-1.0, 0.0), (2.0, 3.0),
                                   (-2.0, 3.0), (-2.0, -3.0), (2.0, -3.0), (2.0, 0.0))] + [
    (altit, *row) for row in ((-20.0, 1.5, -30.0), (35.5, -4.25, 52.0), (80.0, 0.0, 20.0),
                              (10.0, 0.0, 20.0), (-35.0, 9.75, 61.5), (5.0, -11.0, -45.25))] + [
    (subtend, *row) for row in (
        (0.0, 0.0, 1.0, 0.0), (3.25, 50.0, 15.5, -20.0), (23.75, -75.5, 0.5, -70.25),
        (5.0, 60.0, 5.0, 60.0 + TINY), (5.0, 60.0, 5.0 + TINY / 15, 60.0), (23.99999, 80.0, 0.00001, 80.0001),
        (0.00001, -10.0, 23.99999, -10.0), (2.0, 60.25, 2.00003, 60.2501), (2.0, -60.25, 2.00003, -60.2503),
        # Beside the limits: within 0.00095 rad of a pole, within 0.00105 and 0.00002; 1.2e-5 rad apart.
        (6.0, 89.9456, 6.0361, 89.9456), (6.0, 89.9398, 6.032, 89.9398), (6.0, -89.9398, 6.032, -89.9398),
        (6.0, 89.9398, 6.0437, 89.9398), (6.0, -89.9456, 6.0361, -89.9456))] + [
    (lpsun, jd) for jd in DATES] + [
    (lpmoon, jd, lat, sid) for jd, lat, sid in zip(DATES, (-30.0, 52.25, -64.5, 0.0, 38.75, 90.0),
                                                   (6.0, 0.25, 17.5, 22.75, 11.125, 3.0))] + [
    (flmoon, n, nph) for n, nph in ((0, 0), (1237, 0), (0, 2), (3711, 1), (-3711, 3), (-4947, 0), (4948, 2),
                                    (120000, 0), (-120000, 1), (110000, 2), (-110000, 3), (5, 4), (5, -1))] + [
    (lun_age, jd) for jd in DATES + (2451551.2604, 2451580.0, 1721424.5)] + [
    # 4e8 is 13 million lunations away, where the corrections put new moons out of order.
    (lun_age, start + 11.3 * i) for start, count in ((1.7e6, 8), (1e7, 8), (4e8, 40)) for i in range(count)] + [
    (lunskybright, *row) for row in (
        (180.0, 30.0, 0.172, 60.0, 60.0, 60.27), (90.0, 45.0, 0.172, 30.0, 60.0, 60.27), (0.0, 120.0, 0.25, 10.0, -20.0, 55.5),
        (180.0, 0.125, 0.172, 60.0, 60.0, 60.27), (175.0, 30.0, 0.172, 60.0, 60.0, 56.0), (186.5, 30.0, 0.172, 60.0, 60.0, 64.0),
        (173.0, 30.0, 0.172, 60.0, 60.0, 60.0), (172.0, 30.0, 0.172, 60.0, 60.0, 60.0), (174.0, 30.0, 0.172, 60.0, 60.0, 60.0),
        (150.0, 0.25, 0.3, 45.0, 80.0, 60.0), (150.0, 0.2501, 0.3, 45.0, 80.0, 60.0), (150.0, 10.0, 0.3, 45.0, 80.0, 60.0),
        (150.0, 10.0001, 0.3, 45.0, 80.0, 60.0), (150.0, -20.0, 0.3, 45.0, 80.0, 60.0), (150.0, -0.125, 0.3, 45.0, 80.0, 60.0),
        (150.0, -5.0, 0.3, 45.0, 80.0, 60.0), (180.0, 30.0, 0.0, 60.0, 60.0, 60.27),
        (3.0, 80.0, 0.172, 60.0, 60.0, 1224.6), (3.0, 80.0, 0.172, 60.0, 60.0, 1224.61))] + [
    (computeMoonParam, ra, dec, jd - 2400000.5, longitude, latitude) for (ra, dec), jd, longitude, latitude in
    zip(TARGETS, DATES, (0.0, -120.5, 67.5, 178.25, -5.25), (0.0, 52.25, -29.75, 80.5, -66.0))] + [
    (ZarnMoonVal, *target, 60000.25 + 7.5 * telescope, telescope) for telescope, target in enumerate(TARGETS + TARGETS[1:2])]

# What no formula says: not-a-number stays, dates beyond the series' reach have no age, unknown
# telescopes stand at 0, 0.
RULES = """lst nan 0 = nan 0
lst inf 0 = nan 0
adj_time nan = nan 0
adj_time 1e5 = 1e5 0
adj_time -1e5 = -1e5 0
atan_circ 0 nan = nan 0
altit 0 nan 0 = nan 0 nan 0
subtend 0 0 0 nan = nan 0
subtend 5 90 5 90 = 0 0
lpsun nan = nan 0 nan 0
lpmoon 2451545 nan 0 = nan 0 nan 0 nan 0
lun_age nan = nan 0 0 0
lun_age 1e300 = nan 0 0 0
lun_age -1e300 = nan 0 0 0
lun_age 6.8360001e9 = nan 0 0 0
lunskybright nan 30 0.172 60 60 60.27 = 99 0
getTelescopeCoord 5 = -1 0 0 0 0 0
getTelescopeCoord -1 = -1 0 0 0 0 0
getTelescopeCoord 3 = 0 0 -29.8639 0 67.4134 0"""

print('# Made by accuracy/sky-table.py, which says how.')
for routine, *inputs in ROWS:
    outputs = routine(*(x if routine is flmoon else mpf(x) for x in inputs))
    print(routine.__name__, *inputs, '=',
          *(f'{nstr(value, 20)} {nstr(abs(mpf(size)) * mpf(2)**-50, 2)}' for value, size in outputs))
print(RULES)
