#!/usr/bin/env bash
# Tests of zarn-moon.
#   nights.sh PROGRAM
set -u
export LC_ALL=C
binary=$(realpath "$1") timeout=$(command -v timeout)
# shellcheck disable=SC2034 # for checks.sh
program=bounded
bounded() { "$timeout" 60 "$binary" "$@"; }
limited() { (ulimit -f 1; bounded "$@"); }  # to files of one block
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/../support/checks.sh"
data=$(realpath "$(dirname "$0")/../data/zarn-moon")

# golden NAME FILE: whether a whole output is the one that was checked against almanacs.
golden() { check "$1 differs" diff -u --label "$1" --label now "$data/$1" "$2"; }
# files NAME...: whether the directory holds these in their order, and no hidden one besides.
files() { check "files other than $*" [ "$(ls -A)" = "$(printf '%s\n' "$@")" ]; }
# fakeGnuplot LINE...: a script in the place of gnuplot.
fakeGnuplot() {
    mkdir -p fake
    printf '%s\n' '#!/bin/sh' "$@" >fake/gnuplot
    chmod 755 fake/gnuplot
}
drawing() { PATH=$PWD/fake:$PATH run "$@"; }
# complains STATUS MESSAGE ARGUMENT...: the last message of a run without a result.
complains() {
    local status=$1 message=$2
    shift 2
    run "$status" "$@"
    check "says: $(tail -n 1 err.txt) instead of: $message" [ "$(tail -n 1 err.txt)" = "zarn-moon: $message" ]
    check "a result in spite of: $*" [ ! -s out.txt ]
}

testDataIsThere() {
    local name
    for name in completions limits outputs wrong-targets wrong-usage; do has "$data/$name.txt"; done
}

testWholeOutputs() {
    local name forms words form before after
    fakeGnuplot 'cat >script; echo "IEND or </svg>"'
    while IFS='|' read -r name forms words; do
        eval "words=($words)"
        for form in $forms; do
            case $form in
            png | svg) drawing 0 "${words[@]}" --plot "$name.$form"; golden "$name.$form.gnuplot" script ;;
            *)
                TZ=XYZ-2:30 run 0 "${words[@]}" --format "$form"
                sed -i 's/^DTSTAMP:.*Z/DTSTAMP:now/' out.txt
                golden "$name.$form" out.txt ;;
            esac
            silent
        done
    done <"$data/outputs.txt"
    words=(-p "60N 25E" -d 2027-04-12 -t "187.7 12.4" --min-altitude 30 --plot n.svg)
    drawing 0 "${words[@]}"; mv script night
    drawing 0 "${words[@]}" --nights 1; check "one of many nights is drawn as one" cmp night script
    run 0 -p "75N 25E" -d 2026-06-21
    check "a day without a table" [ "$(tail -n 1 out.txt)" = 'The sun does not set: no table.' ]
    drawing 0 -p "75N 25E" -d 2026-06-21 --plot day.svg
    # A point each four minutes of 24 hours, and one colour.
    check "the whole day is drawn" [ "$(grep -c '^[0-9]' script) $(grep -c rectangle script)" = '361 1' ]
    run 0 -p "75N 25E" -d 2026-12-21 -s 60 --format csv
    check "a night without sunset lasts a day" [ "$(wc -l <out.txt)" = 25 ]
    run 0 --help; silent; golden help.txt out.txt
    run 0 --version; silent; check "version" grep -qxE 'zarn-moon [0-9]+\.[0-9]+\.[0-9]+' out.txt
    # Without a date, the night of now: at 0 degrees it begins at 12 h UT.
    before=$(date -u -d '12 hours ago' +%F); run 0 -p "0N 0E" -t "0 0" -s 720
    after=$(date -u -d '12 hours ago' +%F)
    check "the night of now" grep -qE "^Night of ($before|$after) at" out.txt
}

testTelescopes() {
    local name place
    while read -r name place; do
        run 0 -T "$name" --mjd 61000
        check "$name" [ "$(head -n 1 out.txt)" = "MJD 61000.00000, 2025-11-21 00:00 UT at ${name^^} $place" ]
    done <<'LINES'
olan (38.7421N 5.3168E)
VEK1 (29.8643S 67.4125W)
vek2 (29.8641S 67.4129W)
Vek3 (29.8639S 67.4134W)
VEK4 (29.8646S 67.4138W)
LINES
}

