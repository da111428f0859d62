#!/usr/bin/env bash
# Accidents of an operator and of a machine under zarn-ingest: nothing is lost, misjudged or hidden.
#   accidents.sh PROGRAM SAMPLES
# Disks are small file systems in memory, for root in a name space of their own; failing system
# calls are strace's. What the machine does not allow is skipped, and said.
set -u
if [ "${1:-}" != --mounts ] && unshare -m mount -t tmpfs none /mnt 2>/dev/null; then
    exec unshare -m "$0" --mounts "$@"
fi
mounts=false
[ "${1:-}" != --mounts ] || { mounts=true; shift; }
program=$(realpath "$1") samples=$(realpath "$2")
. "$(dirname "$0")/../support/checks.sh"
. "$(dirname "$0")/../support/service.sh"

skipped() { echo "skipped: $current: $1"; }
needsMounts() { $mounts || skipped 'needs root and a mount name space'; $mounts; }
# failing STATUSES INJECTION [-P PATH]... ARGUMENT...: runs the program with a system call failing,
# of a path's only.
failing() {
    local expected=$1 call=$2 status
    shift 2
    local paths=()
    while [ "$1" = -P ]; do paths+=(-P "$2"); shift 2; done
    timeout -s KILL 60 strace -f -o trace "${paths[@]}" -e trace="${call%%:*}" \
        -e inject="$call" "$program" "$@" >out.txt 2>err.txt
    status=$?
    check "exit status $status instead of $expected with $call" [ -z "${status//[$expected]/}" ]
}
# nothingLost NAME...: each arrived once, is a whole result, is told of once, and done.
nothingLost() {
    local name
    for name in "$@"; do
        check "result of $name" cmp -s "${output:-fits}/$name.fits" expected.fits
        check "source of $name" [ -e "done/$name.hdr" ]
    done
    check "the journal" [ "$(journalFields 3 | sort)" = "$(printf 'in/%s.hdr\n' "$@" | sort)" ]
    check "failures" hasFiles failed 0
    check "sources left" hasFiles in 0
}
expectResults() {
    "$program" -q -o one "$samples/imager.hdr" && mv one/imager.fits expected.fits && rmdir one
}

# Whatever its name holds, the output directory that the name leads to counts, and none is made anew.
testOutputReplaced() {
    local output='fits of é + 1'
    expectResults; properties
    start; arrive a; mv in/a in/a.hdr; waitFor [ -e done/a.hdr ]
    mv "$output" old; mkdir "$output"; waitFor said "$output was replaced"; arrive b.hdr; waitFor [ -e done/b.hdr ]
    told <<<"zarn-ingest: the directory $output was replaced; this run works in the new one"
    check "the old one" [ "$(ls -A old)" = a.fits ]
    mv old/a.fits "$output"
    mv "$output" away; arrive c.hdr; waitFor said "directory $output: No such file"
    sleep 2.2; hasNot "$output"; has in/c.hdr
    mv away "$output"; waitFor [ -e done/c.hdr ]; waitFor said 'over: directory'
    rm -r "$output"/.zarn-ingest-*; arrive d.hdr; waitFor [ -e done/d.hdr ]
    stop
    check "said once" [ "$(grep -c 'No such file' err.txt)" = 2 ]  # and that it is over
    nothingLost a b c d
    check "working directories" [ "$(ls -A "$output" | wc -l)" = 4 ]
}

testWorkRemovedBeforeTheRename() {
    needsTracing || return
    expectResults; properties; arrive a.hdr
    strace -f -o trace -e inject=fsync:delay_enter=2000000:when=6 "$program" -q -p p.ini 2>err.txt &
    waitFor eval '[ -s fits/.zarn*/1.fits ]'
    rm -r fits/.zarn*
    ended 1 $!
    check "a result that nobody verified" [ -z "$(ls -A fits)" ]
    run 0 -q -p p.ini; nothingLost a
}

