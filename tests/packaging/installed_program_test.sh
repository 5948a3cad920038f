#!/usr/bin/env bash
# Checks that the installed programs run from any folder without the build tree and find their recording, and that
# no test is installed.
# Usage: installed_program_test.sh BUILD_FOLDER
set -euo pipefail

root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
DESTDIR=$root cmake --install "$1" --prefix /first >/dev/null
mv "$root/first" "$root/moved"

programs=$(ls "$root/moved/bin" | tr '\n' ' ')
[ "$programs" = "orvane orvane-cli " ] || { echo "Installed as programs: $programs" && exit 1; }
ORVANE_DRIVERS=virtual "$root/moved/bin/orvane-cli" devices | grep -q '^virtual:panel' ||
    { echo "The installed program does not find its recording." && exit 1; }
mkdir -p "$root/lv2/odd.lv2"
scanned=$(XDG_CACHE_HOME=$root/cache LV2_PATH=$root/lv2 "$root/moved/bin/orvane-cli" plugins 2>&1)
grep -q 'odd.lv2: its manifest.ttl cannot be opened' <<<"$scanned" ||
    { echo "The installed program does not find the program that reads effects: $scanned" && exit 1; }
[ -z "$(find "$root/moved" -xtype l)" ] || { echo "Installed links lead nowhere." && exit 1; }
