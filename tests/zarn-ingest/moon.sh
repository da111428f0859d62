#!/usr/bin/env bash
# Tests of the moon's values that zarn-ingest adds to headers.
#   moon.sh PROGRAM
set -u
program=$(realpath "$1")
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/../support/checks.sh"
. "$(dirname "$0")/../support/headers.sh"

place=('RA      =            83.822083' 'DEC     =            -5.391111')
pointed=("DATE-OBS= '2026-11-20T02:14:07.5'" "${place[@]}")
# Of this instant and place, seen from VEK1, by PyEphem 4.1.4: altitude 47.89, azimuth 314.57,
# distance 87.70, lit 0.7501, age 0.3657; the series are at worst 0.38 degrees and 0.003 off.
mapfile -t moon <"$data/moon/cards.txt"

testMoonCardsStandBeforeEnd() {
    header a "${pointed[@]}"; header hidden "${pointed[@]}" END 'MOONALT = 1'
    header long "${pointed[@]}"; yes '' | head -n 40 >>long
    header crlf "${pointed[@]}" END; sed -i 's/$/\r/' crlf
    run 0 -q -m vek1 -o out a hidden long crlf; silent
    run 0 -q -c -m VEK1 -o sums a; silent
    local name
    for name in out/a out/hidden out/long out/crlf sums/a; do
        check "$name" diff <(printf '%s\n' "${pointed[@]}" "${moon[@]}" END) \
            <(cards $name.fits | grep -vE '^$|^(CHECK|DATA)SUM' | tail -n 9)
    done
    run 0 -f -o out a; told <<<'zarn-ingest: 1 converted, 0 failed'
    check "no cards" [ "$(cards out/a.fits | grep -c MOON)" = 0 ]
    run 0 -n -m OLAN -o dry a; hasNot dry
    told <<<'zarn-ingest: 1 would be converted, 0 failed; moon: 1 with values, 0 without position or time, 0 malformed'
}

# What is there already stays, in whatever form.
testMoonKept() {
    local kept=('MOONALT =                 12.3 / ours' "HIERARCH moonfli = 'dark'" 'MOONAZ  =' 'COMMENT MOONDIST= 1')
    header a "${pointed[@]}" "${kept[@]}"
    run 0 -m VEK1 -o out a; told <"$data/moon/kept.txt"
    check "cards" diff <(printf '%s\n' "${kept[0]}" "HIERARCH MOONFLI = 'dark'" "${kept[@]:2}" "${moon[2]}" "${moon[4]}" END) \
        <(cards out/a.fits | tail -n 7)
}

# Headers without position or time, and with malformed ones, come out as without the option.
testMoonWithoutValues() {
    header none; header notime "${place[@]}"; header nora "${pointed[@]::1}" "${place[1]}"
    header bad "RA      = 'abc'" "${pointed[@]}"; header day "DATE-OBS= '2026-11-20'" "${place[@]}"
    run 0 -m VEK1 -o out none notime nora bad day; told <"$data/moon/without.txt"
    run 0 -q -o plain none notime nora bad day
    check "unchanged" diff -r out plain
}

runTests
