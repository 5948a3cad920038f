#!/usr/bin/env bash
# Configures the preset, unless it is already configured with these options, and builds it. Prints the output of the
# tools only if they fail.
# Usage: scripts/build.sh PRESET [NAME=VALUE...]
set -euo pipefail
cd "$(dirname "$0")/.."

preset=$1
shift
cache=build/$preset/CMakeCache.txt
log=$(mktemp)
trap 'rm -f "$log"' EXIT

quietly() {
    "$@" >"$log" 2>&1 </dev/null && return
    cat "$log" >&2
    echo "Building the preset \"$preset\" failed." >&2
    exit 1
}

is_configured() {
    [ -f "build/$preset/build.ninja" ] || return
    local option
    for option in "$@"; do
        grep -q "^${option%%=*}:[A-Z]*=${option#*=}\$" "$cache" || return
    done
}

if ! is_configured "$@"; then
    echo "Building in build/$preset; the first time takes a few minutes." >&2
    quietly cmake --preset "$preset" "${@/#/-D}"
fi
quietly cmake --build --preset "$preset"
