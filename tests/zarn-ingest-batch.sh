#!/usr/bin/env bash
# Tests of zarn-ingest under a batch system: going on after a kill, journals, shards.
#   zarn-ingest-batch.sh PROGRAM EXAMPLES
# Everything happens in a directory of its own, which is removed at the end.
set -u
program=$(realpath "$1") examples=$(realpath "$2")
samples=$examples/headers
. "$(dirname "$0")/support/checks.sh"
. "$(dirname "$0")/support/headers.sh"

journalFields() { cat "$1"/*.journal | cut -f "$2"; }
# headers NUMBER: as many in the directory in, each with an object of its own.
headers() {
    local content i
    content=$(<"$samples/imager.hdr")
    mkdir -p in
    for i in $(seq "$1"); do echo "${content/Field 17/Field $i}" >"in/$i.hdr"; done
}

testResume() {
    headers 3; header ./other
    run 0 -q -c -o out in/1.hdr in/2.hdr other
    touch -d 2026-01-01 out/*.fits; cp -p out/1.fits before
    header other "OBJECT  = 'x'"
    run 1 -c -o out in/1.hdr; says 'out/1.fits exists already'
    run 1 -c -r -o out 'in/*.hdr' other
    says 'other: the result out/other.fits exists already'; says '3 converted, 1 failed'
    check "made again" [ -z "$(find out -name '[12].fits' -newer before)" ]
    run 1 -n -c -r -o out in/1.hdr other
    check "dry run" [ "$(cat out.txt)" = 'would keep what in/1.hdr gave: out/1.fits' ]
    run 1 -r -o out in/1.hdr; says 'out/1.fits exists already'  # it has no checksums now
    printf 'torn' >out/2.fits
    run 1 -q -c -r -o out in/2.hdr; says 'out/2.fits exists already'
    run 0 -q -c -r -f -o out 'in/*.hdr' other; silent
    check "replaced without need" [ -z "$(find out -name 1.fits -newer before)" ]
    check "not replaced" [ "$(cards out/other.fits | grep -c OBJECT)" = 1 ]
    printf '[ingest]\nlist = list\noutput-dir = out\nresume = T\nchecksum = T\n' >p.ini
    ls in/*.hdr >list
    run 0 -p p.ini; says '3 converted, 0 failed'
}

# Killed in the middle, and once more: the last run completes what the others left.
testKills() {
    headers 600
    ls in/*.hdr >list
    local i before=0 killed=0
    for i in 1 2 3; do
        "$program" -q -r -o out -l list 2>err.txt &
        until [ "$(find out -name '*.fits' 2>/dev/null | wc -l)" -ge $((before + 40)) ]; do :; done
        kill -KILL $!
        wait $! 2>/dev/null
        [ $? != 137 ] || killed=$((killed + 1))
        before=$(ls out | wc -l)
    done
    check "killed" [ "$killed" = 3 ]
    check "left" [ "$before" -lt 600 ]
    run 0 -r -o out -l list; says '600 converted, 0 failed'
    run 0 -q -o single -l list
    check "other results" diff -r out single
}

testJournal() {
    headers 200; cp "$samples/broken.hdr" in
    run 1 -j journal -o out in/1.hdr in/broken.hdr in/none; says '1 converted, 2 failed'
    check "lines" [ "$(journalFields journal 3-)" = "$(printf '%s\t%s\t%s\t%s\t%s\n' \
        in/1.hdr out/1.fits converted 18 2880 in/broken.hdr out/broken.fits failed 0 0 \
        in/none '' failed 0 0)" ]
    run 0 -q -n -j dry in/1.hdr; hasNot dry
    run 2 -j '' in/1.hdr; says 'option --journal: the name is empty'
    run 1 -j no/journal -o out in/2.hdr; says 'Error creating path: no/journal'
    hasNot out/2.fits
    mkfifo names
    "$program" -q -j journal -o out --stdin <names 2>err2.txt &
    exec 9>names
    until [ -n "$(find out -name '.zarn*' 2>/dev/null)" ]; do :; done
    run 1 -j journal -o out in/2.hdr
    says 'another zarn-ingest works in the directory journal'
    echo in/2.hdr >&9; exec 9>&-
    wait $!; check "the first run" [ $? = 0 ]
    check "its line" [ "$(journalFields journal 3 | tail -n 1)" = in/2.hdr ]
    printf '[ingest]\nlist = list\noutput-dir = out\n[service]\njournal = listed\n' >p.ini
    echo in/3.hdr >list
    run 0 -q -p p.ini; check "the property" [ "$(journalFields listed 3)" = in/3.hdr ]
    run 0 -q -r -p p.ini in/4.hdr; check "not the service's" [ "$(journalFields listed 3)" = in/3.hdr ]
    (
        ulimit -f 8
        "$program" -r -j full -o many 'in/*.hdr' 2>err.txt
        echo $? >status
    )
    check "a full journal" [ "$(cat status)" = 1 ]
    says 'zarn-ingest: the journal: '
    check "said once" [ "$(grep -c 'the journal: ' err.txt)" = 1 ]
    check "went on untold" [ "$(ls many | wc -l)" -lt 200 ]
    run 1 -q -r -j full -o many 'in/*.hdr'
    check "all told" [ "$(journalFields full 3 | sort -u | wc -l)" = 201 ]
    check "whole lines" [ -z "$(journalFields full 3- | grep -vE '(converted|failed)	[0-9]+	[0-9]+$')" ]
}

runTests
