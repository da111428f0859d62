#!/usr/bin/env bash
# Tests of what an operator asks zarn-ingest: the status of a service, the verification of an archive.
#   desk.sh PROGRAM SAMPLES
# Everything happens in a directory of its own, which is removed at the end.
set -u
program=$(realpath "$1") samples=$(realpath "$2")
. "$(dirname "$0")/../support/checks.sh"
. "$(dirname "$0")/../support/service.sh"

# shows STATUS ARGUMENT... <<EXPECTED: the whole output, without what differs from run to run.
shows() {
    run "$@"
    check "other output" diff - <(sed -E "s/$(date +%Y)-[0-9T:.-]+/TIME/; s/(unix_time\":|^[a-z_]*stamp_seconds.* )[0-9.]+/\1SECONDS/
        s/(free_mib\":|free space [^ ]* *|^zarn_ingest_free_bytes.* )[0-9]+/\1ROOM/
        s/(waiting_seconds\":|oldest for |^[a-z_]*waiting_seconds.* )[0-9]+( s)?/\1AGE/" out.txt)
}
everything() { find . -maxdepth 1 -type f -o -printf '%p %s %C@ %T@ %i\n' | sort; }

testStatus() {
    properties service least-free 10 service settle 1 service journal journal/
    arrive a.hdr b.hdr; cp "$samples/broken.hdr" in/
    shows 1 --status -p p.ini <<'TEXT'
service           does not run
waiting files     3, the oldest for AGE
last result       none
failures today    unknown
failed files      unknown
free space [MiB]  unknown, at least 10 are needed
needs a person    directory journal/: No such file or directory
needs a person    directory failed: No such file or directory
needs a person    the free space in fits cannot be determined
TEXT
    run 1 -q -p p.ini
    printf '2001-09-09T01:46:40.000000\t1000000000.000000\tin/o.hdr\tfits/o.fits\tfailed\t0\t0\t-\n' \
        >journal/zarn-ingest-2001-09-09.journal
    everything >before
    shows 1 --status -p p.ini <<'TEXT'
service           does not run
waiting files     0
last result       fits/b.fits at TIME, local time
failures today    1
failed files      1
free space [MiB]  ROOM, at least 10 are needed
needs a person    failed files are in failed: 1
TEXT
    shows 1 --status --format json -p p.ini <<'JSON'
{"service_running":false,"waiting_files":0,"oldest_waiting_seconds":AGE,"last_result":{"name":"fits/b.fits","source":"in/b.hdr","time":"TIME","unix_time":SECONDS},"failures_today":1,"failed_files":1,"free_mib":ROOM,"least_free_mib":10,"problems":["failed files are in failed: 1"]}
JSON
    everything | diff before - >err.txt; check "something changed" [ ! -s err.txt ]
    rm failed/*; arrive c.hdr
    start
    waitFor [ -e done/c.hdr ]
    shows 0 --status --format prometheus -p p.ini <<'METRICS'
# HELP zarn_ingest_service_running Whether a service holds the incoming directory.
# TYPE zarn_ingest_service_running gauge
zarn_ingest_service_running{properties="p.ini"} 1
# HELP zarn_ingest_waiting_files Files in the incoming directory.
# TYPE zarn_ingest_waiting_files gauge
zarn_ingest_waiting_files{properties="p.ini"} 0
# HELP zarn_ingest_oldest_waiting_seconds Age of the oldest of them, 0 without any.
# TYPE zarn_ingest_oldest_waiting_seconds gauge
zarn_ingest_oldest_waiting_seconds{properties="p.ini"} AGE
# HELP zarn_ingest_last_result_timestamp_seconds Time of the last result in the journal.
# TYPE zarn_ingest_last_result_timestamp_seconds gauge
zarn_ingest_last_result_timestamp_seconds{properties="p.ini"} SECONDS
# HELP zarn_ingest_failures_today Failures in the journal since midnight, local time.
# TYPE zarn_ingest_failures_today gauge
zarn_ingest_failures_today{properties="p.ini"} 1
# HELP zarn_ingest_failed_files Files in the directory of failed files.
# TYPE zarn_ingest_failed_files gauge
zarn_ingest_failed_files{properties="p.ini"} 0
# HELP zarn_ingest_free_bytes Free space for results.
# TYPE zarn_ingest_free_bytes gauge
zarn_ingest_free_bytes{properties="p.ini"} ROOM
# HELP zarn_ingest_least_free_bytes Free space below which no file is converted.
# TYPE zarn_ingest_least_free_bytes gauge
zarn_ingest_least_free_bytes{properties="p.ini"} 10485760
# HELP zarn_ingest_problems Things that need a person.
# TYPE zarn_ingest_problems gauge
zarn_ingest_problems{properties="p.ini"} 0
METRICS
    for i in 1 2 3 4 5 6 7 8 9; do "$program" --status -p p.ini >status.txt || check "status $i" false; done
    stop
}

isRunning() { "$program" --status p.ini | grep -q '^service *runs$'; }
# Files that have waited for long need a person, be it that no service runs or that one hangs.
testWaiting() {
    properties; mkdir fits failed journal
    start; waitFor isRunning; kill -STOP "$service"
    arrive a.hdr
    shows 0 --status p.ini <<'TEXT'
service           runs
waiting files     1, the oldest for AGE
last result       none
failures today    0
failed files      0
free space [MiB]  ROOM, at least 0 are needed
needs a person    nothing
TEXT
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
    arrive good.hdr missing.hdr empty.hdr other.hdr gone.hdr cut.hdr 'a\b.hdr'; run 0 -q -p p.ini
    arrive again.hdr; sed -i 's/Field 17/Field 18/' in/again.hdr; run 0 -q -p p.ini
    arrive again.hdr; run 0 -q -p p.ini
    shows 0 --verify -p p.ini <<'TEXT'
results like their sources: 8, without source, of the journal's size: 0, wrong: 0, not in the journal: 0
TEXT
    cp fits/good.fits fits/untold.fits; mkdir fits/dir.fits; touch fits/note.txt
    rm fits/missing.fits done/gone.hdr done/cut.hdr; : >fits/empty.fits; printf x >>fits/cut.fits
    sed -i 's/Field 17/Field 99/' fits/other.fits
    sed 's/Field 17/Field 20/' done/again.hdr >'done/again.hdr.~10~'  # not the file told of
    everything >before
    shows 1 --verify -p p.ini <<'TEXT'
fits/cut.fits: has 2881 bytes instead of 2880, and its source is gone
fits/empty.fits: empty
fits/missing.fits: missing
fits/other.fits: compared with done/other.hdr: the result differs from this card: "OBJECT  = 'Field 17'           / target"
fits/untold.fits: no journal tells of it
results like their sources: 3, without source, of the journal's size: 1, wrong: 4, not in the journal: 1
TEXT
    everything | diff before - >err.txt; check "something changed" [ ! -s err.txt ]
    # Another host has other inodes and other paths.
    mkdir moved; cp -r 'done' fits journal moved; rm 'moved/done/again.hdr.~10~'; rm -r in fits; cd moved || return
    sed -i 's|\tfits/|\t/gone/fits/|; s|\tin/|\t/gone/in/|' journal/*.journal
    mv done/again.hdr.~1~ done/again.hdr.~10~; cp done/again.hdr done/again.hdr.~9~  # the latest counts
    properties ingest moon VEK1 ingest checksum T; rm fits/{untold,other,cut,empty}.fits
    sed -i -E '/(other|cut|empty|missing).hdr/d' journal/*.journal
    shows 0 --verify -p p.ini <<'TEXT'
results like their sources: 3, without source, of the journal's size: 1, wrong: 0, not in the journal: 0
TEXT
    properties
    run 1 --verify -p p.ini  # made with other settings
    check "all but the one without source" [ "$(grep -c 'compared with done/' out.txt)" = 3 ]
}

# A source may have come with a number like those that a service gives.
testVerifyNumbered() {
    properties ingest pattern 'in/*'
    arrive 'm.~1~'; run 0 -q -p p.ini
    shows 0 --verify -p p.ini <<'TEXT'
results like their sources: 1, without source, of the journal's size: 0, wrong: 0, not in the journal: 0
TEXT
}

# The journals of many runs lie below one directory; one journal may tell of several directories.
testVerifyBatch() {
    for name in a b c; do cp "$samples/imager.hdr" $name.hdr; done
    mkdir journals
    run 0 -q -o fits -j journals/1 a.hdr; run 0 -q -o fits -j journals/2 b.hdr
    run 0 -q -o else -j journals/2 c.hdr
    shows 0 --verify -o fits -j journals <<'TEXT'
results like their sources: 2, without source, of the journal's size: 0, wrong: 0, not in the journal: 0
TEXT
    shows 1 --verify -o else -j journals/1 <<'TEXT'
else/c.fits: no journal tells of it
results like their sources: 0, without source, of the journal's size: 0, wrong: 0, not in the journal: 1
TEXT
}

testWrongUsage() {
    properties
    run 2 --status; says '--status needs a properties file with a pattern'
    run 2 --verify; says '--verify needs a journal'
    run 2 --verify --status -p p.ini; says '--status and --verify exclude each other'
    run 2 --status -p p.ini --watch; says '--status converts nothing'
    run 2 --verify -p p.ini a.hdr; says '--verify converts nothing'
    run 2 --format json -p p.ini; says '--format needs --status'
    run 2 --status -p p.ini --format xml; says 'option --format: "xml" is not text, json or prometheus'
    run 1 --verify -j none; says 'zarn-ingest: directory none: No such file or directory'
}

runTests
