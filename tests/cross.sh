#!/usr/bin/env bash
# Builds for arm64 with the commands of the page for those who do.
#   cross.sh
# As root, on a bare Debian to throw away: it installs packages of another architecture.
set -euo pipefail
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/support/pages.sh"
cp -r "$project" project  # no build of another compiler
cd project
rm -rf build
for block in "$(commands support.md 'dpkg --add-architecture')" "$(commands support.md 'cmake --preset')"; do
    bash -exc "$block" >"$work/log" 2>&1 || die "$(tail -n 30 "$work/log")"
done
for file in libZarnSysUtil.so programs/zarn-ingest/zarn-ingest programs/zarn-moon/zarn-moon; do
    readelf -h "build/release/$file" | grep -q 'Machine: *AArch64' || die "not built for arm64: $file"
done
echo "built for arm64: the library and both programs"
