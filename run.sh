#!/usr/bin/env bash
# Builds ORVANE if needed and starts it.
set -euo pipefail

if [ "${1:-}" = --help ]; then
    cat <<'END'
Usage: ./run.sh [ARGS]

Installs the packages that are missing, builds ORVANE and starts it with ARGS: the window (orvane), or orvane-cli
where ARGS begin with one of its subcommands (devices, midi, plugins, render, run, session). Without a display and
without ARGS it mixes live in the terminal, on the first usable audio device or the built-in demo panel, until Ctrl-C.
./run.sh SUBCOMMAND --help and build/release/bin/orvane --help say more.
END
    exit 0
fi

root=$(cd "$(dirname "$0")" && pwd)
"$root/scripts/setup.sh" build
# A build directory with tests also works and stays as it is.
if [ -f "$root/build/release/build.ninja" ]; then
    "$root/scripts/build.sh" release
else
    "$root/scripts/build.sh" release ORVANE_BUILD_TESTS=OFF ORVANE_BUILD_BENCH=OFF
fi

programs=$root/build/release/bin
case "${1:-}" in
devices | midi | plugins | render | run | session) exec "$programs/orvane-cli" "$@" ;;
esac
if [ $# -eq 0 ] && [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    echo "There is no display: mixing live with meters in the terminal; Ctrl-C ends it." >&2
    exec "$programs/orvane-cli" run
fi
exec "$programs/orvane" "$@"
