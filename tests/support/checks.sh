# For test scripts of the programs: runs the one and counts checks. The script sets `program`.
# shellcheck shell=bash
work=$(mktemp -d "${TMPDIR:-/tmp}/zarnsys-test-XXXXXX")
trap 'cd /; rm -rf "$work"' EXIT
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
silent() { check "unexpected messages" [ ! -s err.txt ]; }
has() { check "$1 is missing" [ -e "$1" ]; }
hasNot() { check "$1 is there" [ ! -e "$1" ]; }

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
