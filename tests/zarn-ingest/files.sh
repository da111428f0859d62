#!/usr/bin/env bash
# Tests of zarn-ingest as an operator meets it: names, refusals, losses, signals, full disks.
#   files.sh PROGRAM SAMPLES [REAL_HEADERS]
set -u
program=$(realpath "$1") samples=$(realpath "$2") real=${3:-}
examples=$(dirname "$samples")
. "$(dirname "$0")/../support/checks.sh"
. "$(dirname "$0")/../support/headers.sh"

testUsage() {
    local row
    run 0 --help; silent
    check "the help lacks an option" grep -q -- '--output-dir or -o <DIR>' out.txt
    run 0 -V; silent
    check "no version" grep -qE '^zarn-ingest [0-9]+\.[0-9]+\.[0-9]+ ' out.txt
    run 0 --bash-completion; silent
    mkdir -p words/dir; touch words/file; cd words || return
    check "directories alone" [ "$(. ../out.txt; COMP_WORDS=(zarn-ingest -o ''); COMP_CWORD=2; _zarn_ingest; echo "${COMPREPLY[@]}")" = dir ]
    cd ..; header x; mkfifo pipe; cp "$data/properties/"* .
    transcript "$data/wrong-usage.txt"
    transcript "$data/overridden.txt"
    has "$data/wrong-properties.txt"
    while read -r row; do  # a file's content, and what the message has behind the file's name
        printf '%b\n' "${row%|:*}" >wrong.ini
        run 2 -p wrong.ini; says "wrong.ini:${row##*|:}"
    done <"$data/wrong-properties.txt"
    "$program" x -n >/dev/full 2>err.txt
    check "a full standard output is no success" [ $? = 1 ]
}

testConversion() {
    run 0 -o out "$samples/imager.hdr" "$samples/continued.hdr"
    says "2 converted, 0 failed"
    only imager.fits continued.fits
    check "mode" [ "$(stat -c %a out/imager.fits out)" = "$(printf '664\n755')" ]
    check "size" [ "$(stat -c %s out/imager.fits)" = 2880 ]
    sed 's/^NAXIS .*/NAXIS   =                    0 \/ # of axes in frame/; /^NAXIS[12]/d' \
        "$samples/imager.hdr" | sed 's/ *$//' >expected
    check "cards differ" cmp -s expected <(cards out/imager.fits)
    run 1 -o out "$samples/slit-spectrograph.hdr" "$samples/broken.hdr" "$samples/imager.hdr"
    says 'repaired (long): commentary cards beyond column 80 were continued in further cards: 1'
    says 'broken.hdr: only 1 of 4 lines are cards'
    says 'imager.hdr: the result out/imager.fits exists already (--force replaces it)'
    says '1 converted (1 repaired: long 1), 2 failed'
    only continued.fits imager.fits slit-spectrograph.fits
    echo old >out/imager.fits
    run 0 -q -f -o out/ "$samples/imager.hdr"; silent
    check "not replaced" cmp -s expected <(cards out/imager.fits)
    run 0 -qf -c -o out "$samples/imager.hdr"
    check "no checksum" [ "$(cards out/imager.fits | grep -cE '^(DATASUM|CHECKSUM)')" = 2 ]
}

testNames() {
    mkdir in far; ln -s far link; header far/z
    header in/a.b.hdr; header in/.hdr; header in/x; header 'in/a[1].hdr'; header 'in/*.hdr'
    run 0 -q -o out 'in/*.hdr' 'in/.hdr' in/x 'in/a[1].hdr' 'in/a.*' 'l*/z'; silent
    only a.b.fits .hdr.fits x.fits 'a[1].fits' '*.fits' z.fits
    rm -rf out
    for i in 3 1 4 5 9 2 6; do header "in/p$i"; done
    run 0 -n 'in/p?'
    check "the order of matches" sort -c out.txt
    run 1 -q -o out in/x 'in/no*' in/missing in/x in
    says "in/no*: no such file, and no file matches"
    says "in/x: would give the same result x.fits as in/x"
    says "in: is a directory"
    only x.fits
    run 1 -q -f -o out in/x ./in/x; says "./in/x: would give the same result"
    header ./-dash.hdr
    run 0 -q -o out ./-dash.hdr; has out/-dash.fits
    for odd in 'with blank' 'a(b)+1' '!x' 'y.gz' 'stdout' 'mem:z' 'http:' '~' $'new\nline' '[q]' '#' 'k=v'; do
        header "$odd"
        run 0 -q -o "dir $odd" "$odd"; silent
        check "$odd: other results" [ "$(find "dir $odd" -type f -printf x)" = x ]
        has "dir $odd/${odd%.gz}.fits"
    done
    header y.fits
    cp y.fits before
    run 1 -q -f y.fits; says "would replace a source of this run"
    check "the source was touched" cmp -s y.fits before
}

