#!/usr/bin/env bash
# Measures every block of three live runs under load, on a virtual device and on a JACK and a PipeWire server of its own
# at 64 frames, and leaves a picture of each; before them, what the machine does to a loop that only counts.
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
runtime=$(mktemp -d)
stop_server() {
    kill "$server" 2>/dev/null || true
    wait "$server" 2>/dev/null || true
}
start_server() {
    jackd -n "$JACK_DEFAULT_SERVER" "$@" -d dummy -r 48000 -p 64 -C 48 -P 48 >"$log" 2>&1 &
    server=$!
    trap 'stop_server; rm -rf "$log" "$runtime"' EXIT
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
stop_server

# A device of 48 channels whose outputs return to its inputs.
export PIPEWIRE_RUNTIME_DIR=$runtime
channels=$(printf ' AUX%d' {0..47})
cat >"$runtime/server.conf" <<CONFIGURATION
context.properties = { core.daemon = true core.name = pipewire-0 default.clock.min-quantum = 32 }
context.spa-libs = { audio.convert.* = audioconvert/libspa-audioconvert support.* = support/libspa-support }
context.modules = [
  { name = libpipewire-module-rt args = { rt.prio = 70 } flags = [ ifexists nofail ] }
  { name = libpipewire-module-protocol-native } { name = libpipewire-module-metadata }
  { name = libpipewire-module-spa-node-factory } { name = libpipewire-module-client-node }
  { name = libpipewire-module-access } { name = libpipewire-module-adapter }
  { name = libpipewire-module-link-factory }
]
context.objects = [ { factory = adapter args = {
  factory.name = support.null-audio-sink node.name = loop media.class = Audio/Duplex audio.position = [$channels ]
  adapter.auto-port-config = { mode = dsp monitor = true position = preserve } } } ]
CONFIGURATION
pipewire -c "$runtime/server.conf" >"$log" 2>&1 &
server=$!
sleep 2
kill -0 "$server" 2>/dev/null || fail "no PipeWire server could be started: $(tail -1 "$log")"
echo
"$program" --driver pipewire --seconds "$seconds" --plot "$folder/steadiness-pipewire.svg"
