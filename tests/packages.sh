#!/usr/bin/env bash
# Works with installed packages as their users would: with the programs, whose packages must be
# enough for them, then with the library from outside; at the end nothing may be left.
#   packages.sh DIRECTORY_OF_PACKAGES
# As root, on a bare Debian to throw away: it installs and removes packages.
set -euo pipefail
packages=$(realpath "$1")
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/support/pages.sh"
install() {
    apt-get install --no-install-recommends "$@" >log 2>&1 || die "cannot install: $(cat log)"
}
# page BEGINNING: runs the commands that the operator's page has.
page() { bash -exc "$(commands operating.md "$1")" >"$work/log" 2>&1 || die "the page's commands: $(cat "$work/log")"; }

install "$packages"/libzarnsysutil0_*.deb "$packages"/zarn-tools_*.deb jq  # jq is what the examples need
! dpkg -l '*-dev' 2>/dev/null | grep '^ii' || die "with these, it does not show whether the programs need them"
for test in zarn-ingest/files zarn-ingest/moon zarn-ingest/service zarn-moon/nights; do
    "$project/tests/$test.sh" "/usr/bin/${test%/*}" "$project/examples/headers" >log 2>&1 || die "$test: $(cat log)"
    echo "$test: $(tail -n 1 log)"
done

(cd "$packages" && page 'apt install')
[ "$(stat -c '%U %G %a' /var/lib/zarn-ingest/incoming)" = 'zarn-ingest zarn-delivery 2775' ] ||
    die "the incoming directory: $(ls -ld /var/lib/zarn-ingest/incoming)"
id -nG zarn-ingest | grep -qw zarn-delivery || die "the service is not in the group of those who deliver"
[ "$(systemctl --root=/ is-enabled zarn-ingest)" = disabled ] || die "the unit is missing, or enabled"
systemd-analyze verify --man=no zarn-ingest.service >log 2>&1 || die "the unit: $(cat log)"
export SYSTEMD_OFFLINE=1  # systemctl starts and stops nothing, and succeeds
page 'cp /usr/share/doc'
page 'systemctl stop'
echo "service: $(systemd-analyze security --offline=yes zarn-ingest.service | tail -n 1)"

install "$packages"/python3-zarnsys_*.deb
altitude='import zarnsys; print(round(float(zarnsys.moon(51544.5, zarnsys.Site(0, 0)).altitude), 2))'
[ "$(/usr/bin/python3 -c "$altitude")" = 30.55 ] || die "the Python module does not work"
echo "Python module: works"

install "$packages"/libzarnsysutil-dev_*.deb "$packages"/zarnsysutil-doc_*.deb cmake g++ make liberfa-dev
"$project/tests/hardening.sh" /usr/bin/zarn-{ingest,moon} /usr/lib/*/libZarnSysUtil.so.0 || die "not hardened"
cp -r "$project/tests/install" consumer
{ cmake -S consumer -B cmake && cmake --build cmake; } >log 2>&1 || die "CMake: $(cat log)"
cmake/consumer 2>/dev/null || die "the consumer built by CMake does not work"
# shellcheck disable=SC2046 # flags are words
g++ -std=c++17 consumer/main.cpp -o by-pkg-config $(pkg-config --cflags --libs zarnsysutil)
./by-pkg-config 2>/dev/null || die "the consumer built by pkg-config does not work"
for example in /usr/share/doc/zarnsysutil-doc/examples/*.cpp; do
    # shellcheck disable=SC2046
    g++ -std=c++17 "$example" -o example $(pkg-config --cflags --libs zarnsysutil erfa) || die "$example"
done
echo "consumers: built by CMake and by pkg-config"

documents=/usr/share/doc/zarnsysutil-doc
find "$documents" -name '*.md' | while read -r page; do
    { grep -oE '\]\([^):# ]+[)#]' "$page" || true; } | sed -E "s|^..(.*).$|$(dirname "$page")/\1|"
done | sort -u >links
[ -s links ] || die "no links in the pages"
xargs ls -d <links >log 2>&1 || die "links: $(grep cannot log)"
[ -s "$documents/html/index.html" ] || die "no reference"
echo "pages: $(wc -l <links) links"

rm /etc/zarn-ingest.ini  # it is the operator's
apt-get purge libzarnsysutil0 libzarnsysutil-dev python3-zarnsys zarn-tools zarn-ingest-service zarnsysutil-doc >log 2>&1 || die "$(cat log)"
left=$(find /etc /usr/bin /usr/include /usr/lib /usr/share /var/lib/dpkg -iname '*zarn*')
[ -z "$left" ] || die "left after removal: $left"
echo "removed: nothing is left"
