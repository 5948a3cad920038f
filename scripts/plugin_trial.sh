#!/usr/bin/env bash
# Tries every LV2 effect that the mixer lists, those of nine of Debian's packages among them: each alone and eight of
# it, then eight that follow each other in the list, rendered and played live. Prints what loaded, failed with which
# sentence, made no sound, changed between two renders, and ended or hung the program, for which the exit code is 1.
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
