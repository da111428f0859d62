#!/usr/bin/env bash
# Tests of zarn-moon.
#   zarn-moon.sh PROGRAM
set -u
program=$(realpath "$1")
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/support/checks.sh"

# field ROW COLUMN: a cell of the CSV in out.txt, rows counted from 1 below the titles.
field() {
    awk -F, -v row="$1" -v column="$2" 'NR == 1 { for (i = 1; i <= NF; i++) at[$i] = i }
        NR == row + 1 { print $at[column] }' out.txt
}
# near WHAT FOUND EXPECTED TOLERANCE
near() {
    check "$1 is $2 instead of $3" awk -v a="$2" -v b="$3" -v t="$4" \
        'BEGIN { d = a - b; exit !(a != "" && d <= t && d >= -t) }'
}
# at EVENT TIME MINUTES: what the table in out.txt says of an event, within so many minutes.
at() {
    local line found
    line=$(grep -E "^ +$1 " out.txt)
    found=${line: -16}
    near "$1" "$(date -u -d "$found" +%s)" "$(date -u -d "$2" +%s)" $(($3 * 60))
}
none() { check "$1 is there" grep -qE "^ +$1 +none in this night$" out.txt; }
shows() { check "not in the result: $1" grep -qF -- "$1" out.txt; }

# Sun and moon of another theory: astropy 5.2 (built-in ephemeris, no refraction), crossings of
# -0.833, -6, -12 and -18 degrees. The sun within its minute, the moon within two.
testTimesOfANight() {
    run 0 -p "42.5N 12.3E" -d 2026-12-20; silent
    at sunset '2026-12-20 15:40' 1; at sunrise '2026-12-21 06:37' 1
    at 'civil dusk' '2026-12-20 16:12' 1; at 'civil dawn' '2026-12-21 06:05' 1
    at 'nautical dusk' '2026-12-20 16:48' 1; at 'nautical dawn' '2026-12-21 05:29' 1
    at 'astronomical dusk' '2026-12-20 17:22' 1; at 'astronomical dawn' '2026-12-21 04:55' 1
    at moonrise '2026-12-20 12:21' 2; at moonset '2026-12-21 03:37' 2
    at 'moon transit' '2026-12-20 19:52' 2
    run 0 -p "30:00S 70W" -d 2027-03-15
    at sunset '2027-03-15 22:57' 1; at sunrise '2027-03-16 10:41' 1
    at moonrise '2027-03-15 18:00' 2; at moonset '2027-03-16 04:03' 2
    at 'moon transit' '2027-03-15 23:01' 2
    run 0 -p "60N 25E" -d 2026-06-21
    at sunset '2026-06-21 19:48' 1; at moonset '2026-06-21 22:00' 2; none moonrise
    none 'nautical dusk'; none 'astronomical dawn'
    run 0 -p "75N 25E" -d 2026-06-21; shows 'The sun does not set: no table.'; none sunset
    shows 'A bright night'
    run 0 -p "75N 25E" -d 2026-12-21 -s 60 --format csv
    check "a night without sunset lasts a day" [ "$(wc -l <out.txt)" = 25 ]
    # The phases of December 2026, from an almanac: first quarter, full moon, last quarter, new.
    run 0 -p "42.5N 12.3E" -d 2026-12-15
    at 'first quarter' '2026-12-17 05:43' 3; at 'full moon' '2026-12-24 01:28' 3
    at 'last quarter' '2026-12-30 18:59' 3; at 'new moon' '2027-01-07 20:24' 3
}

