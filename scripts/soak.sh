#!/usr/bin/env bash
# Runs random shows: every operation of the mixer in random order, on devices without hardware, while all invariants are
# checked. Eight hours of shows take a few minutes; with --live, the mixer runs in real time. The same seed gives the same
# shows; a failure prints how to repeat its show.
# Usage: scripts/soak.sh [--seed N] [--hours H] [--live SECONDS] [--help]
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build tests
if [ ! -f build/release/build.ninja ]; then
    echo "Building in build/release; the first time takes a few minutes." >&2
    cmake --preset release >/dev/null
fi
cmake --build --preset release --target orvane-soak >/dev/null
exec build/release/bin/orvane-soak "$@"
