#!/usr/bin/env bash
# Tests of zarn-ingest under a batch system: going on after a kill, journals, shards.
#   batch.sh PROGRAM EXAMPLES
set -u
program=$(realpath "$1") examples=$(realpath "$2")
samples=$examples/headers
. "$(dirname "$0")/../support/checks.sh"
. "$(dirname "$0")/../support/headers.sh"

journalFields() { cat "$1"/*.journal | cut -f "$2"; }
# headers NUMBER: as many in the directory in, each with an object of its own, every third a dump of
# several headers.
headers() {
    local imager dump content i
    imager=$(<"$samples/imager.hdr") dump=$(<"$samples/dump.hdr")
    mkdir -p in
    for i in $(seq "$1"); do
        content=$imager
        ((i % 3)) || content=$dump
        echo "${content/Field 17/Field $i}" >"in/$i.hdr"
    done
}

testResume() {
    headers 3; header ./other
    run 0 -q -c -o out in/1.hdr in/2.hdr other
    touch -d 2026-01-01 out/*.fits; cp -p out/1.fits before
    header other "OBJECT  = 'x'"
    run 1 -c -o out in/1.hdr; says 'out/1.fits exists already'
    run 1 -c -r -o out 'in/*.hdr' other
    says 'other: the result out/other.fits exists already'; says '3 converted (1 repaired'
    check "made again" [ -z "$(find out -name '[12].fits' -newer before)" ]
    run 1 -n -c -r -o out in/1.hdr other
    check "dry run" [ "$(cat out.txt)" = 'would keep what in/1.hdr gave: out/1.fits' ]
    run 1 -r -o out in/1.hdr; says 'out/1.fits exists already'  # it has no checksums now
    cp -p out/3.fits whole; has "$data/damages.txt"
    while read -r damage; do
        eval "$damage"; run 1 -q -c -r -o out in/3.hdr; says 'out/3.fits exists already'
        rm out/3.fits; cp -p whole out/3.fits
    done <"$data/damages.txt"
    printf 'torn' >out/2.fits; touch -d 2026-01-01 out/3.fits; cp -p out/3.fits before3
    run 0 -q -c -r -f -o out 'in/*.hdr' other; silent
    check "replaced without need" [ -z "$(find out -name 3.fits -newer before3)" ]
    check "not replaced" [ "$(cards out/other.fits | grep -c OBJECT)" = 1 ]
    printf '[ingest]\nlist = list\noutput-dir = out\nresume = T\nchecksum = T\n' >p.ini
    ls in/*.hdr >list
    run 0 -p p.ini; says '3 converted (1 repaired'
}

testJournal() {
    headers 200; cp "$samples/broken.hdr" in
    until [[ $(stat -c %.9Z in/1.hdr) = *.0* ]]; do touch in/1.hdr; done  # zeros are written, too
    run 1 -j journal -o out in/1.hdr in/broken.hdr in/none; says '1 converted, 2 failed'
    check "lines" [ "$(journalFields journal 3-)" = "$(printf '%s\t%s\t%s\t%s\t%s\t%s\n' \
        in/1.hdr out/1.fits converted 18 2880 "$(stat -c %i-%.9Z in/1.hdr)" \
        in/broken.hdr out/broken.fits failed 0 0 "$(stat -c %i-%.9Z in/broken.hdr)" \
        in/none '' failed 0 0 -)" ]
    check "mode" [ "$(stat -c %a journal/*.journal)" = 664 ]
    header $'o\t\\'; run 0 -q -j odd -o out $'o\t\\'
    check "a name with a tab" [ "$(journalFields odd 3-5)" = $'o\\x09\\x5C\tout/o\\x09\\x5C.fits\tconverted' ]
    run 0 -q -n -j dry in/1.hdr; hasNot dry
    run 1 -j no/journal -o out in/2.hdr; says 'Error creating path: no/journal'
    hasNot out/2.fits
    mkfifo names
    "$program" -q -j journal -o out --stdin <names 2>err2.txt &
    exec 9>names
    waitFor grep -q ":$(stat -c %i journal) " /proc/locks
    run 1 -j journal -o out in/2.hdr
    says 'another zarn-ingest is using the directory journal'
    echo in/2.hdr >&9; exec 9>&-
    ended 0 $!
    check "its line" [ "$(journalFields journal 3 | tail -n 1)" = in/2.hdr ]
    printf '[ingest]\nlist = list\noutput-dir = out\n[service]\njournal = listed\n' >p.ini
    echo in/3.hdr >list
    run 0 -q -p p.ini; check "the property" [ "$(journalFields listed 3)" = in/3.hdr ]
    run 0 -q -r -p p.ini in/4.hdr; check "not the service's" [ "$(journalFields listed 3)" = in/3.hdr ]
    (ulimit -f 8; exec "$program" -q -r -j full -o many 'in/*.hdr' 2>err.txt)
    check "a full journal" [ $? = 1 ]
    check "said once" [ "$(grep 'the journal in' err.txt)" = 'zarn-ingest: the journal in full: File too large' ]
    check "went on untold" [ "$(ls many | wc -l)" -lt 200 ]
    run 1 -q -r -j full -o many 'in/*.hdr'
    check "all told" [ "$(journalFields full 3 | sort -u | wc -l)" = 201 ]
    check "whole lines" [ -z "$(journalFields full 3- | grep -vE '(converted|failed)	[0-9]+	[0-9]+	[0-9]+-[0-9.]+$')" ]
    run 1 -q -r -j full -o many 'in/*.hdr'
    check "told once" [ "$(journalFields full 3 | wc -l)" = 201 ]
    touch in/1.hdr
    run 1 -q -r -j full -o many 'in/*.hdr'
    check "what changed" [ "$(journalFields full 3 | tail -n +202)" = in/1.hdr ]
}

# messages FILE...: what runs said of files, in one order.
messages() { grep -h ':.*:' "$@" | grep -vE ' (converted|of [0-9]+ files)' | sort; }

# All shards together do what one run does, whichever comes first.
testShards() {
    headers 20; cp "$samples/broken.hdr" "$samples/slit-spectrograph.hdr" in; mkdir more
    header more/3.hdr; header more/new.hdr; header more/new.txt
    printf '%s\n' more/new.txt in/gone.hdr more/new.hdr more/3.hdr >list
    run 1 -o single 'in/*.hdr' -l list
    says '22 converted (7 repaired: axes 6, extensions 6, keyword 6, long 7, mandatory 6, preamble 6), 4 failed'
    cp err.txt err1.txt
    local shard statuses=
    for shard in 5 1 3 2 4; do
        "$program" -j "journal$shard" -o out -s "$shard/5" 'in/*.hdr' -l list 2>err.txt
        statuses+=$?
        cp err.txt "err.$shard"
        check "count of $shard" grep -qE "shard $shard/5: [56] of 26 files" err.txt
    done
    check "results" diff -r single out
    check "messages" diff <(messages err1.txt) <(messages err.?)
    check "the second of two" grep -qF 'more/3.hdr: would give the same result 3.fits as in/3.hdr' err.1
    check "the second of two" grep -qF 'more/new.hdr: would give the same result new.fits as more/new.txt' err.5
    check "statuses" [ "$statuses" = 11001 ]
    check "sum" [ "$(($(sed -n 's/.*: \([0-9]*\) converted.*/\1/p' err.? | paste -sd+)))" = 22 ]
    check "journals" [ "$(cut -f 3 journal?/*.journal | sort)" = "$(sort list <(ls in/*.hdr))" ]
    check "the order" [ "$(journalFields journal2 3 | head -n 2)" = "$(ls in/*.hdr | sed -n '2p;7p')" ]
}

