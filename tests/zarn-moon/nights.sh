#!/usr/bin/env bash
# Tests of zarn-moon.
#   nights.sh PROGRAM
set -u
binary=$(realpath "$1") timeout=$(command -v timeout)
# shellcheck disable=SC2034 # for checks.sh
program=bounded
bounded() { "$timeout" 60 "$binary" "$@"; }
homeless() { env -u HOME -u XDG_CONFIG_HOME -u TZ "$timeout" 60 "$binary" "$@"; }
limited() { (ulimit -f 1; bounded "$@"); }  # to files of one block
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/../support/checks.sh"
export XDG_CONFIG_HOME=/nowhere  # no sites of the user's own

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
    for name in completions gnuplot limits order outputs picture-parts sites telescopes wrong-{sites,standard-input,targets,usage}; do has "$data/$name.txt"; done
}

testWholeOutputs() {
    local name forms words form before after
    fakeGnuplot 'cat >script; echo "IEND or </svg>"'
    while IFS='|' read -r name forms words; do
        eval "words=($words)"
        for form in $forms; do
            case $form in
            png | svg) TZ=XYZ-2:30 drawing 0 "${words[@]}" --plot "$name.$form"; golden "$name.$form.gnuplot" script ;;
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
    check "polar day is said" grep -qx 'The sun stays up all day.' out.txt
    run 0 -p "88N 25E" -d 2026-12-21
    check "no twilight" grep -qx 'The sun stays below the horizon all day, without twilight.' out.txt
    run 0 -p "60N 25E" -d 2026-06-21 -s 720 -p "60N 100E"
    check "a step beyond the night" [ "$(tail -n 1 out.txt)" = 'No step falls between sunset and sunrise: no table.' ]
    drawing 0 -p "75N 25E" -d 2026-06-21 --plot day.svg
    # A point each four minutes of 24 hours, and one colour.
    check "the whole day is drawn" [ "$(grep -c '^[0-9]' script) $(grep -c rectangle script)" = '361 1' ]
    run 0 -p "75N 0E" -d 2026-12-21 -s 60 --format csv
    check "a night without sunset lasts a day, from noon to noon" [ "$(wc -l <out.txt)" = 26 ]
    # 15:24 to 6:53 and 16:02 to 6:14 UT: each other of 15 hours, each of 14, with that of a clock 2 h ahead,
    # from 20:00 UT on 2:30 h behind.
    for latitude in 38 22; do
        TZ='XYZ-2ABC2:30,J354/22,J300' drawing 0 -p "${latitude}N 12.3E" -d 2026-12-20 --local --plot night.svg
        grep -E 'xtics|xlabel' script
    done >axes
    check "the axis has local times" diff axes "$data/local-axis.txt"
    while IFS=';' read -r words shown expected; do
        eval "drawing 0 -p '60N 25E' -d 2026-11-20 $words --plot part.svg"
        check "$words: $shown: $(grep -ohE "$shown" script out.txt | xargs)" \
            [ "$(grep -ohE "$shown" script out.txt | xargs)" = "$expected" ]
    done <"$data/picture-parts.txt"
    complains 1 'there is no dark or best window: a calendar needs one event at least' -p "69N 20E" -d 2026-06-01 --format ics
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
    done <"$data/telescopes.txt"
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
    run 0 -T OLAN --targets - --mjd 61000 --format csv <<<$'\n RA ;DEC;name;weight\n2;3;a;\n'
    check "standard input's target" [ "$(tail -n 1 out.txt | cut -d, -f 10-12,19-)" = a,2.00000,3.00000, ]
    while IFS='|' read -r line reason; do
        complains 2 "standard input:2: $reason; see zarn-moon --help" -T OLAN --targets - <<<"${line/+/$'\n'}"
    done <"$data/wrong-standard-input.txt"
    complains 2 'option --targets: standard input cannot be read: Is a directory; see zarn-moon --help' -T OLAN --targets - <.
    printf 'caf\xe9 \xc3\xa9\xff,1,2' >latin.csv
    run 0 -T OLAN --targets latin.csv --mjd 61000 --format csv
    check "UTF-8 throughout" [ "$(tail -n 1 out.txt | cut -d, -f 10)" = $'caf\xef\xbf\xbd \xc3\xa9\xef\xbf\xbd' ]
    : >empty.csv
    complains 2 'option --targets: there is no target in empty.csv; see zarn-moon --help' -T OLAN --targets empty.csv
    complains 2 'option --targets: a\x0Ab cannot be read: No such file or directory; see zarn-moon --help' \
        -T OLAN --targets $'a\nb'
    complains 2 'option --targets: . cannot be read: Is a directory; see zarn-moon --help' -T OLAN --targets .
}

