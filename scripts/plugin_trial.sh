#!/usr/bin/env bash
# Tries every LV2 effect that the mixer lists, including those of nine Debian packages: each alone, eight of each, and
# eight neighbours of the list, rendered and played live. Prints which effects loaded, failed with which sentence, were
# silent, changed between two renders, or ended or hung the program, for which the exit code is 1.
# Takes about a quarter of an hour on two processors.
# Usage: scripts/plugin_trial.sh [--only TEXT] [--jobs N] [--json FILE] [--help]
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build trial
if [ ! -f build/release/build.ninja ]; then
    echo "Building in build/release; the first time takes a few minutes." >&2
    cmake --preset release >/dev/null
fi
cmake --build --preset release --target orvane-cli >/dev/null
exec nice python3 scripts/plugin_trial.py "$@"
