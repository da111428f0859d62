#!/usr/bin/env bash
# Checks that built files are hardened: position-independent, with full RELRO, stack protector,
# _FORTIFY_SOURCE and checked indices.
#   hardening.sh FILE...    programs and shared libraries
set -euo pipefail
failed=0
# missing WHAT PATTERN READELF_OPTION: says so if readelf shows nothing like it.
missing() {
    readelf -W "$3" "$file" | grep -E "$2" >/dev/null && return
    echo "FAILED: $file: no $1" >&2
    failed=1
}
for file in "$@"; do
    missing PIE '^ +Type: +DYN' -h
    missing RELRO GNU_RELRO -l
    missing 'immediate binding' 'FLAGS.*\bNOW\b|BIND_NOW' -d
    missing 'stack protector' '__stack_chk_fail' --dyn-syms
    missing '_FORTIFY_SOURCE' '__[a-z]+_chk\b' --dyn-syms
    missing 'checked indices' '__glibcxx_assert_fail' --dyn-syms
done
[ "$failed" = 0 ] && echo "hardened: $# files"
exit "$failed"