testLists() {
    header a; header b; header 'c*'; header d; header e
    printf 'a\nb\n\nc*\n' >list
    printf 'd\0' >nul
    run 0 -q -o out -l list --stdin <<<e; silent
    run 0 -q -o out -0 -l nul; silent
    only a.fits b.fits 'c*.fits' d.fits e.fits
    printf '*\n' >list
    : >empty; transcript "$data/lists.txt"
}

# What is no header text is refused before a byte is written.
testRefusals() {
    mkdir folder; mkfifo pipe; echo x >notdir; ln -s loop loop
    cp "$data/refused/"* .
    header a; header lines; yes '' | head -n 99998 >>lines
    truncate -s 16777216 large; truncate -s 16777217 larger
    transcript "$data/refused.txt"
    only
}

# What asks for data, misleads CFITSIO or is no card of the standard is repaired, or with --strict
# refused for the first repair; no result is larger than its header: CFITSIO fails here beyond 50 KiB.
testRepairs() {
    cp -r "$data/odd" .; cd odd || return
    (ulimit -f 50; exec "$program" -o ../out * 2>../err.txt)
    check "status" [ $? = 0 ]
    cd ..; told <"$data/odd.txt"
    check "other cards" diff "$data/odd.cards" <(for f in out/*.fits; do echo "== $f"; fold -w 80 "$f" | sed 's/ *$//; /^$/d'; done)
    cd odd || return
    "$program" --strict -o ../strict * 2>../err.txt; check "status" [ $? = 1 ]
    cd ..; told <"$data/odd-strict.txt"
    check "refused is what was repaired" diff <(grep 'repaired (' "$data/odd.txt" | grep -v ' converted ' | cut -d : -f 2 | sort -u) \
        <(grep strict "$data/odd-strict.txt" | cut -d : -f 2 | sort -u)
    # CFITSIO takes 999 columns; a HIERARCH card alone has room for the name of one more.
    local columns; mapfile -t columns < <(seq -f "TFORM%-3g= '1A'" 999)
    header most END "XTENSION= 'BINTABLE'" 'TFIELDS = 999' "${columns[@]}"
    header more END "XTENSION= 'BINTABLE'" 'TFIELDS = 1000' "${columns[@]}" "HIERARCH TFORM1000 = '1A'"
    run 0 -o out most more
    check "a table of 1000 columns" [ "$(grep -c 'more:.*no reader could open' err.txt) $(grep -c 'no reader could open' err.txt)" = '1 1' ]
    run 0 -q -o out "$samples/imager.hdr"
    check "CR LF changes the result" cmp -s out/crlf.fits out/imager.fits
    header sums "CHECKSUM= 'a'" 'CHECKSUM=' "DATASUM = 'b'" "OBJECT  = 'c'" END 'XTENSION= "x"' "CHECKSUM= 'd'"
    run 0 -c -o out sums; check "told of checksums" [ -z "$(grep checksums err.txt)" ]
    check "old checksums" [ "$(fold -w 80 out/sums.fits | grep -c '^CHECKSUM')" = 2 ]
    run 0 -f -o out sums; says 'sums:4: warning: checksums of another file (--checksum renews them): 4, the first'
    header none 'PCOUNT  =                    0' 'GCOUNT  =                    1' 'GROUPS  = F'
    run 0 -q -o out none; silent
}

# The report tells of each input; a torn line is cut off, and one run at a time writes.
testReport() {
    header a; cp "$samples/dump.hdr" b; header old "CHECKSUM= 'x'"
    printf '{"torn' >report; chmod 600 report
    run 1 -q -o out --report report a b old none; says 'none: no such file'
    check "lines" diff "$data/report.txt" <(sed -E 's/[-0-9]{10}T[0-9:]{8}Z/TIME/' report)
    check "what was repaired" diff "$data/repaired.txt" <("$examples/repaired" report)
    run 1 -q --strict --primary-only -o strict --report more b; says 'b:1: needs a repair (preamble)'
    check "the line" grep -q '"status":"failed".*"line":1,"text":"needs a repair' more
    exec 9>>report; flock 9
    run 1 -q -f -o out --report report a; says 'another zarn-ingest writes the report report'
    exec 9>&-
    yes '{}' | head -c 8192 >full
    cp "$samples/imager.hdr" kept; run 1 -q -f -o out --report kept a
    says 'the report kept holds something else than a report'; check "kept" cmp kept "$samples/imager.hdr"
    (ulimit -f 8; exec "$program" -q -f -o out --report full a old 2>err.txt)
    check "the status" [ $? = 1 ]; told <<<'zarn-ingest: the report full: File too large'
    check "a part of a line" [ "$(stat -c %s full)" = 8190 ]
    run 0 -q -n --report dry a; hasNot dry
    printf '[ingest]\nlist = list\nstrict = T\nreport = of-list\noutput-dir = listed\n' >p.ini; echo b >list
    run 1 -q -p p.ini; check "the properties" grep -q '"status":"failed"' of-list
    printf '[ingest]\npattern = in/*.hdr\nreport = in/r.hdr\n' >p.ini; mkdir in
    run 2 -p p.ini; says 'the report in/r.hdr would be taken for a header text'
}

testProtection() {
    header a; header b; mkdir out
    ln -s a link.fits; ln -s b list.hdr
    echo a >a.fits
    run 1 -q -f -o . link.fits; says 'link.fits would replace a source'
    run 1 -q -f -o . -l a.fits; says 'a.fits would replace a source'
    mkfifo out/a.fits
    run 1 -q -f -o out a; says 'out/a.fits belongs to something else than a file'
    rm out/a.fits; ln -s ../b out/a.fits
    run 0 -q -f -o out a
    check "a link was followed" cmp -s b <(header x && cat x)
    check "the link stayed" [ ! -L out/a.fits ]
    local host
    host=$(uname -n | tr -c 'A-Za-z0-9.\n-' _)
    mkdir "out/.zarn-ingest-$host-AAAAAA" "out/.zarn-ingest-$host-x-AAAAAA"
    : >"out/.zarn-ingest-$host-AAAAAA/result.fits"
    run 0 -q -o out b
    only a.fits b.fits ".zarn-ingest-$host-x-AAAAAA"  # another host's run may live
    local name
    name=$(printf 'n%.0s' {1..255}); header "$name"
    run 1 -q -n -o out "$name"; says 'File name too long'
    run 1 -q -n -o missing/out b; says 'output directory missing/out: No such file'
    for i in $(seq 20); do
        rm -rf both
        "$program" -q -o both a 2>>err.txt & "$program" -q -o both b 2>>err.txt
        wait $! || echo "second failed" >>err.txt
        [ -s both/a.fits ] && [ -s both/b.fits ] || echo "round $i lost a file" >>err.txt
    done
    check "two runs at once" [ -z "$(grep -E 'lost|failed' err.txt)" ]
    timeout 10 bash -c '
        for fd in /proc/$$/fd/*; do  # what the caller left open counts too
            ((${fd##*/} < 3)) || eval "exec ${fd##*/}>&-"
        done
        ulimit -n 4; exec "$0" -q -o few a' "$program" 2>err.txt
    check "too few descriptors" [ "$? $(ls -A few)" = '1 ' ]
}

