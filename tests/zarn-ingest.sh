#!/usr/bin/env bash
# Tests of zarn-ingest as an operator meets it: names, refusals, losses, signals, full disks.
#   zarn-ingest.sh PROGRAM SAMPLES [REAL_HEADERS]
# Everything happens in a directory of its own, which is removed at the end.
set -u
program=$(realpath "$1") samples=$(realpath "$2") real=${3:-}
. "$(dirname "$0")/support/checks.sh"
. "$(dirname "$0")/support/headers.sh"

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

testRefusals() {
    : >empty; mkdir folder; printf 'a\0b' >binary; mkfifo pipe
    head -c 5000 "$program" >binary2
    run 0 -q -o out "$samples/imager.hdr"
    cp out/imager.fits given.fits; rm -r out
    printf '\xEF\xBB\xBF' | cat - "$samples/imager.hdr" >bom
    header notfirst; sed -i 1d notfirst
    header bitpix; sed -i '2s/8$/9/' bitpix
    header naxis; sed -i 3d naxis; echo 'A       = 1' >>naxis
    run 1 -q -o out empty folder binary binary2 given.fits bom pipe missing notfirst bitpix naxis
    told <<'MESSAGES'
zarn-ingest: empty: is empty
zarn-ingest: folder: is a directory
zarn-ingest: binary: is a binary file, not a header text file
zarn-ingest: binary2: is a binary file, not a header text file
zarn-ingest: given.fits: is a FITS file, not a header text file
zarn-ingest: bom:1: begins with a byte-order mark before the first card
zarn-ingest: pipe: is not a regular file
zarn-ingest: missing: no such file, and no file matches it as a pattern
zarn-ingest: notfirst:1: card 1 must be SIMPLE: "BITPIX  =                    8" (CFITSIO status 221)
zarn-ingest: bitpix:2: BITPIX has no legal value: "BITPIX  =                    9"
zarn-ingest: naxis:3: card 3 must be NAXIS: "A       = 1" (CFITSIO status 223)
MESSAGES
    only
    echo x >notdir
    run 1 -o notdir "$samples/imager.hdr"; says "output directory notdir: Not a directory"
    run 1 -o no/dir "$samples/imager.hdr"; says "Error creating path: no/dir"
}

# What asks for data is refused before CFITSIO could write any: beyond 50 KiB it would fail here.
testData() {
    local big='                   10000'
    header axis; sed -i "3s/0\$/3/" axis
    printf 'NAXIS1  =%s\nNAXIS2  =%s\nNAXIS3  =%s\n' "$big" "$big" "$big" >>axis
    header groups 'GROUPS  =                    T' 'PCOUNT  =                    3'
    header pcount 'PCOUNT  =            100000000'
    header hierarch 'HIERARCH PCOUNT = 100000000'
    header lower 'pcount  = 100000000'
    header negative 'PCOUNT  = -100000000'
    header real 'PCOUNT  = 1E8'
    header gcount 'GCOUNT  = abc'
    header twice 'NAXIS1  = 10000' 'NAXIS1  = 10000'
    header middle 'NAXIS1  = 10000' 'B@D     = 1'
    sed -i "3s/0\$/1/" middle
    (
        ulimit -f 50
        "$program" -q -o out axis groups pcount hierarch lower negative real gcount twice middle \
            >out.txt 2>err.txt
        echo $? >status
    )
    check "exit status" [ "$(cat status)" = 1 ]
    told <<MESSAGES
zarn-ingest: axis:6: NAXIS3 would be left over in a header without data: "NAXIS3  =$big"
zarn-ingest: groups:4: GROUPS asks for data: "GROUPS  =                    T"
zarn-ingest: pcount:4: PCOUNT asks for data: "PCOUNT  =            100000000"
zarn-ingest: hierarch:4: CFITSIO takes this card for PCOUNT: "HIERARCH PCOUNT = 100000000"
zarn-ingest: lower:4: PCOUNT asks for data: "pcount  = 100000000"
zarn-ingest: negative:4: PCOUNT is no whole number of up to 9 digits: "PCOUNT  = -100000000"
zarn-ingest: real:4: PCOUNT is no whole number of up to 9 digits: "PCOUNT  = 1E8"
zarn-ingest: gcount:4: GCOUNT is no whole number of up to 9 digits: "GCOUNT  = abc"
zarn-ingest: twice:5: NAXIS1 stands a second time: "NAXIS1  = 10000"
zarn-ingest: middle:5: the keyword holds other characters than letters, digits, - and _: "B@D     = 1" (CFITSIO status 207)
MESSAGES
    only
    header none 'PCOUNT  =                    0' 'GCOUNT  =                    1' 'GROUPS  = F'
    run 0 -q -o out none; silent
}

