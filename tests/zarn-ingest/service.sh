#!/usr/bin/env bash
# Tests of zarn-ingest as a service: arrivals, journal, moves, crashes, logs.
#   service.sh PROGRAM SAMPLES
set -u
program=$(realpath "$1") samples=$(realpath "$2")
. "$(dirname "$0")/../support/checks.sh"
. "$(dirname "$0")/../support/service.sh"

testOneRun() {
    properties; arrive a.hdr b.hdr; cp "$samples/broken.hdr" in/; mkdir in/d.hdr; ln -s none in/dangling.hdr
    run 1 -p p.ini
    says 'broken.hdr: only 1 of 4 lines'; says 'in/dangling.hdr: cannot be read: No such file'
    check "the link to nothing" rm failed/dangling.hdr failed/dangling.hdr.reason; sed -i /dangling/d journal/*
    check "places" [ "$(ls -A in fits 'done' failed | xargs)" = \
        'done: a.hdr b.hdr failed: broken.hdr broken.hdr.reason fits: a.fits b.fits in: d.hdr' ]
    check "the reason" grep -q '^in/broken.hdr: only 1 of 4 lines are cards' failed/broken.hdr.reason
    check "journal" [ "$(journalFields 3-7)" = "$(printf '%s\t%s\t%s\t%s\t%s\n' \
        in/a.hdr fits/a.fits converted 18 2880 in/b.hdr fits/b.fits converted 18 2880 \
        in/broken.hdr fits/broken.fits failed 0 0)" ]
    check "times" [ "$(journalFields 1,2 | grep -cE '^[0-9-]{10}T[0-9:]{8}\.([0-9]{6})	[0-9]{10}\.\1$')" = 3 ]
    cp "$samples/imager.hdr" failed/broken.hdr
    run 0 -q -p p.ini --retry-failed; silent
    has fits/broken.fits; has done/broken.hdr
    arrive a.hdr; sed -i 's/Field 17/Field 18/' in/a.hdr
    run 1 -q -p p.ini; says 'fits/a.fits exists already'; has failed/a.hdr
    rm failed/a.hdr
    arrive a.hdr; sed -i 's/Field 17/Field 19/' in/a.hdr
    run 0 -q -p p.ini -f; silent
    check "not replaced" grep -q 'Field 19' fits/a.fits
    check "the second source" grep -q 'Field 19' 'done/a.hdr.~1~'
    rm fits/b.fits; mkfifo fits/b.fits; arrive b.hdr
    run 1 -q -p p.ini; says 'fits/b.fits belongs to something else than a file'; rm failed/b.hdr fits/b.fits
    arrive a.hdr; sed -i 4,18d in/a.hdr
    run 1 -q -p p.ini; says 'fits/a.fits exists already'
    cp "$samples/imager.hdr" in/l; ln -s l in/link.hdr
    touch other; mv other failed/other.txt
    run 0 -v -p p.ini --retry-failed -f
    hasNot failed/a.hdr.reason
    check "a result with more cards" [ "$(fold -w 80 fits/a.fits | grep -c OBSERVER)" = 0 ]
    has failed/other.txt; has fits/link.fits; [ -L done/link.hdr ] || check "the link" false
    check "modes" [ "$(stat -c %a fits/a.fits)" = 664 ]
}

testProperties() {
    properties; printf '#%4094s\n#%4095s=T\n' x x >>p.ini; run 2 -p p.ini; says 'p.ini:12: more than 4095'
    properties; yes '#' | head -c $((65536 - $(wc -c <p.ini))) >>p.ini; run 0 -q -p p.ini
    echo >>p.ini; run 2 -p p.ini; says 'p.ini: is larger than 64 KiB'
    properties other key 1 ingest/deep force T
    run 0 -q -p p.ini; says 'unknown property [other] key'; says 'unknown property [ingest/deep] force'
    properties log file p.ini; cp p.ini before
    run 1 -p p.ini; says 'the log p.ini holds something else than a log'; check "added to" cmp p.ini before
    properties log file in/l.hdr; run 2 -p p.ini; says 'the log in/l.hdr would be taken for a header text'
    properties ingest pattern 'i*/a.hdr'; run 2 --status -p p.ini; run 2 -p p.ini; says 'only its last component'
    properties service done in; run 1 -p p.ini; says 'in cannot serve two purposes'
    for key in 'done' failed; do properties; sed -i "/^$key/d" p.ini; run 2 -w -p p.ini; says '--watch needs the properties'; done
    run 2 --retry-failed -p p.ini; says '--retry-failed needs the properties'
    properties log file log/l.log; arrive a.hdr; run 0 -n -p p.ini -o else; hasNot log
    check "dry run" grep -qx 'would convert in/a.hdr to else/a.fits' out.txt
    hasNot else; rm in/a.hdr; run 0 -n -p p.ini; told <<<'zarn-ingest: 0 would be converted, 0 failed'
    rmdir in; run 1 -n -p p.ini; says 'in: the directory cannot be listed: No such file'
    sed "s|/var/[a-z]*/zarn-ingest/|$PWD/|" "$samples/../../programs/zarn-ingest/deploy/zarn-ingest.ini" >p.ini
    run 1 -q -p p.ini; says 'incoming'
}

