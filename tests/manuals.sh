#!/usr/bin/env bash
# The manual pages describe the options that the programs have.
#   manuals.sh MANUAL_DIR PROGRAM...
set -u
manuals=$(realpath "$1")
shift
status=0
for program in "$@"; do
    name=$(basename "$program")
    options=$("$program" --help | sed -n 's/^--\([a-z0-9-]*\).*/\1/p' | sort -u)
    described=$(sed -n 's/^\.It .*Fl -\([a-z0-9-]*\).*/\1/p' "$manuals/$name.1")
    [ -n "$options" ] || { echo "$name: no options"; status=1; }
    diff <(echo "$options") <(sort <<<"$described") || { echo "$name: help (<) and manual (>) differ"; status=1; }
done
exit $status
