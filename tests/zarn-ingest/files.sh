#!/usr/bin/env bash
# Tests of zarn-ingest as an operator meets it: names, refusals, losses, signals, full disks.
#   files.sh PROGRAM SAMPLES [REAL_HEADERS]
# Everything happens in a directory of its own, which is removed at the end.
set -u
program=$(realpath "$1") samples=$(realpath "$2") real=${3:-}
. "$(dirname "$0")/../support/checks.sh"
. "$(dirname "$0")/../support/headers.sh"
data=$(realpath "$(dirname "$0")/../data/zarn-ingest")

testUsage() {
    run 0 --help; silent
    check "the help lacks an option" grep -q -- '--output-dir or -o <DIR>' out.txt
    run 0 -V; silent
    check "no version" grep -qE '^zarn-ingest [0-9]+\.[0-9]+\.[0-9]+ ' out.txt
    run 2; says "no file to convert"
    run 2 --bogus x; says "bogus is not a valid option"
    run 2 -o; says "-o requires an argument"
    run 2 -q -v x; says "exclude each other"
    run 2 -0 x; says "--null needs"
    run 2 --output-dir= x; says "--output-dir"
    header x
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
    says "$samples/slit-spectrograph.hdr:15: warning: cards cut at 80 characters: 1"
    says "$samples/broken.hdr:7: a blank stands within the keyword: \"EXP TIME="
    says 'CFITSIO status 207: illegal character in keyword'
    says "imager.hdr: the result out/imager.fits exists already"
    says "1 converted (1 with warnings), 2 failed"
    only continued.fits imager.fits slit-spectrograph.fits
    echo old >out/imager.fits
    run 0 -q -f -o out/ "$samples/imager.hdr"; silent
    check "not replaced" cmp -s expected <(cards out/imager.fits)
    run 0 -qf -c -o out "$samples/imager.hdr"
    check "no checksum" [ "$(cards out/imager.fits | grep -cE '^(DATASUM|CHECKSUM)')" = 2 ]
}

testNames() {
    mkdir in
    header in/a.b.hdr; header in/.hdr; header in/x; header 'in/a[1].hdr'; header 'in/*.hdr'
    run 0 -q -o out 'in/*.hdr' 'in/.hdr' in/x 'in/a[1].hdr' 'in/a.*'; silent
    only a.b.fits .hdr.fits x.fits 'a[1].fits' '*.fits'
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
    run 2 -- -dash.hdr
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
    run 1 -q -o out -l list -l missing -l nul
    told <<'MESSAGES'
zarn-ingest: *: cannot be read: No such file or directory
zarn-ingest: missing: the list cannot be read: No such file or directory
zarn-ingest: d\x00: the name holds a NUL byte: is --null missing?
MESSAGES
    : >list
    run 0 -o out -l list; says "0 converted, 0 failed"
}

# What is no header text, asks for data or misleads CFITSIO is refused with its line, before a byte is
# written; CFITSIO would fail here beyond 50 KiB.
testRefusals() {
    mkdir folder; mkfifo pipe
    run 1 -q -o out folder pipe missing
    told <<'MESSAGES'
zarn-ingest: folder: is a directory
zarn-ingest: pipe: is not a regular file
zarn-ingest: missing: no such file, and no file matches it as a pattern
MESSAGES
    only
    cp -r "$data/refused" .; cd refused || return
    (ulimit -f 50; exec "$program" -o ../out * 2>../err.txt)
    cd ..; told <"$data/refused.txt"
    header lines; yes '' | head -n 99998 >>lines
    run 1 -q -o out lines; says 'lines: has more than 100000 lines'
    only
    echo x >notdir
    run 1 -o notdir "$samples/imager.hdr"; says "output directory notdir: Not a directory"
    run 1 -o no/dir "$samples/imager.hdr"; says "Error creating path: no/dir"
}

