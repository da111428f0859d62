/// What the help of zarn-moon says after its options.
#ifndef ZARN_MOON_HELPNOTES_H
#define ZARN_MOON_HELPNOTES_H

namespace zarn::moon {

inline constexpr char HELP_NOTES[] = R"(
Tells how the moon affects a night and the targets in it: when it is up, how
bright it is, how far it is from each target, and how much light it adds there.

  zarn-moon --place "42.5N 12.3E"
  zarn-moon -T OLAN -d 2026-12-24 -t "05:35:17.3 -05:23:28" --min-altitude 30
  zarn-moon --site hill --nights 30
  zarn-moon -T VEK1 --targets list.csv --format csv -o night.csv
  zarn-moon -T VEK1 --targets list.csv --nights 180 --plot map.png

Write positions in degrees, or sexagesimal, with colons, blanks or units
(5h35m17.3s); a sexagesimal right ascension is in hours. Positions refer to J2000
and are precessed to the night.

In a file of targets, fields are separated by commas, semicolons or tabs; lines
that begin with # are ignored. The first line may name the columns, in any order:
name, ra, dec, min_altitude, weight. All further ones go into CSV and JSON. The
best window is, of the stretches that the limits allow, the longest without moon
if that lasts an hour or more, else the longest of all.

With targets, --nights shows what each night is worth for each of them: the
hours that the limits leave, and the same in dark-equivalent hours. These weight
each hour by 10^(-0.4 (dark sky - sky)) for the brighter sky and by
10^(-0.8 k (X - 1)) for the light lost in the air, k being the extinction and X
the airmass: as much depth is reached in so many hours with the target at the
zenith of a dark sky. Twilight adds nothing to them.

A file of sites has a section for each: [hill], then latitude = 42.5N, longitude =
12.3E and, if wanted, elevation, timezone, extinction, dark-sky and horizon; see
zarn-moon-sites(5).

Times are in UT, those of events, phases and windows rounded to the nearest
minute; sidereal times are cut to the minute. Tonight begins at the last local
mean noon. The sun and the moon rise and set when the upper limb does: with the
centre at -0.833 degrees. All altitudes are without refraction. An eclipse of the
moon is told if the moon is up for some of it. The lit fraction is that seen from
the site; almanacs print that seen from the Earth's centre, up to 0.01 more or
less.

Sun and moon are where almanacs have them. With --ephemeris library they are where
zarn-ingest --moon has them, which is up to 0.38 degrees and some minutes off.

"moon sky" is what the moon adds at a target, "sky" is the total, both in V
magnitudes per square arc second. The model does not cover twilight or targets
below the horizon; the result says so there.

)";

}  // namespace zarn::moon

#endif  // ZARN_MOON_HELPNOTES_H