testWatch() {
    properties service settle 2 log file log/l.log
    start
    waitFor [ -e log/l.log ]
    arrive a.hdr
    head -n 5 "$samples/imager.hdr" >in/slow.hdr
    for i in 1 2 3 4 5 6; do sleep 0.5; echo "COMMENT $i" >>in/slow.hdr; done
    check "taken half-finished" [ ! -e fits/slow.fits ]
    waitFor [ -e done/slow.hdr ]
    arrive a.hdr; waitFor [ -e done/a.hdr.~1~ ]  # no clash with the look before
    check "not the whole file" grep -q 'COMMENT 6' fits/slow.fits
    "$program" -p p.ini -w -o fits2 2>err2.txt
    check "a second service" [ $? = 1 ]
    check "its message" grep -q 'another zarn-ingest is using the directory in' err2.txt
    stop
    silent
    check "log" grep -q 'INFO .* in/a.hdr: gave fits/a.fits' log/l.log
    check "working directories" [ -z "$(ls -A fits | grep '^\.')" ]
}

# Whatever was written when the power went: the next run makes one result and one line of it.
testRecovery() {
    properties; arrive a.hdr b.hdr c.hdr
    run 0 -q -p p.ini
    mv done/c.hdr in/  # killed between journal and move: the line tells of this very file
    sed -i "/c.hdr/s/[^\t]*\$/$(stat -c %i-%.9Z in/c.hdr)/" journal/*.journal
    printf 'torn' >>journal/*.journal
    mv done/b.hdr in/b.hdr
    sed -i '/b.hdr/d' journal/*.journal                  # killed between result and journal
    mkdir "fits/.zarn-ingest-$(uname -n | tr -c 'A-Za-z0-9.\n-' _)-AAAAAA"
    sed -i 's/\t1/\t2/' journal/*.journal               # a clock that was set back since
    arrive a0.hdr a.hdr d.hdr e.hdr
    touch done/d.hdr; ln in/d.hdr done/d.hdr.~1~        # the power went while the move became safe
    ln in/e.hdr elsewhere                                # which means nothing
    run 0 -v -p p.ini
    says 'in/d.hdr: an earlier run moved it to done, and a crash left its old name, too'
    check "places" [ "$(ls -A fits done | tr '\n' ' ')" = \
        'done: a.hdr a.hdr.~1~ a0.hdr b.hdr c.hdr d.hdr d.hdr.~1~ e.hdr  fits: a.fits a0.fits b.fits c.fits e.fits ' ]
    check "a torn line" [ -z "$(grep torn journal/*.journal)" ]
    check "lines" [ "$(journalFields 3 | sort | uniq -c | tr -s ' \n' ' ')" = \
        ' 2 in/a.hdr 1 in/a0.hdr 1 in/b.hdr 1 in/c.hdr 1 in/e.hdr ' ]
}

# The steps of one file are on disk in the order that makes a crash harmless.
testOrder() {
    needsTracing || return
    properties; arrive a.hdr b.hdr; cp "$samples/broken.hdr" in/
    trace() {
        strace -f -y -o trace.txt -e trace=fsync,syncfs,renameat,renameat2,write \
            "$program" -q "$@" 2>err.txt
        sed -nE "s|$PWD/?||g; s|[0-9]+ +||; s|\.zarn-ingest-[^>]*-[A-Za-z0-9]{6}|OWN|
            s|zarn-ingest-[0-9-]{10}|DATE|; s|.*(/memfd:\|err.txt).*||
            s|^(sync)fs\([0-9]+<(.*)>\) += 0$|\1 everything with \2|p; s|^fsync\([0-9]+<(.*)>\) += 0$|sync \1|p
            s|^write\([0-9]+<([a-z].*/.*)>, .* = [0-9]+$|write \1|p
            s|^renameat2?\(([0-9]+<([^>]*)>)?[^\"]*\"([^\"]*)\", ([0-9]+<([^>]*)>)?[^\"]*\"([^\"]*)\".* = 0$|rename \2 \3 \5 \6|p" trace.txt |
            sed "s/ $/ ./" | uniq | diff - expected
    }
    cp "$data/order.txt" expected
    check "the service" trace -p p.ini
    cp "$data/order-again.txt" expected
    check "failed files again" trace -p p.ini --retry-failed
    sed '/rename  /,$d' "$data/order.txt" >group
    sed '/2.fits/d; s|everything with fits/OWN|fits/OWN/1.fits|' group >expected
    rm -r fits journal/*; mkdir fits
    check "one alone" trace -j journal -o fits done/a.hdr
    sed '/1.fits/d; /2.fits/d' group >expected
    rm journal/*
    check "one that was done already" trace -r -j journal -o fits done/a.hdr
}

# A result with the moon's values is recognised, too; one without them is another file.
testMoon() {
    properties ingest moon vek2; arrive a.hdr
    run 0 -p p.ini; says '1 converted, 0 failed'; says 'moon: 1 with values'
    check "values" [ "$(fold -w 80 fits/a.fits | grep -c '^MOON.*(VEK2)')" = 4 ]
    check "cards of the text" [ "$(journalFields 6)" = 18 ]
    cp fits/a.fits before; mv done/a.hdr in/
    sed -i '/a.hdr/d' journal/*.journal  # killed between result and journal
    run 0 -p p.ini; says '1 converted, 0 failed'; says 'moon: 1 with values'
    check "made again" cmp -s fits/a.fits before
    check "the line" [ "$(journalFields 3,5,6)" = "$(printf 'in/a.hdr\tconverted\t18')" ]
    mv done/a.hdr in/
    run 1 -q -p p.ini -m OLAN; says 'fits/a.fits exists already'
    run 0 -q -p p.ini -m OLAN -f --retry-failed
    check "the option wins" grep -q '(OLAN)' fits/a.fits
}

# What failed is put back, each name once, and never over what arrived since.
testRetry() {
    properties; cp "$samples/broken.hdr" in/x.hdr; cp "$samples/broken.hdr" in/y.hdr
    run 1 -q -p p.ini; cp "$samples/broken.hdr" in/x.hdr; run 1 -q -p p.ini
    arrive y.hdr; mkdir failed/z.hdr; touch failed/.hidden.hdr; ln -s l.hdr failed/l.hdr
    run 1 -p p.ini --retry-failed
    told <"$data/retry.txt"
    check "places" [ "$(ls -A failed | tr '\n' ' ')" = \
        '.hidden.hdr l.hdr l.hdr.reason x.hdr x.hdr.reason x.hdr.~1~ x.hdr.~1~.reason y.hdr y.hdr.reason z.hdr ' ]
}

# A source that someone writes to meanwhile is no result yet, and is looked at again.
testChange() {
    needsTracing || return
    properties; arrive a.hdr
    strace -f -o trace -e inject=fsync:delay_enter=2000000:when=6 "$program" -p p.ini 2>err.txt &
    waitFor eval '[ -s fits/.zarn*/1.fits ]'
    sed 's/Field 17/Field 18/' in/a.hdr >later; cat later >in/a.hdr  # the same file, as long as before
    ended 1 $!
    says 'in/a.hdr: changed while it was converted; it is looked at again'; has in/a.hdr; hasNot fits/a.fits
    run 0 -q -p p.ini; check "the later text" grep -q 'Field 18' fits/a.fits
}

