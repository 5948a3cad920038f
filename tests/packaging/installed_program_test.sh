#!/usr/bin/env bash
# What is installed runs from wherever it stands, without the tree it was built in: it finds its recording beside
# itself. Nothing of the tests is installed.
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
[ -z "$(find "$root/moved" -xtype l)" ] || { echo "Installed links lead nowhere." && exit 1; }
