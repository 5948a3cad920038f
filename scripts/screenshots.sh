#!/usr/bin/env bash
# Takes pictures of the window in each of its states for inspection: at its usual size, at its smallest, and at twice the
# pixels.
# Usage: scripts/screenshots.sh [FOLDER]; the folder is build/screenshots unless given.
set -euo pipefail
cd "$(dirname "$0")/.."

folder=${1:-build/screenshots}
scripts/setup.sh build tests
scripts/build.sh release ORVANE_BUILD_TESTS=ON
cmake --build --preset release --target orvane_screenshots >/dev/null
program=build/release/bin/orvane_screenshots

take() {
    echo "$folder/$1"
    QT_SCALE_FACTOR=$3 scripts/on-display.sh "$2" "$program" "$folder/$1"
}

take 1280x860 1280x860 1
# The smallest content, with its menu bar.
take 900x560 900x584 1
take 1280x860@2 2560x1720 2