testTargetsFromAFile() {
    local line reason
    while IFS='|' read -r line reason; do
        printf 'good,1,2\n%s\n' "$line" >bad.csv
        complains 2 "bad.csv:2: $reason; see zarn-moon --help" -T OLAN --targets bad.csv
    done <"$data/wrong-targets.txt"
    mkfifo pipe
    "$timeout" 20 bash -c 'sleep 0.3; printf "#\na,1,2" >pipe' &
    run 0 -T OLAN --targets pipe --mjd 61000 --format csv
    wait
    check "a pipe's target" [ "$(tail -n 1 out.txt | cut -d, -f 10-12)" = a,1.00000,2.00000 ]
    : >empty.csv
    complains 2 'option --targets: there is no target in empty.csv; see zarn-moon --help' -T OLAN --targets empty.csv
    complains 2 'option --targets: a\x0Ab cannot be read: No such file or directory; see zarn-moon --help' \
        -T OLAN --targets $'a\nb'
    complains 2 'option --targets: . cannot be read: Is a directory; see zarn-moon --help' -T OLAN --targets .
}

testWrongUsage() {
    local words reason
    while IFS='|' read -r words reason; do
        eval "complains 2 \"\$reason; see zarn-moon --help\" $words"
    done <"$data/wrong-usage.txt"
    # The limits themselves.
    while read -r words; do
        eval "run 0 $words -o limit.txt"; silent
    done <"$data/limits.txt"
}

