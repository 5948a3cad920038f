#!/usr/bin/env bash
# Measures every block of two live runs under load, one on a virtual device, one on a JACK server of its own at
# 64 frames, and leaves a picture of each; before them, what the machine does to a loop that only counts.
# Usage: bench/steadiness.sh [SECONDS] [FOLDER]    (600 s each, pictures into the current folder)
set -euo pipefail

seconds=${1:-600}
folder=$(realpath "${2:-.}")
cd "$(dirname "$0")/.."

fail() {
    echo "${0##*/}: $*" >&2
    exit 1
}

[[ $seconds =~ ^[1-9][0-9]*$ ]] || fail "SECONDS is a whole number above 0."
[ -d "$folder" ] || fail "there is no folder $folder."
scripts/setup.sh bench
program=build/release/bin/orvane_steadiness
[ -x "$program" ] || fail "$program is not there; build it first (scripts/build.sh release)."

"$program" --driver probe --seconds "$seconds"
echo
"$program" --driver virtual --seconds "$seconds" --plot "$folder/steadiness-virtual.svg"

# The server runs before ordinary programs where the system lets it.
export JACK_DEFAULT_SERVER="orvane_steadiness_$$" JACK_NO_AUDIO_RESERVATION=1 JACK_NO_START_SERVER=1
log=$(mktemp)
start_server() {
    jackd -n "$JACK_DEFAULT_SERVER" "$@" -d dummy -r 48000 -p 64 -C 48 -P 48 >"$log" 2>&1 &
    server=$!
    trap 'kill "$server" 2>/dev/null; wait "$server" 2>/dev/null; rm -f "$log"' EXIT
}
start_server --realtime --realtime-priority 70
sleep 2
if ! kill -0 "$server" 2>/dev/null; then
    start_server --no-realtime
    sleep 2
fi
kill -0 "$server" 2>/dev/null || fail "no JACK server could be started: $(tail -1 "$log")"
echo
"$program" --driver jack --seconds "$seconds" --plot "$folder/steadiness-jack.svg"
