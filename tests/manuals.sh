#!/usr/bin/env bash
# The manual pages describe the options that the programs have,
# with their defaults and the words that they choose from.
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
    while IFS=$'\t' read -r option words; do
        paragraph=$(sed -n "/^\.It .*Fl -$option\b/,/^\.\(It\|El\)/p" "$manuals/$name.1" | sed '$d')
        for word in $words; do
            grep -qwF -- "$word" <<<"$paragraph" || { echo "$name --$option: no $word in the manual"; status=1; }
        done
    done < <("$program" --help | awk -v OFS='\t' '
        /^--/ { option = substr($1, 3) }
        /^--.*\|/ { words = $NF; gsub(/[<>]/, "", words); gsub(/\|/, " ", words); print option, words }
        /^\tDefault value: [^.]/ { sub(/^\tDefault value: /, ""); print option, $0 }')
done
exit $status