# What a result loses is counted.
testLosses() {
    cp "$data/lossy/"* .
    run 0 -o out crlf end hidden long lowercase tab blank short
    told <"$data/lossy.txt"
    check "hidden cards" [ "$(cards out/hidden.fits | wc -l)" = 4 ]
    check "something behind END" [ -z "$(tail -c +321 out/hidden.fits | tr -d ' ')" ]
    check "NAXIS" [ "$(cards out/short.fits | sed -n 3p)" = 'NAXIS   =                    0 / # of axes in frame' ]
    run 0 -q -o out "$samples/imager.hdr"
    check "CR LF changes the result" cmp -s out/crlf.fits out/imager.fits
    only blank.fits crlf.fits end.fits hidden.fits imager.fits long.fits lowercase.fits short.fits tab.fits
    header sums "CHECKSUM= 'a'" 'CHECKSUM=' "DATASUM = 'b'" "OBJECT  = 'c'"
    run 0 -c -o out sums; told <<<'zarn-ingest: 1 converted, 0 failed'
    check "old checksums" [ "$(cards out/sums.fits | grep -c '^CHECKSUM')" = 1 ]
    run 0 -f -o out sums; says 'sums:4: warning: checksums of another file (--checksum renews them): 3, the first'
    header none 'PCOUNT  =                    0' 'GCOUNT  =                    1' 'GROUPS  = F'
    run 0 -q -o out none; silent
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
    header ./-b 'B@D     = 1'
    run 1 -n -o out a ./-b
    check "stdout" grep -qx 'would convert a to out/a.fits' out.txt
    check "stdout" grep -qx 'would create the directory out' out.txt
    says "./-b:4: the keyword holds other characters"
    says "1 would be converted, 1 failed"
    hasNot out
}
testVerbose() {
    header a
    run 0 -v -o out a
    says "The program has been launched with zarn-ingest -v -o out a"
    says "zarn-ingest: a: gave out/a.fits"
    run 1 -v -n "$(printf 'x%.0s' {1..5000})"
    check "a long line without its end" [ -z "$(grep -E 'x([0-9]{4}-|zarn)' err.txt)" ]
    run 0 -v -o out a -f
    check "no log line of the library" grep -qE '^[-0-9]+ [0-9:.]+ DEBUG \[ [0-9]+ \] Setting' err.txt
}

# On a terminal; each conversion takes 0.6 s. Times, and what hangs on them, count as T.
testProgress() {
    needsTracing || return
    local file; for file in a b c; do header $file; done
    local slow="strace -f -o trace -e inject=renameat2:delay_exit=600000 '$program'"
    script -qec "$slow -o out a b missing c" /dev/null </dev/null | sed -E 's/[0-9]\/s, 0:[0-9]+/T/g; s/in [0-9.]+/in T/' |
        tr '\r' '<' >out.txt
    local blanks; blanks=$(printf '%38s' '')
    check "other progress" diff - out.txt <<TEXT
zarn-ingest: 2/4 files, T left<$blanks<zarn-ingest: missing: no such file, and no file matches it as a pattern<
zarn-ingest: 4/4 files, T left<$blanks<zarn-ingest: 3 converted, 1 failed in T s<
TEXT
    script -qec "$slow -q -o quiet a b c" /dev/null </dev/null >out.txt
    check "not quiet" [ ! -s out.txt ]
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
    says "stopped by a signal (Terminated)"; only
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
    header a $(for i in $(seq 200); do echo "KEY$i=1"; done | sed 's/KEY\(.*\)=1/KEY\1/')
    (
        ulimit -f 8
        "$program" -q -c -o out a >out.txt 2>err.txt
        echo $? >status
    )
    check "exit status" [ "$(cat status)" = 1 ]
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

# Headers from the archives, where there are some: each gives a result or a message.
testRealHeaders() {
    if [ ! -d "$real" ]; then echo "skipped: no real headers here"; return; fi
    "$program" -o out "$real"/*.hdr 2>err.txt
    check "status" [ $? -le 1 ]
    local results
    results=$(ls out | wc -l)
    check "counts" grep -qE "^zarn-ingest: $results converted.*, $(($(ls "$real"/*.hdr | wc -l) - results)) failed" err.txt
    check "opened by others" [ "$(head -qc 9 out/* | grep -o 'SIMPLE  =' | wc -l)" = "$results" ]
}

runTests
