# For test scripts that run what a page prints.
# shellcheck shell=bash
# commands PAGE BEGINNING: the block of commands below docs/ that begins so.
commands() {
    awk -v beginning="$2" '
        /^ *```/ { if (found) exit; inside = !inside && /```sh$/; first = inside; next }
        inside { sub(/^ */, ""); if (first) found = index($0, beginning) == 1; first = 0; if (found) print }
    ' "$(dirname "${BASH_SOURCE[0]}")/../../docs/$1" | grep .
}
