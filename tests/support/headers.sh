# For test scripts of zarn-ingest: headers to convert and results to look at.
# shellcheck shell=bash
# No file of ours but the named ones; temporary ones start with a dot.
only() { check "other files than: $*" [ "$(ls -A out)" = "$(printf '%s\n' "$@" | sort)" ]; }
cards() { fold -w 80 "$1" | sed 's/ *$//' | sed '/^END$/q'; }
# header FILE CARD...: a header of the three first cards and the given ones.
header() {
    local file=$1
    shift
    printf '%s\n' 'SIMPLE  =                    T' 'BITPIX  =                    8' \
        'NAXIS   =                    0' "$@" >"$file"
}
