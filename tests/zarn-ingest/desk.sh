#!/usr/bin/env bash
# Tests of what an operator asks zarn-ingest: the status of a service, the verification of an archive.
#   desk.sh PROGRAM SAMPLES
set -u
program=$(realpath "$1") samples=$(realpath "$2")
. "$(dirname "$0")/../support/checks.sh"
. "$(dirname "$0")/../support/service.sh"

everything() { find . -maxdepth 1 -type f -o -printf '%p %s %C@ %T@ %i\n' | sort; }

testStatus() {
    properties service least-free 10 service settle 1 service journal journal/
    arrive a.hdr b.hdr; cp "$samples/broken.hdr" in/
    transcript "$data/desk/nothing-yet.txt"
    printf '[ingest]\npattern = in/*.hdr\noutput-dir = .\n' >'a"b\.ini'; transcript "$data/desk/bare.txt"
    run 1 -q -p p.ini
    printf '2001-09-09T01:46:40.000000\t1000000000.000000\tin/o.hdr\tfits/o.fits\tfailed\t0\t0\t-\n' \
        >journal/zarn-ingest-2099-09-09.journal
    everything >before
    transcript "$data/desk/after-a-run.txt"
    everything | diff before - >err.txt; check "something changed" [ ! -s err.txt ]
    rm failed/*; arrive c.hdr
    start
    waitFor [ -e done/c.hdr ]
    transcript "$data/desk/running.txt"
    for i in 1 2 3 4 5 6 7 8 9; do "$program" --status -p p.ini >status.txt || check "status $i" false; done
    stop
}

isRunning() { "$program" --status p.ini | grep -q '^service *runs$'; }
# Files that have waited for long need a person, be it that no service runs or that one hangs.
testWaiting() {
    properties; mkdir fits failed journal
    start; waitFor isRunning; kill -STOP "$service"
    arrive a.hdr
    transcript "$data/desk/waiting.txt"
    sleep 12
    run 1 --status -p p.ini
    check "how long" grep -qE '^needs a person    files have waited for 1[0-9] s$' out.txt
    kill -KILL "$service"; ended 137 "$service"
    run 1 --status -p p.ini
    check "how long without a service" \
        grep -qE '^needs a person    no service runs, and files have waited for 1[0-9] s$' out.txt
    properties service least-free 1000000000
    rm in/*
    run 1 --status -p p.ini
    check "room" grep -qx 'needs a person    less than 1000000000 MiB are free in fits; no file .*' out.txt
}

# Sources are found where they were, and under their numbers; what has no source has its size at least.
testVerify() {
    properties ingest moon VEK1 ingest checksum T ingest force T
    arrive good.hdr missing.hdr empty.hdr other.hdr gone.hdr cut.hdr 'a\b.hdr' loop.hdr prose.hdr; cp "$samples/broken.hdr" in
    run 1 -q -p p.ini
    arrive again.hdr; sed -i 's/Field 17/Field 18/' in/again.hdr; run 0 -q -p p.ini
    arrive again.hdr; run 0 -q -p p.ini
    transcript "$data/desk/verified.txt"
    cp fits/good.fits fits/untold.fits; mkdir fits/dir.fits; touch fits/note.txt
    rm fits/missing.fits done/gone.hdr done/cut.hdr; : >fits/empty.fits; printf x >>fits/cut.fits
    sed -i 's/Field 17/Field 99/' fits/other.fits; ln -sf loop.fits fits/loop.fits; echo prose >done/prose.hdr
    printf '2001-09-09\t1000000000\tin/gone.hdr\tfits/gone.fits\tconverted\t0\t1\t-\n' >journal/zarn-ingest-2099-09-09.journal
    sed 's/Field 17/Field 20/' done/again.hdr >'done/again.hdr.~10~'  # not the file told of
    everything >before
    transcript "$data/desk/damaged.txt"
    everything | diff before - >err.txt; check "something changed" [ ! -s err.txt ]
    # Another host has other inodes and other paths.
    mkdir moved; cp -r 'done' fits journal moved; rm 'moved/done/again.hdr.~10~'; rm -r in fits; cd moved || return
    sed -i 's|\tfits/|\t/gone/fits/|; s|\tin/|\t/gone/in/|' journal/*.journal
    mv done/again.hdr.~1~ done/again.hdr.~10~; cp done/again.hdr done/again.hdr.~9~  # the latest counts
    properties ingest moon VEK1 ingest checksum T; rm fits/{untold,other,cut,empty,loop,prose}.fits
    # Without the sources' identities, as former versions wrote lines, or with another form of them.
    sed -i -E '/(other|cut|empty|missing|loop|prose).hdr/d; /good/s/\t[^\t]*$//; /again/s/-[^\t]*$//; /a.*b/s/[^\t]*$/1x/' journal/*.journal
    transcript "$data/desk/elsewhere.txt"
    properties
    run 1 --verify -p p.ini  # made with other settings
    check "all but the one without source" [ "$(grep -c 'compared with done/' out.txt)" = 3 ]
}

# A source may have come with a number like those that a service gives.
testVerifyNumbered() {
    properties ingest pattern 'in/*'
    arrive 'm.~1~'; run 0 -q -p p.ini
    transcript "$data/desk/numbered.txt"
}

# The journals of many runs lie below one directory; one journal may tell of several directories.
testVerifyBatch() {
    for name in a b c; do cp "$samples/imager.hdr" $name.hdr; done
    mkdir journals
    run 0 -q -o fits -j journals/1 a.hdr; run 0 -q -o fits -j journals/2 b.hdr
    run 0 -q -o else -j journals/2 c.hdr
    transcript "$data/desk/batch.txt"
}

runTests
