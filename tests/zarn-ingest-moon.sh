#!/usr/bin/env bash
# Tests of the moon's values that zarn-ingest adds to headers.
#   zarn-ingest-moon.sh PROGRAM
set -u
program=$(realpath "$1")
. "$(dirname "$0")/support/checks.sh"
. "$(dirname "$0")/support/headers.sh"

# pointed FILE CARD...: a header with an instant, with a position, and the given cards.
pointed() {
    local file=$1
    shift
    header "$file" 'MJD-OBS =       61364.09314236 / 2026-11-20T02:14:07.5' \
        'RA      =            83.822083' 'DEC     =            -5.391111' "$@"
}
# moon NAME KEYWORD: a value in a result, in the columns 11 to 30.
moon() { cards "out/$1.fits" | sed -n "s/^$(printf %-8s "$2")= \(.\{20\}\) \/ .*/\1/p"; }
# near VALUE EXPECTED TOLERANCE
near() {
    # shellcheck disable=SC2016 # awk's own variables
    check "$1 is not $2" awk -v value="$1" -v expected="$2" -v tolerance="$3" \
        'BEGIN {d = value - expected; exit value == "" || d > tolerance || d < -tolerance}'
}
# nearMoon NAME ALTITUDE AZIMUTH DISTANCE ILLUMINATION PHASE
nearMoon() {
    near "$(moon "$1" MOONALT)" "$2" 0.5  # the series' 0.3 degrees, in each coordinate
    near "$(moon "$1" MOONAZ)" "$3" 0.5
    near "$(moon "$1" MOONDIST)" "$4" 0.5
    near "$(moon "$1" MOONFLI)" "$5" 0.005
    near "$(moon "$1" MOONPHAS)" "$6" 0.002
}
# same NAME NAME: whether two results have the same cards of the moon, five of them.
same() {
    check "$1 and $2 differ" cmp -s <(cards "out/$1.fits" | grep ^MOON) <(cards "out/$2.fits" | grep ^MOON)
    check "cards in $1" [ "$(cards "out/$1.fits" | grep -c ^MOON)" = 5 ]
}

# The expected values come from astropy 5.2.1: get_body for moon and sun with its built-in
# ephemeris, AltAz without pressure, separation from FK5 positions; the phase from the instant of
# equal ecliptic longitudes.
testMoonValues() {
    pointed a
    header b 'MJD-OBS = 60000.75' 'RA      = 150' 'DEC     = +2.0D1'
    run 0 -m Vek1 -o out a; nearMoon a 47.89 314.57 87.69 0.750 0.366
    says '1 converted, 0 failed in '; says '; moon: 1 with values, 0 without position or time, 0 malf'
    check "form" [ "$(cards out/a.fits | sed -n '7,9p')" = "$(printf '%s\n' \
        "MOONALT = $(moon a MOONALT) / [deg] moon altitude, no refraction (VEK1)" \
        "MOONAZ  = $(moon a MOONAZ) / [deg] moon azimuth, N through E (VEK1)" \
        "MOONDIST= $(moon a MOONDIST) / [deg] angle between moon and RA, DEC (VEK1)")" ]
    check "END comes last" [ "$(cards out/a.fits | sed -n '12,$p')" = END ]
    run 0 -q -f -m OLAN -o out a b; silent
    nearMoon a -8.33 278.21 87.92 0.745 0.366
    nearMoon b 59.78 233.92 97.24 0.339 0.185
    run 0 -f -o out a
    check "unasked" [ "$(cards out/a.fits | grep -c MOON) $(grep -c moon err.txt)" = '0 0' ]
    run 0 -n -m OLAN -o dry a; says '1 would be converted, 0 failed in'; says 'moon: 1 with'; hasNot dry
}

# The same instant and place in other forms, and other equinoxes.
testMoonForms() {
    local time="DATE-OBS= '2026-11-20T02:14:07.5'" ra="RA      = '05:35:17.3'" dec="DEC     = '-05:23:28'"
    pointed a
    header colons "$time" "$ra" "$dec" "TIMESYS = 'UTC(NIST)'"
    header blanks "$time" 'MJD-OBS =' "RA      = ' 05 35  17.3'" "DEC     = '-05 23 28 '" 'EQUINOX = '
    header mixed "DATE-OBS= '1999-01-01'" 'MJD-OBS = 61364.09314236' "$ra" 'DEC     = -5.391111' 'EQUINOX = +2000'
    header again "$time" "$ra" "$dec" "RA      = 'x'" 'HIERARCH EQUINOX = 2000.0' 'COMMENT TIMESYS'
    pointed long; yes '' | head -n 40 >>long; pointed crlf; sed -i 's/$/\r/' crlf
    run 0 -q -m VEK1 -o out a colons blanks mixed again long crlf; silent
    for name in colons blanks mixed again long crlf; do same a $name; done
    run 0 -q -c -f -m VEK1 -o out a long; silent; same a long
    pointed b1950 'EQUINOX = 1950.0'; pointed date 'EQUINOX = 2026.8857'
    run 0 -q -m VEK1 -o out b1950 date
    # What precession changes, by astropy as above: 88.304, 87.694 and 87.366; rounded twice here.
    near "$(awk "BEGIN {print $(moon b1950 MOONDIST) - $(moon a MOONDIST)}")" 0.610 0.011
    near "$(awk "BEGIN {print $(moon date MOONDIST) - $(moon a MOONDIST)}")" -0.328 0.011
}