testValuesOfAnInstant() {
    run 0 -p "0N 0E" --mjd 51544.5 -t "0 0" --equinox date --format csv
    near sidereal "$(field 1 lst_h)" 18.6974 6e-5
    near altitude "$(field 1 moon_alt_deg)" 30.5472 6e-5
    near azimuth "$(field 1 moon_az_deg)" 257.2557 6e-5
    near distance "$(field 1 moon_dist_deg)" 137.2022 6e-5
    near phase "$(field 1 phase)" 0.8317 6e-5
    near illumination "$(field 1 illumination)" 0.2346 6e-5
    near sun "$(field 1 sun_alt_deg)" -10 100
    check "the sky is no number by day" [ -z "$(field 1 sky_mag)" ]
    # Fifty years of precession carry 0h, 0 degrees by 50 * 46.125 and 50 * 20.043 arc seconds.
    run 0 -p "0N 0E" --mjd 69807 -t "0 0" --format csv
    local precessed; precessed=$(field 1 moon_dist_deg)
    run 0 -p "0N 0E" --mjd 69807 -t "0.64063 0.27838" --equinox date --format csv
    near "the precessed distance" "$(field 1 moon_dist_deg)" "$precessed" 0.001
    # Degrees and hours are the same place.
    run 0 -T VEK1 --mjd 61000 -t "83.8220833 -5.3911111" -t "05:35:17.3 -05:23:28" --format csv
    check "sexagesimal" [ "$(field 1 alt_deg)" = "$(field 2 alt_deg)" ]
    local east; east=$(run 0 -p "10N 15E" --mjd 61000 --format csv; field 1 lst_h)
    run 0 -p "10N 0W" --mjd 61000 --format csv
    local west; west=$(field 1 lst_h)
    run 0 -p "0N 0E" --mjd 61000.830367317656 -t "359.99999 0" --format csv
    check "rounding stays on the circle" [ "$(field 1 lst_h),$(field 1 ra_deg)" = 0.00000,0.0000 ]
    # On its way through the north the moon stands at 359.99997 degrees.
    run 0 -p "30.5S 14.346038E" --mjd 61391.72029593 -t "359.999999 0" --equinox date
    shows ' 55.3      0.0 '; shows ': 0.0000 0.0000 degrees'
    near "an hour further east" "$(awk -v a="$east" -v b="$west" \
        'BEGIN { d = a - b; print d < 0 ? d + 24 : d }')" 1 1e-4
}

testLightAtTargets() {
    # From 03:37 on the moon is down.
    run 0 -p "42.5N 12.3E" -d 2026-12-20 -t "200 40" -s 30 --format csv --dark-sky 21.5
    local row
    row=$(grep -n 2026-12-21T04:00:00Z out.txt | cut -d: -f1)
    check "the dark sky alone" [ "$(field $((row - 1)) sky_mag),$(field $((row - 1)) moon_sky_mag)" = 21.500, ]
    row=$(grep -n 2026-12-21T01:00:00Z out.txt | cut -d: -f1)
    # Both lights together, by hand: -2.5 log10(10^-8.6 + 10^(-0.4 * moon)).
    near "the sum" "$(field $((row - 1)) sky_mag)" \
        "$(awk -v m="$(field $((row - 1)) moon_sky_mag)" \
            'BEGIN { print -2.5 * log(10 ^ -8.6 + 10 ^ (-0.4 * m)) / log(10) }')" 0.002
    local bright; bright=$(field $((row - 1)) moon_sky_mag)
    run 0 -p "42.5N 12.3E" -d 2026-12-20 -t "200 40" -s 30 --format csv -k 0.05
    check "less extinction, less light" awk -v a="$(field $((row - 1)) moon_sky_mag)" -v b="$bright" \
        'BEGIN { exit !(a > b) }'
    run 0 -p "42.5N 12.3E" -d 2026-12-20 -t "200 40" -s 60 --min-altitude 40
    shows 'moon down'; shows 'target down'; shows 'twilight'
    # 200 40 passes 40 degrees about 02:05; the moon sets at 03:37, night ends at 04:55.
    check "the best window" grep -qE 'best window.* 03:3[78] to 04:5[45] UT, moon down' out.txt
    check "marks" [ "$(grep -c '\*$' out.txt)" = 1 ]
    run 0 -p "42.5N 12.3E" -d 2026-12-20 -t "0 -85" --min-altitude 40
    shows 'high: none'
    run 0 -T olan -d 2026-12-20 --format json -t "200 40" --min-altitude 40; shows '"best_window": {'
    shows '"moon_up": false'; shows '"sky_mag":null'
}