testShardNames() {
    headers 4; ls in/*.hdr >list
    printf '[ingest]\nlist = list\nshard = 2/3\noutput-dir = out\n' >list.ini
    printf '[ingest]\npattern = in/*\n[service]\ndone = d\nfailed = f\n' >service.ini
    transcript "$data/shards.txt"; only 2.fits
}

# What the other shards convert is protected; what cannot be seen is no success in any of them.
testShardsTogether() {
    header y.hdr; header y.fits; header z; cp y.fits before
    run 1 -q -f -s 1/2 -o . y.hdr y.fits; says 'would replace a source of this run'
    check "the source was touched" cmp -s y.fits before
    run 1 -n -s 2/3 -l list z; says 'list: the list cannot be read'
    run 1 -n -s 2/3 'no*' z; says 'no*: no such file'
    run 1 -n -s 3/3 --stdin < <(printf 'a\0b\n'); says 'is --null missing?'
    check "a dry run" [ ! -s out.txt ]
}

toldAtLeast() { [ "$(cat "$2"/*.journal 2>/dev/null | wc -l)" -ge "$1" ]; }

# A task of the job array, as the batch system starts it: "${task[@]}" after setTask NUMBER ATTEMPT.
setTask() {
    task=(env SLURM_ARRAY_JOB_ID=7 SLURM_ARRAY_TASK_ID="$1" SLURM_RESTART_COUNT="$2"
        ZARN_INGEST="$program" bash "$examples/slurm/array.sbatch" 3 list out journals -q)
}
# collected STATUS ARGUMENT...: the collecting step, its output in out.txt.
collected() {
    local expected=$1 status
    shift
    "$examples/slurm/collect" "$@" >out.txt 2>err.txt
    status=$?
    check "exit status $status instead of $expected of: collect $*" [ "$status" = "$expected" ]
}

testArray() {
    headers 90; cp "$samples/broken.hdr" in; mkdir more; cp in/2.hdr more
    ls in/*.hdr more/*.hdr >list
    # The task to be killed gets long headers, and time.
    sed -n '2~3p' list | while read -r name; do
        sed -i /^END/d "$name"
        seq -f 'HISTORY step %.0f of the reduction' 20000 >>"$name"
    done
    setTask 2 0
    "${task[@]}" &
    waitFor toldAtLeast 5 journals/7_2.0
    kill -KILL $!
    ended 137 $! 2>/dev/null
    setTask 1 0; "${task[@]}" 2>err.txt
    setTask 3 0; "${task[@]}" 2>>err.txt
    collected 1 list journals
    check "what the killed task left" [ "$(grep -c '^missing: in/' out.txt)" -gt 10 ]
    setTask 2 1; "${task[@]}" 2>>err.txt
    collected 1 list journals
    check "failures" [ "$(head -n -1 out.txt)" = $'failed: in/broken.hdr\nfailed: more/2.hdr' ]
    check "sum" grep -q '^92 files: 90 converted, 2 failed, 0 missing; [0-9]* cards' out.txt
    mv out.txt array.txt
    run 1 -q -j journal -o single -l list
    check "results" diff -r out single
    collected 1 list journal
    check "one run says the same" cmp array.txt out.txt
    grep -v -e broken -e more list >good; collected 0 good journals
}

# The latest line counts, whichever journal holds it; torn lines and other files do not.
testCollect() {
    local line='2026-11-25T00:00:00.000000\t1795575875.%s\t%s\tout/x.fits\t%s\t%s\t2880\t-'
    mkdir -p j/1_1.0 j/1_1.1 'j/1_2.0 odd'
    printf "$line\n" 000002 a converted 3 000003 b failed 0 >j/1_1.0/zarn-ingest-2026-11-24.journal
    printf "$line\n" 000001 a failed 0 000004 b converted 4 >j/1_1.1/zarn-ingest-2026-11-24.journal
    printf "$line\n" 000005 'c\x09\x5Cd' converted 5 000006 twice converted 6 000007 twice failed 0 \
        000008 else failed 0 >'j/1_2.0 odd/zarn-ingest-2026-11-25.journal'
    printf "$line" 000009 a failed 0 >>'j/1_2.0 odd/zarn-ingest-2026-11-25.journal'
    printf '%s\n' a '' b $'c\t\\d' twice twice never >list
    collected 1 list j
    check "output" [ "$(cat out.txt)" = "$(printf '%s\n' 'failed: twice' 'missing: never' \
        '6 files: 4 converted, 1 failed, 1 missing; 18 cards, 11520 bytes')" ]
    : >list; collected 0 list j
    check "an empty list" [ "$(cat out.txt)" = '0 files: 0 converted, 0 failed, 0 missing; 0 cards, 0 bytes' ]
    collected 2 list; says 'usage: collect LIST JOURNALS'
    collected 2 gone j; says 'gone: no list that can be read'
    collected 2 list gone; says 'gone: no such directory'
}

runTests