# Two runs find no output directory; the slower one is not disturbed by what the other has made.
testTwoMakeOneDirectory() {
    needsTracing || return
    local name
    for name in a b; do
        header $name
        strace -f -o /dev/null -e inject=mkdir:delay_enter=1000000:when=1 "$program" -q -o out $name 2>err.txt &
    done
    wait
    only a.fits b.fits
}

testStreams() {
    header a
    "$program" --stdin -o out <&- 2>err.txt; check "closed standard input" [ $? = 1 ]
    says 'standard input: the list cannot be read: Bad file descriptor'
    mkfifo names
    env --default-signal=INT "$program" -l names -o out2 2>err.txt &
    waitFor begun out2  # past the shell that sets its bits
    kill -INT $!
    ended 130 $!
    nohup "$program" -o out3 --stdin <names >out.txt 2>err.txt &
    exec 9>names
    waitFor begun out3
    kill -HUP $!  # stays ignored
    echo a >&9
    exec 9>&-
    ended 0 $!
    has out3/a.fits
}

testDryRun() {
    header a
    cp "$samples/broken.hdr" ./-b
    transcript "$data/dry-run.txt"
    hasNot out
}
testVerbose() {
    header a
    run 0 -v -o out a
    says "The program has been launched with zarn-ingest -v -o out a"
    says "zarn-ingest: a: gave out/a.fits"
    run 1 -v -n "$(printf '😀%.0s' {1..1250})"
    check "a long line without its end" [ -z "$(grep -aE '[^ -~]([0-9]{4}-|zarn)' err.txt; LC_ALL=C.UTF-8 grep -avx '.*' err.txt)" ]
    run 1 -v -n "$(printf '\265%.0s' {1..5000})"
    check "nor does one of bytes that only continue lose more" [ "$(LC_ALL=C grep -acE '^.{4000}' err.txt)" = 3 ]
    run 0 -v -o out a -f
    check "no log line of the library" grep -qE '^[-0-9]+ [0-9:.]+ DEBUG \[ [0-9]+ \] Setting' err.txt
}