testCompletion() {
    run 0 --bash-completion; silent
    # shellcheck source=/dev/null
    . ./out.txt
    local words expected
    while IFS='|' read -r words expected; do
        IFS=' ' read -ra COMP_WORDS <<<"zarn-moon $words"
        [ "${words% }" = "$words" ] || COMP_WORDS+=('')
        COMP_CWORD=$((${#COMP_WORDS[@]} - 1)) COMPREPLY=()
        _zarn_moon 2>/dev/null  # compopt works in a real completion only
        check "$words completes to ${COMPREPLY[*]}" [ "${COMPREPLY[*]}" = "$expected" ]
    done <"$data/completions.txt"
    check "it is used" grep -qx 'complete -o default -F _zarn_moon zarn-moon' out.txt
}

testResultFiles() {
    local night=(-T OLAN -d 2026-12-24)
    run 0 "${night[@]}"; mv out.txt night.txt
    run 0 "${night[@]}" -o new.txt; check "nothing on standard output" [ ! -s out.txt ]
    check "the same" cmp new.txt night.txt
    check "permission bits follow the mask" [ "$(stat -c %a new.txt)" = 644 ]
    echo old >kept.txt; chmod 751 kept.txt; ln -s "$PWD/kept.txt" link.txt; mkdir sub; ln -s nowhere sub/link.txt
    run 0 "${night[@]}" -o link.txt; check "through a link" cmp kept.txt night.txt
    check "permission bits stay" [ "$(stat -c %a kept.txt)" = 751 ]
    run 0 "${night[@]}" -o sub/link.txt; check "through a link to nowhere" cmp sub/nowhere night.txt
    ln -s loop loop
    complains 1 'loop: Too many levels of symbolic links' -T OLAN -o loop
    complains 1 'missing/a\x0Ab: No such file or directory' -T OLAN -o $'missing/a\nb'
    complains 1 '.: Is a directory' -T OLAN -o .
    complains 1 '/dev/full: No space left on device' -T OLAN -o /dev/full
    program=limited complains 1 'kept.txt: File too large' -T OLAN -s 1 -o kept.txt
    check "a full disk keeps what was there" cmp kept.txt night.txt
    files err.txt kept.txt link.txt loop new.txt night.txt out.txt sub
    "$binary" -T OLAN >/dev/full 2>err.txt; check "full standard output" [ $? = 1 ]
    says 'zarn-moon: cannot write to standard output'
    "$binary" -T OLAN >&- 2>err.txt; check "closed standard output" [ $? = 1 ]
    says 'zarn-moon: cannot write to standard output'
    bounded -T OLAN -s 0.2 --format json 2>err.txt | head -n 1 >out.txt
    check "a reader that leaves" [ "${PIPESTATUS[0]}" = 1 ]
}

# What follows a failure of each operation on the way, and what is left: all, all but the seven
# bytes that were never written, or what was there before.
testOrderOnDisk() {
    local failing expected left calls night=(-p "1N 1E" -d 2026-12-24 -o night.txt)
    if grep -q '__[at]san_init' "$binary" || ! strace -o trace.txt true 2>/dev/null; then
        echo "no strace here, or a sanitizer, which it disturbs: the order on disk is not tried"; return
    fi
    run 0 "${night[@]}"; mv night.txt whole.txt; tail -c +8 whole.txt >rest.txt; echo before >before.txt
    while IFS='|' read -r failing expected left; do
        cp before.txt night.txt
        "$timeout" 60 strace -o trace.txt ${failing:+-e "inject=$failing"} \
            -e 'trace=/^(rt_sigprocmask|open|openat|fchmod|write|fsync|rename.*|unlink.*)$' \
            "$binary" "${night[@]}" 2>err.txt
        calls=$(sed -nE '/SIG_BLOCK, .HUP INT TERM/,$ { /^write\(2/d; s/.*SIG_(SETMASK|BLOCK).*/\1/p
            s/^(open|rename|unlink|fchmod|write|fsync)(at2?)?\(.*/\1/p }' trace.txt | tr '\n' ' ')
        check "$failing: $calls" [ "$calls" = "BLOCK open $expected SETMASK " ]
        check "$failing: what is left" cmp night.txt "$left.txt"
        files before.txt err.txt night.txt out.txt rest.txt trace.txt whole.txt
    done <<'LINES'
|fchmod write fsync rename|whole
write:error=EINTR:when=1|fchmod write write fsync rename|whole
write:retval=7:when=1|fchmod write write fsync rename|rest
fchmod:error=EPERM|fchmod unlink|before
write:error=ENOSPC:when=1|fchmod write unlink|before
fsync:error=EIO|fchmod write fsync unlink|before
/^rename:error=EACCES|fchmod write fsync rename unlink|before
LINES
}

testOrdinaryUser() {
    local user=()
    [ "$(id -u)" != 0 ] || user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
    # The build may lie where only root can go.
    cp "$binary" "$(ldd "$binary" | awk '/libZarnSysUtil/ { print $3 }')" .
    ordinary() { LD_LIBRARY_PATH=$PWD "$timeout" 60 "${user[@]}" ./zarn-moon "$@"; }
    mkdir -m 555 locked; mkdir -m 777 open; echo before >open/kept.txt; chmod 444 open/kept.txt
    program=ordinary complains 1 'locked/new.txt: Permission denied' -T OLAN -o locked/new.txt
    program=ordinary complains 1 'open/kept.txt: Permission denied' -T OLAN -o open/kept.txt
    check "what is left" [ "$(ls -A locked open; cat open/kept.txt)" = "$(printf '%s\n' locked: '' open: kept.txt before)" ]
}

testPlot() {
    mkdir empty
    PATH=empty run 1 -T OLAN --plot n.png; says 'zarn-moon: --plot needs gnuplot, which is not installed'
    # shellcheck disable=SC2016 # for no shell but a careless one
    local line reason odd='$(touch a);& <b>|#.svg.png'
    while IFS='|' read -r line reason; do
        fakeGnuplot "$line"
        PATH=$PWD/fake:$PATH complains 1 "gnuplot $reason" -T OLAN --plot n.png -o t.txt
    done <<'LINES'
printf '\n  line 3: \033 \n4' >&2; exit 1|failed: line 3: \x1B 
echo IEND; exit 3|failed: no message
printf '</svg>'|did not draw the whole picture
kill -9 $$|was killed by signal 9
LINES
    files empty err.txt fake out.txt
    fakeGnuplot 'cat >/dev/null; echo "$@ $(head -c 100000 /dev/zero | tr "\0" x) IEND"'
    drawing 0 -p "1N 1E" --targets <(seq -f "n,%g,1" 12) --plot "$odd" -o t.txt
    check "the whole picture" [ "$(wc -c <"$odd") $(head -c 20 "$odd")" = '100027 --default-settings -' ]
    files "$odd" empty err.txt fake out.txt t.txt
    command -v gnuplot >/dev/null || { echo "no gnuplot here: pictures are not tried"; return; }
    run 0 -p "42.5N 12.3E" -d 2026-12-24 --targets "$data/targets.csv" --plot "a'b.png"; silent
    check "a PNG" [ "$(head -c 4 "a'b.png" | tail -c 3)" = PNG ]
    for night in "42.5N 12.3E" "75N 25E"; do
        run 0 -p "$night" -d 2026-06-21 -t "83.8 -5.4" --plot n.svg.svg; silent
        check "an SVG" grep -q "</svg>" n.svg.svg
        for more in '' '-t "10 10"'; do
            eval "run 0 -p '$night' -d 2026-11-21 --nights 3 $more -t '83.8 -5.4' --plot n.svg"; silent
            check "an image in an SVG" grep -q "<image" n.svg
        done
    done
}

runTests