testSites() {
    local content problem sample=$data/../../../programs/zarn-moon/deploy/sites.ini
    run 0 --sites "$sample" --sites "$sample" --list-sites; silent
    check "sites are listed" diff - out.txt <<<$'hill\t43.2100N 8.4750E, 1240 m\nisland\t17.2500S 31.5000W'
    TZ=XYZ-2:30 golden site.table <(TZ=XYZ-2:30 bounded --sites "$sample" --site HILL -d 2026-12-20 -s 240 -t "83.8 -5.4" --local)
    run 0 --sites "$sample" --site hill --mjd 61000 -t "1 2" --format json
    check "what is known of a site" [ "$(sed -n '3,12p' out.txt | tr -d ' \n')" = \
        '"name":"hill","latitude_deg":43.21,"longitude_west_deg":-8.475,"elevation_m":1240.0,"horizon_deg":12.0,"timezone":"CET-1CEST,M3.5.0,M10.5.0/3"},"ephemeris":"erfa","extinction":0.16,"dark_sky_mag":21.6,' ]
    run 0 --site hill --sites "$sample" --mjd 61000 -t "1 2" --format json -k 0.3 --dark-sky 20
    check "options come first" [ "$(sed -n '11,12p' out.txt | tr -d ' \n')" = '"extinction":0.3,"dark_sky_mag":20.0,' ]
    # The user's file; a site in the first file hides another one as a whole; capitals.
    mkdir -p home/.config/zarnsys xdg/zarnsys
    printf '[hill]\nlatitude=1N\nlongitude=2E\n[Vale]\nlatitude=3N\nlongitude=2E\n' >home/.config/zarnsys/sites.ini
    printf '[mine]\nlatitude=5N\nlongitude=2E\n' >xdg/zarnsys/sites.ini
    while IFS='|' read -r words problem; do
        eval "HOME=\$PWD/home XDG_CONFIG_HOME= run 0 --mjd 61000 $words"
        check "$words: $(head -n 1 out.txt)" grep -qF "UT at $problem" out.txt
    done <"$data/sites.txt"
    HOME=$PWD/home XDG_CONFIG_HOME=$PWD/xdg run 0 --site mine --mjd 61000
    HOME=$PWD/home XDG_CONFIG_HOME=xdg run 0 --site hill --mjd 61000
    complains 2 "option --site: \"x\" is not a site of /nowhere/zarnsys/sites.ini or /etc/zarnsys/sites.ini; see zarn-moon --help" \
        --site x
    program=homeless complains 2 'option --site: "x" is not a site of /etc/zarnsys/sites.ini; see zarn-moon --help' --site x
    program=homeless run 0 -T OLAN --mjd 61000 --local
    [ -e /etc/zarnsys/sites.ini ] || { run 0 --list-sites; says 'there are no sites yet'; }
    complains 2 'no.ini: cannot be read: No such file or directory; see zarn-moon --help' --sites no.ini --list-sites
    complains 2 '.: is not a regular file; see zarn-moon --help' --sites . --site x
    while IFS='|' read -r content problem; do
        printf '%b\n' "$content" >bad.ini
        complains 2 "bad.ini$problem; see zarn-moon --help" --sites bad.ini --list-sites
    done <"$data/wrong-sites.txt"
}