# On a terminal, work of more than a second shows how far it is, on one line that leaves no trace.
testProgress() {
    needsTracing || return
    header a; header b; header c
    command=(strace -f -o trace -e trace=/renameat -e inject=/renameat:delay_enter=1200000 "$program" -o out a b c)
    script -qec "${command[*]@Q}" terminal </dev/null >/dev/null
    sed -E '/^Script|^$/d; s/[0-9]+\/s, 0:[0-9]{2} left/N left/g; s/ in [0-9.]+ s//; s/ {38}/_/g' terminal |
        tr '\r' '|' >shown
    check "the terminal" diff shown - <<<"zarn-ingest: 1/3 files, N left|_|\
zarn-ingest: 2/3 files, N left|_|zarn-ingest: 3/3 files, N left|_|zarn-ingest: 3 converted, 0 failed|"
    "${command[@]}" -f 2>err.txt; told <<<'zarn-ingest: 3 converted, 0 failed'
}

testSignals() {
    header a
    mkfifo names
    "$program" -o out --stdin <names >out.txt 2>err.txt &
    exec 9>names
    echo a >&9
    waitFor begun out
    kill -TERM $!
    ended 143 $!
    exec 9>&-
    told <<<'zarn-ingest: stopped by a signal (Terminated): 0 converted, 0 failed, 1 left'; only
    mkdir many; for i in $(seq 6000); do cp a "many/$i.hdr"; done
    # A shell's background processes begin with Ctrl-C ignored.
    env --default-signal=INT "$program" -o out2 'many/*.hdr' >out.txt 2>err.txt &
    waitFor eval '[ -n "$(ls out2 2>/dev/null)" ]'
    kill -INT $!
    ended 130 $!
    local done
    done=$(ls -A out2 | wc -l)  # nothing temporary among them
    told <<<"zarn-ingest: stopped by a signal (Interrupt): $done converted, 0 failed, $((6000 - done)) left"
}

testFullDisk() {
    header a $(for i in $(seq 200); do echo "KEY$i=1"; done)
    (ulimit -f 8; exec "$program" -q -c -o out a 2>err.txt)
    check "exit status" [ $? = 1 ]
    says "a: no result can be written in out: File too large"
    only
}

testOrdinaryUser() {
    if [ "$(id -u)" != 0 ]; then echo "skipped: needs root to become someone else"; return; fi
    header secret; chmod 600 secret; header open; mkdir locked; mkdir -m 700 p1; mkdir p2; header p2/x
    # The build may lie where only root can go.
    cp "$program" "$(ldd "$program" | awk '/libZarnSysUtil/{print $3}')" .
    cat >user.sh <<SCRIPT
export LD_LIBRARY_PATH=\$PWD
"\$PWD/zarn-ingest" -o locked open; echo "status \$?"
cd "$work/own" && ../$current/zarn-ingest -q ../$current/secret ../$current/open '../$current/p*/*'; echo "status \$?"
SCRIPT
    mkdir -p "$work/own"; chown 65534:65534 "$work/own"
    setpriv --reuid=65534 --regid=65534 --clear-groups bash user.sh >err.txt 2>&1
    says "output directory locked: Permission denied"
    says "secret: cannot be read: Permission denied"
    says "p1: the directory cannot be listed: Permission denied"; has "$work/own/x.fits"
    check "statuses" [ "$(grep -c 'status 1' err.txt)" = 2 ]
    has "$work/own/open.fits"
    check "the source's bits" [ "$(stat -c %a open)" = 644 ]
}

# Headers from the archives, where there are some: each gives a result that others open.
testRealHeaders() {
    if [ ! -d "$real" ]; then echo "skipped: no real headers here"; return; fi
    run 0 -o out "$real"/*.hdr
    check "opened by others" [ "$(head -qc 9 out/* | grep -o 'SIMPLE  =' | wc -l)" = "$(ls "$real"/*.hdr | wc -l)" ]
}

runTests