testLeft() {
    properties service settle 1; arrive a.hdr b.hdr
    (for i in 1 2 3 4 5 6 7 8; do echo >>in/b.hdr; sleep 0.2; done) &
    run 0 -p p.ini; wait $!
    says '1 converted, 0 failed'; says '1 files are left: someone was still writing them'
}

testRoom() {
    properties service least-free 1000000000
    arrive a.hdr
    run 1 -p p.ini; says 'less than 1000000000 MiB are free'
    has in/a.hdr
    start; sleep 2.5; stop
    check "said once, and then how it ended" [ "$(grep -c 'MiB are free\|(Terminated): 0 converted, 0 failed in' err.txt)" = 2 ]
    has in/a.hdr; hasNot fits/a.fits
}

testLog() {
    properties log file log/l.log log size 20 log files 3 log interval 1
    for i in $(seq 400); do cp "$samples/imager.hdr" "in/a-rather-long-name-of-a-file-$i.hdr"; done
    start -v
    waitFor hasFiles done 400
    waitFor [ -e log/l.log.1 ]
    stop
    check "kept" [ "$(ls log | wc -l)" -le 3 ]
    mkdir blocked.log
    properties log file blocked.log
    run 1 -p p.ini; says 'the log blocked.log is not being written'
    : >in/errors.log; properties log file in/errors.log log priorities '~INFO' log flags VERBOSE log program archive
    run 0 -p p.ini  # it logs at a level that may be logged
    check "other lines" \
        grep -qE '^.*@LM_ERROR@archive\|[^A-Z]+ ERROR [^A-Z]+log of zarn-ingest [^A-Z]+$' in/errors.log
    properties log file mute.log log priorities '~INFO|~ERROR'; run 0 -p p.ini
    check "not mute" cmp -s mute.log /dev/null
}

