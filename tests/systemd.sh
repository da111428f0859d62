#!/usr/bin/env bash
# Boots a Debian of its own, with systemd, and lets it run the packaged service: started, hung up, with
# wrong settings, upgraded, removed.
#   systemd.sh DIRECTORY_OF_PACKAGES [SUITE]    bookworm unless given
# As root. The Debian lies in a directory of its own, which is removed at the end.
set -euo pipefail
packages=$(realpath "$1") suite=${2:-bookworm} project=$(dirname "$(dirname "$(realpath "$0")")")
work=$(mktemp -d "${TMPDIR:-/var/tmp}/zarnsys-systemd-XXXXXX")
trap 'rm -rf --one-file-system "$work"' EXIT
root=$work/root
"$project/script/debian-root" "$root" amd64 "$suite" systemd,systemd-sysv,dbus,adduser
mkdir "$root/packages"
cp "$packages"/{libzarnsysutil0,zarn-tools,zarn-ingest-service}_*.deb "$root/packages"
cp "$project/examples/headers/imager.hdr" "$root/root"

# The same, as the next version.
mkdir "$root/next"
for package in "$root"/packages/*.deb; do
    dpkg-deb -R "$package" "$work/content"
    sed -i -E 's/^Version: .*/&+1/; s/(zarn[a-z0-9-]* \(= [^)]*)\)/\1+1)/g' "$work/content/DEBIAN/control"
    dpkg-deb -b "$work/content" "$root/next" >/dev/null
    rm -r "$work/content"
done

cat >"$root/root/steps" <<'STEPS'
set -Eeuxo pipefail
export DEBIAN_FRONTEND=noninteractive
trap 'systemctl --no-pager status zarn-ingest; ls -l /var/lib/zarn-ingest/*; zarn-ingest --status /etc/zarn-ingest.ini' ERR
within() { timeout "$1" bash -c "$(declare -f is); until $2; do sleep 0.1; done"; }
is() { [ "$(systemctl show -p "$1" --value zarn-ingest)" = "$2" ]; }
arrives() {
    # shellcheck disable=SC2016 # for the inner shell
    runuser -u writer -- sh -c 'umask 007; cd /var/lib/zarn-ingest/incoming; cat >.new; mv .new "$0.hdr"' "$1" \
        </root/imager.hdr
    within 30 "[ -e /var/lib/zarn-ingest/fits/$1.fits ]"
}
apt-get update
apt-get install -y --no-install-recommends /packages/*.deb
is UnitFileState disabled; is ActiveState inactive
sed -e 's/^#poll = .*/poll = 1/; s/^#settle = .*/settle = 0/' \
    /usr/share/doc/zarn-tools/examples/zarn-ingest.ini >/etc/zarn-ingest.ini
systemctl enable --now zarn-ingest
adduser --disabled-password --gecos '' writer; adduser writer zarn-delivery
arrives a
# A hang-up at any moment begins the service anew.
mkdir /run/systemd/system/zarn-ingest.service.d
printf '[Service]\nRestartSec=0\n' >/run/systemd/system/zarn-ingest.service.d/soon.conf
systemctl daemon-reload
for pause in 0 0.01 0.02 0.05 0.1 1; do
    systemctl reset-failed zarn-ingest  # a limit of starts counts them
    systemctl restart zarn-ingest; sleep "$pause"; systemctl kill -s HUP zarn-ingest
    within 10 'is NRestarts 1 && is ActiveState active'
done
arrives b
kill -KILL "$(systemctl show -p MainPID --value zarn-ingest)"
arrives c
# Wrong settings are not tried again and again.
sed -i.right 's/^poll = .*/poll = x/' /etc/zarn-ingest.ini
systemctl restart zarn-ingest
within 10 'is ActiveState failed'; is ExecMainStatus 2; is NRestarts 0
mv /etc/zarn-ingest.ini.right /etc/zarn-ingest.ini
systemctl start zarn-ingest
# An upgrade restarts it, without a person; removal ends it, and leaves data alone.
before=$(systemctl show -p MainPID --value zarn-ingest)
apt-get install -y --no-install-recommends /next/*.deb
is ActiveState active; ! is MainPID "$before"; is NeedDaemonReload no
arrives d
zarn-ingest -p /etc/zarn-ingest.ini --status
zarn-ingest -p /etc/zarn-ingest.ini --verify
apt-get purge -y zarn-ingest-service zarn-tools
! is ActiveState active
[ "$(ls /var/lib/zarn-ingest/fits)" = $'a.fits\nb.fits\nc.fits\nd.fits' ]
# An upgrade of one that was stopped leaves it stopped.
apt-get install -y --no-install-recommends --allow-downgrades /packages/*.deb
apt-get install -y --no-install-recommends /next/*.deb
is ActiveState inactive
echo passed
STEPS
cat >"$root/etc/systemd/system/steps.service" <<'UNIT'
[Service]
Type=oneshot
ExecStart=/bin/bash /root/steps
ExecStopPost=/bin/systemctl poweroff --force
StandardOutput=file:/root/log
StandardError=inherit
[Install]
WantedBy=multi-user.target
UNIT
ln -s ../steps.service "$root/etc/systemd/system/multi-user.target.wants/steps.service"

# shellcheck disable=SC2016 # for the inner shell
timeout 600 unshare --pid --fork --mount --uts --ipc --cgroup --kill-child bash -c '
    mount --bind "$0" "$0" && mount -t proc proc "$0/proc" && mount -t sysfs sysfs "$0/sys" && mount -t cgroup2 cgroup2 "$0/sys/fs/cgroup" &&
    mount -t tmpfs tmpfs "$0/run" && exec env -i container=other "PATH=$PATH" chroot "$0" /lib/systemd/systemd' "$root" \
    >"$work/boot" 2>&1 || true
[ "$(tail -n 1 "$root/root/log" 2>/dev/null)" = passed ] ||
    { tail -n 40 "$root/root/log" "$work/boot" >&2; exit 1; }
echo "systemd $(chroot "$root" systemctl --version | sed -n '1s/[^ ]* //p'): the service did as it should"
