#!/usr/bin/env bash
# Runs an example in a directory of its own: it must end with status 0, print what is expected and
# leave nothing behind.
#   example.sh EXPECTED PROGRAM [ARGUMENT...]    EXPECTED: extended regular expression, whole output
set -euo pipefail
expected=$1
shift
work=$(mktemp -d "${TMPDIR:-/tmp}/zarnsys-example-XXXXXX")
trap 'cd /; rm -rf "$work"' EXIT
cd "$work"
die() { echo "FAILED: $*" >&2; exit 1; }

output=$("$@") || die "exit status $?"
printf '%s\n' "$output"
[[ $output =~ ^${expected}$ ]] || die "expected: $expected"
[ -z "$(ls -A)" ] || die "left behind: $(ls -A)"
