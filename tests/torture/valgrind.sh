#!/usr/bin/env bash
# Runs the test programs, and the programs in their shell tests, under valgrind. What it reports goes to
# standard error; the last line is the sum. Tests that fail since all takes longer are no matter here.
#   valgrind.sh BUILD_DIRECTORY
set -euo pipefail
build=$(realpath "$1")
valgrind=$(command -v valgrind) || { echo "valgrind.sh: needs valgrind" >&2; exit 1; }
tests=$(realpath "$(dirname "$0")/..")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" && mkdir logs programs
chmod a+x . && chmod a+w logs  # some tests run as an ordinary user
# Commands that run a program with a log of its own.
for program in "$build"/tests/*Test "$build"/programs/zarn-{ingest/zarn-ingest,moon/zarn-moon}; do
    cat >"programs/$(basename "$program")" <<EOF
#!/bin/bash
exec $valgrind -q --vgdb=no --leak-check=full --errors-for-leak-kinds=definite --show-leak-kinds=definite \
    --log-file='$work/logs/'\$\$-\$EPOCHREALTIME '$program' "\$@"
EOF
done
chmod +x programs/*
for test in programs/*Test; do "$test" >/dev/null || true; done
# during SCRIPT ARGUMENT...: not for ever, as a slow service can miss what a test waits for.
during() { timeout 1200 "$tests/$1" "${@:2}" || true; }
during zarn-moon/nights.sh "$work/programs/zarn-moon"
for name in files service desk accidents; do
    during zarn-ingest/$name.sh "$work/programs/zarn-ingest" "$tests/../examples/headers"
done
during zarn-ingest/batch.sh "$work/programs/zarn-ingest" "$tests/../examples"
during zarn-ingest/moon.sh "$work/programs/zarn-ingest"
# A report begins with ==. A log of other things belongs to a program whose standard output was closed; one
# of an assertion to valgrind, which fails by itself where a test limits its descriptors.
mapfile -t reports < <(grep -laE '^==[0-9]+==' logs/* | xargs -r grep -La '^valgrind: m_')
[ ${#reports[@]} = 0 ] || cat "${reports[@]}" >&2
echo "$(find logs -type f | wc -l) runs under valgrind, ${#reports[@]} with reports"
[ ${#reports[@]} = 0 ]
