#!/usr/bin/env bash
# Tries the Debian package on a bare Debian 12: installs it, runs it, purges it, and lists the files that it left behind.
# Needs root and about 1.5 GB in the temporary folder.
# Usage: scripts/check-package.sh PACKAGE.deb [DEBIAN_FOLDER]
# DEBIAN_FOLDER contains a bare Debian 12 from an earlier run, or receives one for later runs.
set -euo pipefail

fail() {
    echo "${0##*/}: $*" >&2
    exit 1
}

[ $# -ge 1 ] || fail "which package is to be checked?"
[ "$(id -u)" -eq 0 ] || fail "only root can install a system to check a package on."
package=$(realpath "$1")
"$(dirname "$0")/setup.sh" package
work=$(mktemp -d)
clean_up() {
    if mountpoint -q "$work/system/proc"; then umount "$work/system/proc"; fi
    rm -rf --one-file-system "$work"
}
trap clean_up EXIT
bare=${2:-$work/bare}
system=$work/system

# Uses the mirror and the proxy of this system.
mirror=$(apt-get indextargets --format '$(SITE)' 'Created-By: Packages' 'Codename: bookworm' | head -n 1)
if [ ! -d "$bare" ]; then
    mkdir -p "${bare%/*}"
    debootstrap --variant=minbase bookworm "$bare" "$mirror" >"$work/debootstrap.log" 2>&1 ||
        { cat "$work/debootstrap.log" >&2 && fail "Debian could not be installed."; }
fi
cp -a "$bare" "$system"
mount -t proc proc "$system/proc"
cp /etc/resolv.conf "$system/etc/resolv.conf"
apt-config dump | grep -iE '^Acquire::(https?|ForceIPv4)' >"$system/etc/apt/apt.conf.d/99mirror" || true

inside() {
    chroot "$system" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 \
        DEBIAN_FRONTEND=noninteractive "$@"
}
quietly() {
    inside "$@" >"$work/step.log" 2>&1 || { cat "$work/step.log" >&2 && fail "\"$*\" failed."; }
}
files() {
    (cd "$system" && find . -xdev \( -path ./proc -o -path ./var/cache/apt -o -path ./var/lib/apt \) -prune -o -print |
        sort)
}

quietly apt-get update
files >"$work/before"
cp "$package" "$system/root/"
quietly apt-get install -y "/root/${package##*/}"
dpkg-deb --info "$package" | grep -E '^ (Package|Version|Depends|Installed-Size):'

inside orvane-cli --version
inside orvane --version
inside orvane-cli run --seconds 5 --meters text | tail -n 3
inside sh -c 'ORVANE_DRIVERS=virtual timeout --preserve-status -s TERM 5 \
    env QT_QPA_PLATFORM=offscreen orvane --channels 8 --start' || fail "The window did not run."

# Files that the trial runs wrote belong to the user.
rm -rf "$system/root/.config" "$system/root/.local" "$system/root/.cache" "$system/root/${package##*/}"
quietly apt-get purge -y orvane
quietly apt-get autoremove --purge -y
files >"$work/after"
left=$(comm -13 "$work/before" "$work/after")
if grep -i orvane <<<"$left"; then fail "the purged package left these files behind."; fi
if inside dpkg-query -W orvane >/dev/null 2>&1; then fail "dpkg still knows the purged package."; fi
echo "Installed, ran and purged; it left no files of its own. Its dependencies left $(wc -l <<<"$left") paths."