testLocks() {
    properties; rmdir in; start; waitFor said 'directory in: No such file'; sleep 1.2
    mkdir in; waitFor said 'over: directory in'; : >err.txt
    arrive a.hdr; waitFor [ -e done/a.hdr ]
    mv done old; mkdir done; waitFor said 'the directory done was replaced'
    check "the new one is not locked" [ "$(flock -n done echo free)" = '' ]
    mv journal gone; waitFor said 'directory journal: No such file'
    mkdir journal; arrive b.hdr; waitFor [ -e done/b.hdr ]
    "$program" -p p.ini -o fits2 2>err2.txt
    check "locked again" grep -q 'another zarn-ingest is using the directory in' err2.txt
    mv failed old; mv done failed; mv old done; arrive b2.hdr; waitFor [ -e done/b2.hdr ]
    mv in hidden; waitFor said 'directory in: No such file'
    mv hidden in; arrive c.hdr; waitFor [ -e done/c.hdr ]
    rm journal/*.journal; arrive d.hdr; waitFor [ -e done/d.hdr ]; rm -r journal
    arrive e.hdr; sleep 1.2; has in/e.hdr; mkdir journal; waitFor [ -e done/e.hdr ]
    stop HUP 129
    says '6 converted, 0 failed'
    check "lines" [ "$(journalFields 3)" = in/e.hdr ]
}

# A disk that takes no file makes no header bad: it waits, and goes on by itself.
testOutputDisk() {
    needsMounts || return
    expectResults; properties; mkdir fits; mount -t tmpfs -o size=64k,nr_inodes=5 none fits
    start; arrive a.hdr; waitFor [ -e done/a.hdr ]
    mount -o remount,ro fits; arrive b.hdr c.hdr
    waitFor said 'Read-only file system'; sleep 1.2
    hasFiles in 2 || check "taken" false
    mount -o remount,rw fits; waitFor [ -e done/c.hdr ]
    arrive d.hdr; waitFor said 'No space left on device'; sleep 1.2; has in/d.hdr
    mount -o remount,nr_inodes=20 fits; waitFor [ -e done/d.hdr ]
    head -c 100k /dev/zero >fits/.full 2>/dev/null; arrive e.hdr
    waitFor eval '[ "$(grep -c "No space left on device" err.txt)" -gt 2 ]'; sleep 1.2; has in/e.hdr
    rm fits/.full; waitFor [ -e done/e.hdr ]
    stop
    nothingLost a b c d e
    check "said once each" [ "$(grep -vc over: err.txt) $(grep -c over: err.txt)" = '4 3' ]
    arrive f.hdr; mount -o remount,ro fits
    run 1 -p p.ini; says 'Read-only file system'; has in/f.hdr
    mount -o remount,rw fits; run 0 -q -p p.ini; nothingLost a b c d e f
    umount fits
    rm -r done; mkdir done; mount -t tmpfs none done
    run 1 -p p.ini; says 'the directories in and done must be on one file system'
    umount done
    properties ingest force T; start; arrive g.hdr; waitFor [ -e done/g.hdr ]
    mount -t tmpfs none done; arrive h.hdr; waitFor said 'cannot move in/h.hdr to done'
    sed 's/Field 17/Field 18/' "$samples/imager.hdr" >in/.h; mv in/.h in/h.hdr  # another file of the name
    sleep 1.2; umount -l done; waitFor [ -e done/h.hdr ]; stop
    check "taken for the former one" grep -q 'Field 18' fits/h.fits
}

# CFITSIO forgets that a write failed, and takes a text that it cannot open for an empty one.
testFaultsBehindCfitsio() {
    local i
    properties; sed -i /journal/d p.ini; arrive a.hdr; run 0 -q -p p.ini
    for i in $(seq 8 20); do
        mv done/a.hdr in 2>/dev/null
        (ulimit -n "$i"; "$program" -p p.ini 2>err.txt)
        check "judged with $i descriptors" [ "$(grep -c 'exists already' err.txt)" = 0 ]
    done
    needsMounts || return
    seq -f 'K%06.0f = 1' 2500 | cat "$samples/imager.hdr" - | grep -v ^END >in/a.hdr
    rm fits/a.fits; mount -t tmpfs -o size=100k none fits
    run 1 -p p.ini; says 'No space left on device'; has in/a.hdr
    mount -o remount,size=1m fits; run 0 -q -p p.ini; has fits/a.fits; has done/a.hdr
    umount fits
}

testIncomingUnlistable() {
    needsTracing || return
    properties; arrive a.hdr
    mkdir fits done failed journal
    failing 1 getdents64:error=EIO -P in -p p.ini
    says 'the directory in cannot be listed: Input/output error'
    has in/a.hdr
    failing 1 openat:error=EIO -P in/a.hdr -p p.ini
    says 'in/a.hdr: cannot be read: Input/output error'; has in/a.hdr
    mkdir -p batch/x batch/y; cp in/a.hdr batch/x
    failing 1 getdents64:error=EIO -P batch/y -j j -o two 'batch/*/*.hdr'
    says 'batch/y: the directory cannot be listed: Input/output error'; says '1 converted, 1 failed'
    check "lines" [ "$(cut -f3 j/*)" = batch/x/a.hdr ]
    failing 1 '?newfstatat,?fstatat64,?statx,?stat,?lstat,?stat64:error=EACCES' -P batch/y/a.hdr -o three 'batch/*/a.hdr'
    says 'batch/y: the directory cannot be listed: Permission denied'; has three/a.fits
    failing 1 '?newfstatat,?fstatat64,?statx,?stat,?lstat,?stat64:error=EACCES' -P in/a.hdr -p p.ini
    says 'in/a.hdr cannot be looked at: Permission denied'; has in/a.hdr
}

