# For test scripts that run what a page prints, on a bare Debian to throw away. They work in $work.
# shellcheck shell=bash
project=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../..")
work=$(mktemp -d "${TMPDIR:-/tmp}/zarnsys-test-XXXXXX")
trap 'cd /; rm -rf "$work"' EXIT
cd "$work" || exit 1
echo 'APT::Get::Assume-Yes "true";' >apt.conf
export APT_CONFIG=$work/apt.conf DEBIAN_FRONTEND=noninteractive
die() { echo "FAILED: $*" >&2; exit 1; }
# commands PAGE BEGINNING: the block of commands below docs/ that begins so.
commands() {
    awk -v beginning="$2" '
        /^ *```/ { if (found) exit; inside = !inside && /```sh$/; first = inside; next }
        inside { sub(/^ */, ""); if (first) found = index($0, beginning) == 1; first = 0; if (found) print }
    ' "$project/docs/$1" | grep .
}