testWrongUsage() {
    local words reason name
    while IFS='|' read -r words reason; do
        eval "complains 2 \"\$reason; see zarn-moon --help\" $words"
    done <"$data/wrong-usage.txt"
    run 2 -T OLAN --no-such-option; says 'no-such-option is not a valid option'
    # Only --local looks at the time zone.
    for name in Europe/Romee XYZ XYZ-2:30x XYZ-2ABC,M1.1.1 ../zoneinfo "$(printf 'X%.0s' {1..100})2"; do
        TZ=$name run 0 -T OLAN --mjd 61000
        TZ=$name complains 2 "--local: TZ, \"$name\", is not a time zone of this system's tz database, or one such as XYZ-2:30; see zarn-moon --help" \
            -T OLAN --local
    done
    mkdir -p zones/Here; printf 'TZif2' >zones/Here/There; echo no zone >zones/Here/Else
    for name in '' UTC :UTC '<+0230>-2:30' NST3:30NDT,M3.2.0,M11.1.0 ABC12DEF,J60,300/-1 ABC2DEF "$(printf 'X%.0s' {1..99})2" Here/There "$PWD/zones/Here/There"; do
        TZDIR=$PWD/zones TZ=$name run 0 -T OLAN --mjd 61000 --local
    done
    TZDIR=$PWD/zones TZ=Here/Else run 2 -T OLAN --mjd 61000 --local
    # The limits themselves.
    while read -r words; do
        eval "run 0 $words -o limit.txt"; silent
        [[ $words != *-t\ * ]] || check "a window: $words" grep -q 'best window' limit.txt
    done <"$data/limits.txt"
}

testCompletion() {
    run 0 --bash-completion; silent
    # shellcheck source=/dev/null
    . ./out.txt
    # shellcheck disable=SC2317 # the completion calls it
    zarn-moon() { printf 'hill\ta hill\nisland\tan island\n'; }
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
    run 0 "${night[@]}" -o -; check "standard output as -" cmp out.txt night.txt
    run 0 "${night[@]}" --out=-x; check "a name with a dash" cmp ./-x night.txt; rm ./-x
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
    check "a reader that leaves, after $(wc -l <out.txt) line" [ "${PIPESTATUS[0]} $(wc -l <out.txt)" = '141 1' ]
    env --block-signal=PIPE "$binary" -T OLAN -s 0.2 --format json 2>err.txt | head -n 1 >out.txt
    check "the same, while SIGPIPE is blocked" [ "${PIPESTATUS[0]}" = 141 ]
    silent
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
    done <"$data/order.txt"
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
    mkdir -p empty/gnuplot
    PATH=empty run 1 -T OLAN --plot n.png; says 'zarn-moon: gnuplot: Permission denied'
    PATH=nowhere run 1 -T OLAN --plot n.png; says 'zarn-moon: --plot needs gnuplot, which is not installed'
    # shellcheck disable=SC2016 # for no shell but a careless one
    local line reason odd='$(touch a);& <b>|#.svg.png'
    while IFS='|' read -r line reason; do
        fakeGnuplot "$line"
        PATH=$PWD/fake:$PATH complains 1 "gnuplot $reason" -T OLAN --plot n.png -o t.txt
    done <"$data/gnuplot.txt"
    files empty err.txt fake out.txt
    fakeGnuplot 'cat >/dev/null; echo "$@ $(head -c 100000 /dev/zero | tr "\0" x) IEND"'
    PATH=$PWD/fake:$PATH check "a parent ignored SIGCHLD" env --ignore-signal=CHLD "$binary" -o t.txt -p "1N 1E" --plot "$odd"
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
            eval "run 0 -p '$night' -d 2026-06-21 --nights 3 $more -t '83.8 -5.4' --plot n.svg"; silent
            check "an image in an SVG" grep -q "<image" n.svg
        done
    done
}

runTests
