#!/usr/bin/env bash
# What a year brings to zarn-ingest as a service: clocks that are set, time zones that change, links,
# network disks that fail, many files at once. Nothing is lost, and nothing is told of twice.
#   year.sh PROGRAM SAMPLES [FILES [SECONDS]]    FILES at once, 2000 by default; a source grows for SECONDS, 6
# What the machine does not allow, or has no libfaketime for, is skipped, and said.
set -u
program=$(realpath "$1") samples=$(realpath "$2") many=${3:-2000} growing=${4:-6}
. "$(dirname "$0")/../support/checks.sh"
. "$(dirname "$0")/../support/service.sh"

faker=$(find /usr/lib -name libfaketimeMT.so.1 2>/dev/null | head -n 1)
# startAt TIME: the service, with a clock that `setClock` sets; waits go by the true one.
startAt() {
    echo "$1" >clock
    LD_PRELOAD=$faker FAKETIME_TIMESTAMP_FILE=clock FAKETIME_NO_CACHE=1 DONT_FAKE_MONOTONIC=1 \
        NO_FAKE_STAT=1 "$program" -p p.ini --watch >out.txt 2>err.txt &
    service=$!
}
setClock() { echo "$1" >clock; }
needsFaker() { [ -n "$faker" ] || echo "skipped: $current: needs libfaketime"; [ -n "$faker" ]; }
journalDates() { ls journal | sed -E 's/.*-([0-9-]{10})\..*/\1/' | tr '\n' ' '; }
nothingLost() {
    local name
    for name in "$@"; do
        check "result of $name" [ -s "fits/$name.fits" ]
        check "source of $name" [ -e "done/$name.hdr" ]
    done
    check "the journal" [ "$(journalFields 3 | sort)" = "$(printf 'in/%s.hdr\n' "$@" | sort)" ]
    check "failures" hasFiles failed 0
}
delivered() { arrive "$1.hdr"; waitFor [ -e "done/$1.hdr" ]; }

testClock() {
    needsFaker || return
    properties service settle 1 log file log/l.log log interval 1
    startAt '@2026-11-25 12:00:00'; delivered a
    setClock '@2026-11-24 12:00:00'; delivered b  # a day back
    setClock '@2026-11-26 12:00:00'; delivered c  # and forward
    setClock '@2026-11-25 12:00:00'; delivered d
    kill -KILL "$service"; wait "$service" 2>/dev/null
    mv done/d.hdr in/  # killed before the move
    sed -i "/d.hdr/s/[^\t]*\$/$(stat -c %i-%.9Z in/d.hdr)/" journal/*.journal
    startAt '@2026-11-24 12:00:00'; waitFor [ -e done/d.hdr ]
    stop
    check "dates" [ "$(journalDates)" = '2026-11-24 2026-11-25 2026-11-26 ' ]
    check "the log" [ "$(grep -oh 'in/.\.hdr: gave' log/* | sort -u | wc -l)" = 4 ]
    nothingLost a b c d
}

# At the journal's midnight, which is local, and when the local date jumps.
testMidnight() {
    needsFaker || return
    properties
    TZ=UTC startAt '@2026-11-25 23:59:59'; delivered a
    setClock '@2026-11-26 00:00:01'; delivered b; stop
    TZ=XXX12 startAt '@2026-11-26 00:00:01'; delivered c; stop
    TZ=XXX-14 startAt '@2026-11-26 14:00:01'; delivered d
    kill -KILL "$service"; wait "$service" 2>/dev/null
    mv done/d.hdr in/
    sed -i "/d.hdr/s/[^\t]*\$/$(stat -c %i-%.9Z in/d.hdr)/" journal/*.journal
    TZ=XXX12 startAt '@2026-11-26 00:00:02'; waitFor [ -e done/d.hdr ]; stop
    nothingLost a b c d
}

# The incoming directory is a link, which is laid anew while the service runs.
testIncomingLink() {
    properties; rmdir in; mkdir one two; ln -s one in
    start; delivered a
    arrive b.hdr; ln -s two link; mv -T link in; arrive c.hdr
    waitFor [ -e done/c.hdr ]
    check "where b is" [ "$(ls one done | grep -c '^b.hdr')" = 1 ]
    said 'the directory in was replaced' || check "said" false
    ln -s one link; mv -T link in; waitFor [ -e done/b.hdr ]; stop
    nothingLost a b c
    rm in; ln -s /dev/shm in
    [ "$(stat -c %d .)" = "$(stat -c %d /dev/shm)" ] || {
        run 1 -p p.ini; says 'the directories in and done must be on one file system'
    }
}

# A network disk that fails for a while: sources wait, and the service goes on by itself.
testOutputErrors() {
    needsTracing || return
    local error call number=0 names=(first)
    properties; start; delivered first
    for error in EIO ESTALE; do
        for call in '?newfstatat,?fstatat64,?statx' '?rename,?renameat,?renameat2' fsync,syncfs; do
            names+=($((++number)))
            strace -f -o trace -p "$service" -P fits -e trace="$call" \
                -e inject="$call:error=$error:when=1..3" 2>strace.txt &
            waitFor grep -q attached strace.txt; delivered "$number"
            check "no $error of $call" grep -q INJECTED trace
            kill %strace; wait %strace 2>/dev/null
        done
    done
    stop
    nothingLost "${names[@]}"
}

# A source that is long in coming holds nothing up, and is taken as a whole.
testSlowSource() {
    properties service settle 4; start
    { for _ in $(seq $((2 * growing))); do echo 'COMMENT more'; sleep 0.5; done; echo END; } >in/slow.hdr &
    delivered a
    wait $!; waitFor [ -e done/slow.hdr ]; stop
    check "its cards" [ "$(grep -o 'COMMENT more' fits/slow.fits | wc -l)" = $((2 * growing)) ]
    nothingLost a slow
}

testManyAtOnce() {
    local i
    properties
    for i in $(seq "$many"); do echo "$samples/imager.hdr"; done | awk '{print $0, "in/" NR ".hdr"}' |
        xargs -n 2 cp
    start
    waitFor hasFiles done "$many"; stop
    check "results" hasFiles fits "$many"
    check "lines" [ "$(journalFields 3 | sort -u | wc -l) $(journalFields 3 | wc -l)" = "$many $many" ]
    says "$many converted, 0 failed"
}

runTests
