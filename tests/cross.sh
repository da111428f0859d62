#!/usr/bin/env bash
# Builds for arm64 with the commands of the page for those who do.
#   cross.sh
# As root, on a bare Debian to throw away: it installs packages of another architecture.
set -euo pipefail
project=$(dirname "$(dirname "$(realpath "$0")")")
# shellcheck source-path=SCRIPTDIR
. "$project/tests/support/pages.sh"
work=$(mktemp -d "${TMPDIR:-/tmp}/zarnsys-cross-XXXXXX")
trap 'rm -rf "$work"' EXIT
die() { echo "FAILED: $*" >&2; exit 1; }

echo 'APT::Get::Assume-Yes "true";' >"$work/apt.conf"
export APT_CONFIG=$work/apt.conf DEBIAN_FRONTEND=noninteractive
cp -r "$project" "$work/project"  # no build of another compiler
cd "$work/project"
rm -rf build
for block in "$(commands support.md 'dpkg --add-architecture')" "$(commands support.md 'cmake --preset')"; do
    bash -exc "$block" >"$work/log" 2>&1 || die "$(tail -n 30 "$work/log")"
done
for file in libZarnSysUtil.so programs/zarn-ingest/zarn-ingest programs/zarn-moon/zarn-moon; do
    readelf -h "build/release/$file" | grep -q 'Machine: *AArch64' || die "not built for arm64: $file"
done
echo "built for arm64: the library and both programs"