# The order result, journal, move holds when one of them fails; the next run tells nothing twice.
testStepsFail() {
    needsTracing || return
    expectResults; properties; arrive a.hdr b.hdr
    failing 1 renameat2:error=EIO -P in/a.hdr -p p.ini
    says 'cannot move in/a.hdr to done: Input/output error'; has in/a.hdr; has done/b.hdr
    failing 1 openat:error=EMFILE:when=2 -P "$(echo journal/*)" -p p.ini
    says 'Too many open files'; has in/a.hdr
    run 0 -p p.ini; says '1 converted, 0 failed'; nothingLost a b
    arrive c.hdr
    failing 1 fsync:error=EIO:when=7 -p p.ini  # of the output directory, behind the rename
    says 'cannot be made safe on disk: Input/output error'; has in/c.hdr; has fits/c.fits
    run 0 -q -p p.ini; nothingLost a b c
    arrive d.hdr
    isSanitized || { failing 1 write:error=EINTR:when=2+3 -q -p p.ini; has in/d.hdr; }
    run 0 -q -p p.ini; nothingLost a b c d
    arrive e{1..40}.hdr; failing 1 fsync:error=EIO -P journal/*.journal -p p.ini
    says 'the journal in journal: not safe on disk: Input/output error'; hasFiles in 40 || check "taken" false
    check "nothing beyond the group" [ "$(find fits -name 'e*' | wc -l)" -le 32 ]
    failing 0 renameat2:error=EINVAL -q -p p.ini; nothingLost a b c d e{1..40}  # by links, where it must
    arrive f.hdr; cp "$samples/broken.hdr" in/d0.hdr
    failing 1 unlinkat:error=EBUSY -q -p p.ini  # what is left of one file disturbs no other
    check "the header's fault" [ "$(ls failed)" = "$(printf 'd0.hdr\nd0.hdr.reason')" ]
    rm failed/*; sed -i /d0.hdr/d journal/*; nothingLost a b c d e{1..40} f
    strace -f -o trace -e inject=fsync:error=EIO:when=9 \
        "$program" -p p.ini --watch 2>err.txt &
    service=$!
    arrive g.hdr; waitFor [ -e done/g.hdr ]; says 'not safe on disk: Input/output error'
    kill "$(pgrep -P $service)"; ended 0 $service
    nothingLost a b c d e{1..40} f g
    cp "$samples/broken.hdr" in/h.hdr
    failing 1 openat:error=ENOSPC -P failed/h.hdr.reason -p p.ini
    says 'cannot write failed/h.hdr.reason: No space left on device'
    isSanitized && return
    # A block that is lost without an error: what was read back differs, and is made once more.
    seq -f 'K%06.0f = 1' 500 | cat <(grep -v ^END "$samples/imager.hdr") - >long.hdr
    run 0 -o whole long.hdr; failing 0 write:retval=4096:when=3 -o lost long.hdr
    check "made once more" [ "$(grep -c 'SIMPLE  = ' trace) $(cmp whole/long.fits lost/long.fits)" = '4 ' ]
}

testEnd() {
    needsTracing || return
    local call when
    properties log file log/l.log log interval 600
    failing 1 eventfd2:error=EMFILE -p p.ini
    says 'zarn-ingest: no descriptor for signals: Too many open files'
    for call in poll pselect6 write; do
        for when in 1 2 3 4; do
            arrive "$call$when.hdr"
            # Writes of results are counted with those that wake the reactor, and fail otherwise.
            failing 01 "$call:error=EINTR:when=$when" -q -p p.ini
        done
    done
}

testLog() {
    local i
    properties log file logs/l.log log size 20 log interval 1 log files 3
    start; waitFor [ -s logs/l.log ]
    arrive a.hdr; waitFor grep -q 'in/a.hdr: gave' logs/l.log
    rm logs/l.log; arrive b.hdr; waitFor grep -qs 'in/b.hdr: gave' logs/l.log
    rm -r logs; arrive c.hdr; waitFor grep -qs 'in/c.hdr: gave' logs/l.log
    mv logs/l.log logs/rotated; arrive d.hdr; waitFor grep -qs 'in/d.hdr: gave' logs/l.log
    check "by others" [ "$(wc -l <logs/rotated)" = 1 ]
    stop
    check "said" [ "$(grep -c 'the log logs/l.log was removed; it begins anew' err.txt)" = 3 ]
    needsMounts || return
    rm -r logs; mkdir logs; mount -t tmpfs -o size=40k none logs
    echo '2026-11-25 00:00:00.000000 INFO  [ 1 ] history' >logs/l.log; cp logs/l.log logs/l.log.1
    start -v; waitFor said 'cannot be written: No space left on device' & 
    for i in $(seq 200); do arrive "a-rather-long-name-$i.hdr"; done
    waitFor [ -e done/a-rather-long-name-200.hdr ]; sleep 2.2
    check "the history" grep -q history logs/l.log.1
    check "all files kept are empty" [ -s logs/l.log ]
    head -c 30000 /dev/null >logs/l.log.2; rm logs/l.log.1 logs/l.log.2
    arrive z.hdr; waitFor eval 'grep -qs "in/z.hdr: gave" logs/l.log*'  # it may roll over at once
    stop
    says 'the log logs/l.log is written again'
    umount logs
}

runTests
