#!/usr/bin/env bash
# Builds ORVANE where needed and starts it.
set -euo pipefail

if [ "${1:-}" = --help ]; then
    cat <<'END'
Usage: ./run.sh [ARGS]

Installs the packages that are missing, builds ORVANE and starts orvane-cli with ARGS
(./run.sh render --help and ./run.sh run --help say more). Without ARGS it mixes the bundled panel recording,
assets/demo/panel-8ch.flac, into build/demo.
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

demo=$root/build/demo
mkdir -p "$demo/stems"
"$program" render --input "$root/assets/demo/panel-8ch.flac" --output "$demo/panel-mix.wav" \
    --stems "$demo/stems" --report "$demo/panel-mix.json"
cat <<END
The mix:    $demo/panel-mix.wav
Its strips: $demo/stems
The report: $demo/panel-mix.json
END