# What is there already stays, in whatever form.
testMoonKept() {
    pointed a 'MOONALT =                 12.3 / ours' "HIERARCH moonfli = 'dark'" 'MOONAZ' 'COMMENT MOONDIST= 1'
    run 0 -m VEK1 -o out a
    says 'a:7: warning: MOONALT is there already and is kept'
    says 'a:8: warning: MOONFLI is there already and is kept'
    says 'a:9: warning: MOONAZ is there already and is kept'
    says '1 converted (1 with warnings), 0 failed'; says 'moon: 1 with values'
    check "kept" [ "$(moon a MOONALT)" = '                12.3' ]
    check "added" [ "$(cards out/a.fits | grep '^MOON' | cut -c 1-8 | tr '\n' ' ')" = 'MOONALT  MOONAZ MOONDIST MOONPHAS ' ]
}

# Headers without position or time, and with malformed ones, come out as without the option.
testMoonMissing() {
    local time='MJD-OBS = 60000.75' ra='RA      = 150' dec='DEC     = 20' name
    header none; header notime "$ra" "$dec"; header nora "$time" "$dec" "DATE-OBS= '2026-11-20'"
    header blank "$time" "$ra" "DEC     = '  '" 'COMMENT DEC     = 1'; header undefined "$time" 'RA      = / no' "$dec"
    header hidden "$time" "$ra" END "$dec"
    run 0 -m VEK1 -o out none notime nora blank undefined
    says '5 converted, 0 failed in'; says 'moon: 0 with values, 5 without position or time, 0 malformed'
    check "warnings" [ "$(grep -c warning: err.txt)" = 0 ]
    run 0 -q -m VEK1 -o out hidden
    run 0 -q -o plain none notime nora blank undefined hidden
    check "unchanged" diff -r out plain
}

testMoonMalformed() {
    local time='MJD-OBS = 60000.75' ra='RA      = 150' dec='DEC     = 20' row names=() text
    local bad=(
        "RA      = 'abc'|is neither a number nor" "RA      = '83.8'|is neither a number nor"
        "RA      = 1e400|is no number" "RA      = NaN|is no number" "RA      = -inf|is no number"
        "RA      = 83,8|is no number" "RA      = 05 35 17.3|\"05 35 17.3\" is no number"
        "RA      = 05:35:17.3|is no number" "RA      = 360.5|is not from 0 to 360"
        "RA      = (1.0,2.0)|is no number" "RA      = T|is no number" "RA      = +-5|is no number"
        "RA      = '25:00:00'|is beyond 24" "RA      = '05:61:00'|outside 0 to 60"
        "RA      = '-05:35:17'|must have no sign" "RA      = '05::17'|" "RA      = '1:2:3:4'|is no angle"
        "DEC     = -90.1|is not from -90 to 90" "DEC     = '+90:00:01'|is beyond 90"
        "DEC     = '- 5 23'|" "DEC     = '-05:23:28&'|" "MJD-OBS = '60000'|is no number"
        "MJD-OBS = 0.0|is not from 1 to 124593" "MJD-OBS = 2460000.5|is not from 1 to 124593"
        "MJD-OBS = 60000.5x|is no number" "DATE-OBS= '2026-11-20'|is no instant"
        "DATE-OBS= '20/11/26'|is no instant" "DATE-OBS= '2026-02-30T00:00:00'|is no date of the calendar"
        "DATE-OBS= '2026-11-20T24:00:00'|is not from 0 to 23" "DATE-OBS= '2026-11-20T02:14:07Z'|is no instant"
        "DATE-OBS= 2026-11-20T02:14:07|is no text" "DATE-OBS= '1700-01-01T00:00:00'|is not from 1858-11-18"
        "DATE-OBS= '9999-12-31T00:00:00'|is not from 1858" "EQUINOX = 'J2000'|is no number"
        "EQUINOX = 20000|is not from 1800 to 2200" "EQUINOX = 1|is not from 1800"
        "TIMESYS = 'LOCAL'|is no time scale near" "TIMESYS = 5|is no text"
    )
    for row in "${bad[@]}"; do
        text=${row%|*} names+=("bad${#names[@]}")
        header "${names[-1]}" "$text" "$time" "$ra" "$dec"
        [[ $text != DATE-OBS* ]] || sed -i /MJD-OBS/d "${names[-1]}"
    done
    run 0 -m VEK1 -o out "${names[@]}"
    for row in "${bad[@]}"; do
        check "${row%|*} gives no warning" grep -q "^zarn-ingest: ${names[0]}:4: warning: no moon values: $(
            sed 's/ *=.*//' <<<"$row"): .*${row##*|}" err.txt
        names=("${names[@]:1}" "${names[0]}")
    done
    says "${#bad[@]} converted (${#bad[@]} with warnings), 0 failed in"
    says "moon: 0 with values, 0 without position or time, ${#bad[@]} malformed"
    run 0 -q -o plain "${names[@]}"
    check "unchanged" diff -r out plain
}

testMoonUsage() {
    header a
    run 2 -m VEK5 a; says 'option --moon: "VEK5" is none of OLAN, VEK1, VEK2, VEK3, VEK4'
    run 2 --moon= a; says 'option --moon: "" is none of'
    run 2 -m a; says 'option --moon: "a" is none of'
    run 0 --help; check "no names in the help" grep -qx 'Telescopes: OLAN, VEK1, VEK2, VEK3, VEK4.' out.txt
}

runTests
