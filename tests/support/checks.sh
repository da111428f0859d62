# For test scripts of the programs: runs the one and counts checks, in a directory that is removed at the
# end. The script sets `program`.
# shellcheck shell=bash
export LC_ALL=C  # the order of ls and sort, whatever the user's language
# shellcheck disable=SC2034 # for the scripts
data=$(realpath "$(dirname "$0")/../data/$(basename "$(dirname "$(realpath "$0")")")")
work=$(mktemp -d "${TMPDIR:-/tmp}/zarnsys-test-XXXXXX")
trap 'cd /; jobs -p | xargs -r kill -KILL 2>/dev/null; rm -rf "$work"' EXIT
chmod 755 "$work"
passed=0 failed=0

# run STATUS ARGUMENT...: runs the program here, keeps its output, checks its exit status.
run() {
    local expected=$1 status
    shift
    "$program" "$@" >out.txt 2>err.txt
    status=$?
    check "exit status $status instead of $expected of: $*" [ "$status" = "$expected" ]
}
# check WHAT COMMAND...: counts; on failure says what is wrong.
check() {
    local what=$1
    shift
    if "$@"; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        echo "FAILED in $current: $what"
        sed 's/^/    stderr: /' err.txt
    fi
}
says() { check "no such message: $1" grep -qF -- "$1" err.txt; }
# plain FILE...: what a program said, without what differs from run to run, and CFITSIO's own words.
plain() {
    sed -E "s/^[-0-9]+ [0-9:.]+ ([A-Z]+) +\[ [0-9]+ \]/\1/; s/$(date +%Y)-[0-9T:.-]+/TIME/; s/ in [0-9.]+ s//; s/(CFITSIO status [0-9]+): [^)]*/\1/
        s/(unix_time\":|^[a-z_]*stamp_seconds.* )[0-9.]+/\1SECONDS/
        s/(free_mib\":|free space [^ ]* *|^zarn_ingest_free_bytes.* )[0-9]+/\1ROOM/
        s/(waiting_seconds\":|oldest for |^[a-z_]*waiting_seconds.* )[0-9]+( s)?/\1AGE/" "$@"
}
# told <<EXPECTED: all messages.
told() { check "other messages" diff - <(plain err.txt); }
# transcript FILE: runs the program with the words of each line that begins with "> ". The lines
# below are all that it says, and its exit status unless that is 0.
transcript() {
    local line words status
    while IFS= read -r line; do
        [[ $line = '> '* ]] || continue
        eval "words=(${line#> })"
        "$program" "${words[@]}" </dev/null >out.txt 2>err.txt
        status=$?
        echo "$line"
        plain out.txt err.txt
        [ $status = 0 ] || echo "[$status]"
    done <"$1" >transcript.txt
    : >err.txt
    check "$(diff "$1" transcript.txt)" cmp -s "$1" transcript.txt
}
silent() { check "unexpected messages" [ ! -s err.txt ]; }
has() { check "$1 is missing" [ -e "$1" ]; }
hasNot() { check "$1 is there" [ ! -e "$1" ]; }
# waitFor CONDITION...: as long as anything happens in this directory, and 20 seconds beyond.
waitFor() {
    local before='' now tries=0 deadline=$((SECONDS + 20))
    until "$@"; do
        if (((tries += 1) % 50 == 0)); then
            now=$(find . -printf '%p %s %T@\n' 2>/dev/null | cksum)
            [ "$now" = "$before" ] || deadline=$((SECONDS + 20))
            before=$now
        fi
        [ $SECONDS -lt $deadline ] || { check "never came true: $*" false; return; }
        sleep 0.01
    done
}
# begun DIRECTORY: something is there, if only a working directory.
begun() { [ -n "$(ls -A "$1" 2>/dev/null)" ]; }
# isSanitized: whether the program makes system calls of the sanitizers, which count like its own.
isSanitized() { grep -qa __asan_init "$program"; }
needsTracing() {
    # The leak sanitizer does not work in a process that is traced.
    export ASAN_OPTIONS=${ASAN_OPTIONS:+$ASAN_OPTIONS:}detect_leaks=0
    strace -o /dev/null true 2>/dev/null && return
    echo "skipped: $current: needs strace, and a kernel that lets it trace"
    return 1
}
gone() { ! kill -0 "$1" 2>/dev/null; }
# ended STATUS PROCESS: waits for a child and checks how it ended.
ended() {
    local status
    waitFor gone "$2"
    gone "$2" || kill -KILL "$2"
    wait "$2"
    status=$?
    check "exit status $status instead of $1" [ "$status" = "$1" ]
}

# Runs every function whose name begins with test, each in a directory of its own.
runTests() {
    for current in $(declare -F | sed -n 's/^declare -f \(test.*\)/\1/p'); do
        mkdir "$work/$current" && cd "$work/$current" && : >err.txt
        umask 022
        "$current"
    done
    echo "$passed passed, $failed failed"
    [ "$failed" = 0 ]
}
