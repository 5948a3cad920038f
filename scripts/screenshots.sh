#!/usr/bin/env bash
# Takes pictures of the window in each of its states for inspection: at its usual size, at its smallest, on usual screens,
# scaled, and as people with two kinds of colour blindness see it.
# Usage: scripts/screenshots.sh [FOLDER]; the folder is build/screenshots unless given.
set -euo pipefail
cd "$(dirname "$0")/.."

folder=${1:-build/screenshots}
scripts/setup.sh build tests
scripts/build.sh release ORVANE_BUILD_TESTS=ON
cmake --build --preset release --target orvane_screenshots >/dev/null
program=build/release/bin/orvane_screenshots

# take NAME SCREEN SCALE [VISION]
take() {
    echo "$folder/$1"
    QT_SCALE_FACTOR=$3 scripts/on-display.sh "$2" "$program" "$folder/$1" ${4:+"$4"}
}

take 1280x860 1280x860 1
# The smallest content, with its menu bar.
take 900x560 900x584 1
take 1366x768 1366x768 1
take 1920x1080 1920x1080 1
take 1920x1080@1.25 1920x1080 1.25
take 1920x1080@1.5 1920x1080 1.5
take 1280x860@2 2560x1720 2
take protanopia 1366x768 1 protanopia
take deuteranopia 1366x768 1 deuteranopia
