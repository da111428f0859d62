/// What the help of zarn-moon says after its options.
#ifndef ZARN_MOON_HELPNOTES_H
#define ZARN_MOON_HELPNOTES_H

namespace zarn::moon {

inline constexpr char HELP_NOTES[] = R"(
Tells how the moon affects a night and the targets in it: when it is up, how
bright it is, how far it is from each target, and how much light it adds there.

  zarn-moon --place "42.5N 12.3E"
  zarn-moon -T OLAN -d 2026-12-24 -t "05:35:17.3 -05:23:28" --min-altitude 30
  zarn-moon -T VEK1 --nights 30
  zarn-moon -T VEK1 --targets list.csv --format csv -o night.csv
  zarn-moon -T VEK1 --targets list.csv --nights 180 --plot map.png

Write positions in degrees, or sexagesimal; a sexagesimal right ascension is in
hours. Positions refer to J2000 and are precessed to the night. In a file of
targets, lines that begin with # are ignored. The best window is the longest
stretch without moon if it lasts an hour or more, else the longest stretch.

With targets, --nights shows what each night is worth for each of them: the
hours that the limits leave, and the same in dark-equivalent hours. These weight
each hour by 10^(-0.4 (dark sky - sky)) for the brighter sky and by
10^(-0.8 k (X - 1)) for the light lost in the air, k being the extinction and X
the airmass: as much depth is reached in so many hours with the target at the
zenith of a dark sky. Twilight adds nothing to them. The limits also bound the
best window of a single night.

Times are in UT. Tonight begins at the last local mean noon. The sun and the moon
rise and set when the upper limb does: with the centre at -0.833 degrees. All
altitudes are without refraction.

"moon sky" is what the moon adds at a target, "sky" is the total, both in V
magnitudes per square arc second. The model does not cover twilight or targets
below the horizon; the result says so there.

)";

}  // namespace zarn::moon

#endif  // ZARN_MOON_HELPNOTES_H