# Killed again and again while files arrive: nothing is lost, nothing is done twice.
testKills() {
    local files=300 kills=12 i
    properties ingest checksum T
    (for i in $(seq $files); do
        sed "s/Field 17/Field $i/" "$samples/imager.hdr" >"in/.$i"; mv "in/.$i" "in/$i.hdr"
        [ $((i % 20)) != 0 ] || sleep 0.1
    done) &
    local writer=$!
    for i in $(seq $kills); do
        start
        sleep "0.$((RANDOM % 9))"
        kill -KILL "$service"
        wait "$service" 2>/dev/null
    done
    wait $writer
    start
    sed "s/Field 17/Field $((++files))/" "$samples/imager.hdr" >"in/.last"; mv in/.last "in/$files.hdr"
    waitFor hasFiles done $files
    waitFor [ -e "done/$files.hdr" ]; stop  # it runs by now, and ends in its own way
    check "results, sources, failures" [ "$(count fits) $(count in) $(count failed)" = "$files 0 0" ]
    check "journal" [ "$(journalFields 3 | sort -u | wc -l) $(journalFields 3 | wc -l)" = "$files $files" ]
    for i in $(seq $files); do grep -qs "Field $i'" "fits/$i.fits" || check "content of $i" false; done
    check "working directories" [ -z "$(ls -A fits | grep '^\.')" ]
}

runTests