testLosses() {
    header long "COMMENT $(printf 'x%.0s' {1..80})" "$(printf 'OBJECT  = %-90s' "'blanks'")"
    header tab "$(printf "OBJECT  = 'a\tb\xC3\xA4'")"
    header hidden END 'NAXIS   = 2' 'no keyword at all' ''
    header lowercase "object  = 'x'" "HIERARCH eso = 1"
    header blank '' '' END ''
    sed 's/$/\r/' "$samples/imager.hdr" >crlf
    run 0 -o out long tab hidden lowercase crlf blank
    told <<'MESSAGES'
zarn-ingest: long:4: warning: cards cut at 80 characters: 1, the first in this line
zarn-ingest: tab:4: warning: characters that became blanks, as a header cannot hold them: 3, the first in this line
zarn-ingest: hidden:5: warning: cards left out, hidden behind the END card: 2, the first in this line
zarn-ingest: lowercase:4: warning: keywords that became upper case: 2, the first in this line
zarn-ingest: crlf:1: warning: lines that end in CR LF: 19, the first in this line
zarn-ingest: 6 converted (5 with warnings), 0 failed
MESSAGES
    check "hidden cards" [ "$(cards out/hidden.fits | wc -l)" = 4 ]
    check "something behind END" [ -z "$(tail -c +321 out/hidden.fits | tr -d ' ')" ]
    run 0 -q -o out "$samples/imager.hdr"
    check "CR LF changes the result" cmp -s out/crlf.fits out/imager.fits
    only long.fits tab.fits hidden.fits lowercase.fits crlf.fits imager.fits blank.fits
}

# Where CFITSIO takes a card for something else than it says, or would lose it.
testMisleadingCards() {
    header hierarch 'HIERARCH NAXIS2 = 77'
    header second 'BITPIX  =                   16'
    header simple; sed -i '1s/T$/5/' simple
    header gcount 'GCOUNT  = 99999999999999999999'
    header string "NAXIS1  = 'abc&'" "CONTINUE  'd'"
    header equals 'OBJECT = 3'
    run 1 -n hierarch second simple gcount string equals
    check "a dry run lets one pass" [ ! -s out.txt ]
    told <<'MESSAGES'
zarn-ingest: hierarch:4: CFITSIO takes this card for NAXIS2: "HIERARCH NAXIS2 = 77"
zarn-ingest: second:4: BITPIX stands a second time: "BITPIX  =                   16"
zarn-ingest: simple:1: SIMPLE is neither T nor F: "SIMPLE  =                    5"
zarn-ingest: gcount:4: GCOUNT is no whole number of up to 9 digits: "GCOUNT  = 99999999999999999999"
zarn-ingest: string:4: NAXIS1 is no whole number of up to 9 digits: "NAXIS1  = 'abc&'"
zarn-ingest: equals:4: the equals sign belongs in column 9: "OBJECT = 3" (CFITSIO status 207)
zarn-ingest: 0 would be converted, 6 failed
MESSAGES
    header end 'END     = 5 / lost'
    printf '%s\n' 'SIMPLE  =                    T' 'BITPIX  =                   +8' END >short
    header sums "CHECKSUM= 'a'" 'CHECKSUM=' "DATASUM = 'b'" "OBJECT  = 'c'"
    run 0 -c -o out end short sums
    says 'end:4: warning: cards left out, hidden behind the END card: 1'
    check "old checksums" [ "$(cards out/sums.fits | grep -c '^CHECKSUM')" = 1 ]
    check "NAXIS" [ "$(cards out/short.fits | sed -n 3p)" = 'NAXIS   =                    0 / # of axes in frame' ]
    { cat short; yes '' | head -n 100001; } >lines
    printf 'XTENSION=%200s' x >extension
    printf 'SIMPLE  = T\rBITPIX  = 8\r%200s' x >cr
    run 1 -o out lines extension cr
    says 'lines: has more than 100000 lines'
    says 'extension: is a FITS file'
    says 'cr: has lines that end in CR alone'
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

testRealHeaders() {
    if [ ! -d "$real" ]; then echo "skipped: no real headers here"; return; fi
    run 1 -o out "$real"/*.hdr
    only awav-long-lines.fits dirbe.fits eui-continue.fits int-wfc.fits irac.fits \
        lasco-c3-tab.fits mdi.fits
    says "adapt.hdr:6: NAXIS3 would be left over"
    says "chandra-no-bitpix.hdr:1: card 1 must be SIMPLE"
    says "chipass-dump.hdr:1: card 1 must be SIMPLE"
    says "derived-trimmed.hdr:6: NAXIS3 would be left over"
    says "hmi-missing-bitpix.hdr:1: card 1 must be SIMPLE"
    says "7 converted (4 with warnings), 5 failed"
}

runTests
