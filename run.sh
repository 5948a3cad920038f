#!/usr/bin/env bash
# Builds ORVANE where needed and starts it.
set -euo pipefail

if [ "${1:-}" = --help ]; then
    cat <<'END'
Usage: ./run.sh [ARGS]

Installs the packages that are missing, builds ORVANE and starts orvane-cli with ARGS
(./run.sh run --help and ./run.sh render --help say more). Without ARGS it mixes live on the first usable audio
device, or the built-in demo panel where there is none, and shows meters until Ctrl-C.
END
    exit 0
fi

root=$(cd "$(dirname "$0")" && pwd)
"$root/scripts/setup.sh" build
# A build directory that also holds the tests is as good and stays as it is.
if [ -f "$root/build/release/build.ninja" ]; then
    "$root/scripts/build.sh" release
else
    "$root/scripts/build.sh" release ORVANE_BUILD_TESTS=OFF ORVANE_BUILD_BENCH=OFF
fi

program=$root/build/release/bin/orvane-cli
[ $# -eq 0 ] || exec "$program" "$@"
echo "Mixing live with meters in the terminal; Ctrl-C ends it." >&2
exec "$program" run