testManyNights() {
    run 0 -p "42.5N 12.3E" -d 2026-12-01 --nights 31 --format csv
    check "a line a night" [ "$(wc -l <out.txt)" = 32 ]
    near "the last night" "$(date -u -d "$(field 31 night)" +%d)" 31 0
    check "New moon on the 9th, full moon on the 24th" \
        [ "$(field 9 word) $(field 17 word) $(field 24 word)" = 'dark grey bright' ]
    near "no moon: all of the night is dark" "$(field 9 dark_hours)" "$(field 9 astronomical_hours)" 0.02
    run 0 -p "42.5N 12.3E" -d 2026-12-01 --nights 31
    check "no moonrise in one night of the month" grep -q ' none ' out.txt
}

testTargetsFromAFile() {
    cat >list.csv <<'LIST'
Name,RA,Dec
# in the winter
"Nebula, ""great""" , 05:35:17.3, -05:23:28

plain,83.8220833,-5.3911111
LIST
    sed -i 's/$/\r/' list.csv
    run 0 -T OLAN -d 2026-12-24 --targets list.csv --format csv
    check "names" grep -qF '"Nebula, ""great"""' out.txt
    check "one row each" [ "$(grep -c ',plain,' out.txt)" = "$(grep -c Nebula out.txt)" ]
    # Quoted commas aside, all rows have as many columns.
    check "columns" [ "$(sed 's/"[^"]*""[^"]*"""/x/' out.txt | awk -F, '{ print NF }' | sort -u | wc -l)" = 1 ]
    local line
    while IFS='|' read -r line reason; do
        printf 'good,1,2\n%s\n' "$line" >bad.csv
        run 2 -T OLAN --targets bad.csv; says "bad.csv:2: "; says "$reason"
    done <<'LINES'
a,1|is not name, right ascension, declination
a,1,2,3|is not name, right ascension, declination
,1,2|the name is empty
a,361,2|"361" is beyond 360
a,1,-91|"-91" is beyond 90
a,x,2|"x" is no number
a,nan,2|"nan" is no number
a,12:00:00,2|is neither two numbers in degrees nor two sexagesimal ones
a,12:60:00,02:00:00|minutes or seconds outside 0 to 60
a,12:-1:00,02:00:00|is no angle of the form
a,12:01:-1,02:00:00|is no angle of the form
"a,1,2|a quote is not closed
"a"b,1,2|something stands behind a closing quote
LINES
    mkfifo pipe; (sleep 0.3; printf '\357\273\277name,ra,dec\na,1,2\n' >pipe) &
    run 0 -T OLAN --targets pipe
    : >empty.csv; run 2 -T OLAN --targets empty.csv; says 'no target in empty.csv'
    run 2 -T OLAN --targets missing.csv; says 'missing.csv cannot be read: No such file'
    run 2 -T OLAN --targets .; says 'cannot be read: Is a directory'
}

testWrongUsage() {
    local words reason
    while IFS='|' read -r words reason; do
        eval "run 2 $words"; says "$reason"
        check "a result in spite of: $words" [ ! -s out.txt ]
    done <<'LINES'
|neither --telescope nor --place
-T OLAN extra|unexpected argument "extra"
-T NONE|option --telescope: "NONE" is none of OLAN, VEK1
-T OLAN -p "1N 1E"|--telescope and --place exclude each other
-p 42.5N|option --place: "42.5N" is no latitude and longitude
-p "42.5 12.3"|"42.5" does not end in N or S
-p "12.3E 42.5N"|"12.3E" does not end in N or S
-p "91N 0E"|"91N" is beyond 90
-p "1N 180.1E"|"180.1E" is beyond 180
-p "+1N 1E"|"+1N" must have no sign
-T OLAN -t "1"|option --target: "1" is not a right ascension and a declination
-T OLAN -t "1 2 3"|is not a right ascension and a declination
-T OLAN -t "1 2x"|"2x" is no number
-T OLAN -d 2026-02-30|option --date: "2026-02-30" is no date of the calendar
-T OLAN -d 26-02-03|option --date: "26-02-03" is no date of the form YYYY-MM-DD
-T OLAN -d 1850-01-01|from 1901-01-01 to 2199-12-31
-T OLAN --mjd 1e6|option --mjd: "1e6" is not from
-T OLAN --mjd inf|option --mjd: "inf" is no number
-T OLAN -d 2026-01-01 --mjd 60000|exclude each other
-T OLAN -s 0|option --step: "0" is not from 0.1 to 720
-T OLAN -k 0.1mag|option --extinction: "0.1mag" is no number
-T OLAN --dark-sky 5|option --dark-sky: "5" is not from 10 to 30
-T OLAN --min-altitude 30|--min-altitude needs a target
-T OLAN --nights 1.5|option --nights: "1.5" is not a whole number
-T OLAN --nights 0|option --nights: "0" is not from 1
-T OLAN --nights 3 -t "1 2"|--nights and --target exclude each other
-T OLAN --format xml|option --format: "xml" is not table, csv or json
-T OLAN --equinox 1950|option --equinox: "1950" is not J2000 or date
-T OLAN --plot night.gif|option --plot: "night.gif" is not a name that ends in .png or .svg
-T OLAN --plot ""|option --plot: "" is not a name that ends in .png or .svg
-T OLAN --plot .png|ends in .png or .svg
-T OLAN --plot a.png -o a.png|--plot and --output name the same file
-T OLAN --plot a.png --targets <(seq -f "n,%g,1" 13)|more than 12 targets
-T OLAN -d 2200-01-01|from 1901-01-01 to 2199-12-31
-T OLAN -d 2199-12-31 --nights 2|option --nights: "2" is not so few that they end by 2199-12-31
-T OLAN -t "5:1e1:0 5:0:0"|"5:1e1:0" is no angle of the form 12:34:56.7
-p "N E"|"N" is no number
-T OLAN -o ""|option --output: "" is not a file's name
-T OLAN --no-such-option|the command line is wrong
-T|the command line is wrong
LINES
    run 0 -T OLAN -d 2199-12-31
    run 0 --help; shows '--min-altitude'; shows 'A night is dark when'; silent
    run 0 --version; shows 'zarn-moon 0.'
}

testCompletion() {
    run 0 --bash-completion; silent
    # shellcheck source=/dev/null
    . ./out.txt
    local words expected
    while IFS='|' read -r words expected; do
        IFS=' ' read -ra COMP_WORDS <<<"zarn-moon $words"
        [ "${words% }" = "$words" ] || COMP_WORDS+=('')
        COMP_CWORD=$((${#COMP_WORDS[@]} - 1)) COMPREPLY=()
        _zarn_moon 2>/dev/null  # compopt works in a real completion only
        check "$words completes to ${COMPREPLY[*]}" [ "${COMPREPLY[*]}" = "$expected" ]
    done <<'LINES'
--targ|--target --targets
--format |table csv json
--format = c|csv
--format =|table csv json
-o t|
--local --equi|--equinox
LINES
}

testResultFiles() {
    run 0 -T OLAN -d 2026-12-24 -o night.txt
    check "nothing on standard output" [ ! -s out.txt ]
    check "the table" grep -q 'Night of 2026-12-24' night.txt
    check "permission bits follow the mask" [ "$(stat -c %a night.txt)" = 644 ]
    ln -s night.txt link.txt
    run 0 -T OLAN -d 2026-12-25 -o link.txt
    check "through a link" grep -q 'Night of 2026-12-25' night.txt
    chmod 640 night.txt; run 0 -T OLAN -d 2026-12-25 -o night.txt
    check "permission bits stay" [ "$(stat -c %a night.txt)" = 640 ]
    rm link.txt; ln -s nowhere link.txt; run 0 -T OLAN -d 2026-12-25 -o link.txt; has nowhere; rm nowhere
    ln -s loop loop; run 1 -T OLAN -o loop; says 'loop: Too many levels of symbolic links'; rm loop
    run 1 -T OLAN -o missing/night.txt; says 'missing/night.txt: No such file or directory'
    run 1 -T OLAN -o .; says '.: Is a directory'
    run 1 -T OLAN -o /dev/full; says '/dev/full: No space left on device'
    cp night.txt before.txt
    (ulimit -f 1; "$program" -T OLAN -s 1 -o night.txt 2>err.txt)
    check "a full disk ends with 1" [ $? = 1 ]; says 'night.txt: File too large'
    check "a full disk keeps what was there" cmp -s night.txt before.txt
    check "nothing half-written" [ "$(ls)" = "$(printf '%s\n' before.txt err.txt link.txt night.txt out.txt)" ]
    "$program" -T OLAN >/dev/full 2>err.txt; check "full standard output" [ $? = 1 ]
    says 'standard output cannot be written'
    "$program" -T OLAN -s 1 --format json 2>err.txt | head -n 1 >out.txt; check "a reader that leaves" [ "${PIPESTATUS[0]}" = 1 ]
    run 2 -T OLAN -s 0.1 --targets <(seq -f '%g,1,2' 900); says 'choose a larger --step'
}

testLocalTimes() {
    TZ=XYZ-2:30 run 0 -p "42.5N 12.3E" -d 2026-12-20 --local
    shows '2026-12-20 15:40 (18:10 XYZ)'
    TZ=XYZ-2:30 run 0 -p "42.5N 12.3E" -d 2026-12-20 --local --format csv -s 60
    shows '2026-12-20T16:00:00Z'; shows '2026-12-20T18:30:00+0230'
    TZ=XYZ-2:30 run 0 -p "42.5N 12.3E" -d 2026-12-20 --local --format csv --nights 2
    shows '2026-12-20T15:40Z,2026-12-20T18:10+0230'
}

testPlot() {
    mkdir empty fake
    PATH=empty run 1 -T OLAN --plot n.png; says 'gnuplot, which is not installed'
    printf '#!/bin/sh\necho "line 3: it is broken" >&2; exit 1\n' >fake/gnuplot; chmod 755 fake/gnuplot
    PATH=$PWD/fake:$PATH run 1 -T OLAN --plot n.png; says 'gnuplot failed: line 3: it is broken'
    hasNot n.png
    printf '#!/bin/sh\nprintf x\n' >fake/gnuplot
    PATH=$PWD/fake:$PATH run 1 -T OLAN --plot n.png -o t.txt; says 'gnuplot drew no whole picture'
    hasNot n.png; hasNot t.txt
    printf '#!/bin/sh\nkill -9 $$\n' >fake/gnuplot
    PATH=$PWD/fake:$PATH run 1 -T OLAN --plot n.png; says 'gnuplot was ended by signal 9'
    command -v gnuplot >/dev/null || { echo "no gnuplot here: pictures are not tried"; return; }
    run 0 -T OLAN -d 2026-12-24 -t "83.8 -5.4" --targets <(printf "it's %%d \$x @y\\\\n,10,20\n") --plot "a'b.png"
    check "a PNG" [ "$(head -c 4 "a'b.png" | tail -c 3)" = PNG ]
    run 0 -T OLAN -d 2026-12-24 --plot n.svg; silent
    check "an SVG" grep -q '</svg>' n.svg
    run 0 -p "65N 20E" -d 2026-06-21 -t "83.8 -5.4" --plot n.svg; silent
    run 0 -p "75N 25E" -d 2026-06-21 --plot n.svg; silent
}

runTests
