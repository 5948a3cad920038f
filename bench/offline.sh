#!/usr/bin/env bash
# Renders a 48-channel float file to a stereo master with orvane-cli and sums the same file with sox, in turns,
# and prints times, their ratio and peak memory; then what ffmpeg takes for a gate per channel, a sum and a
# leveler on the first 30 s.
# Usage: bench/offline.sh [SECONDS] [RUNS]    (600 s of sound, 5 runs of each)
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-600}
runs=${2:-5}
channels=48
rate=48000

fail() {
    echo "${0##*/}: $*" >&2
    exit 1
}

[[ $seconds =~ ^[1-9][0-9]*$ && $runs =~ ^[1-9][0-9]*$ ]] || fail "SECONDS and RUNS are whole numbers above 0."
scripts/setup.sh bench
program=build/release/bin/orvane-cli
[ -x "$program" ] || fail "$program is not there; build it first (scripts/build.sh release)."

folder=$(mktemp -d "${TMPDIR:-/tmp}/orvane-offline.XXXXXX")
trap 'rm -rf "$folder"' EXIT
needed=$((seconds * rate * channels * 4 / 1024 + 1024 * 1024))
free=$(df --output=avail "$folder" | tail -1)
[ "$free" -gt "$needed" ] ||
    fail "$folder has $((free / 1024)) MiB free, $((needed / 1024)) MiB are needed; say another place (TMPDIR) or fewer seconds."

echo "Making $seconds s of $channels channels, $((seconds * rate * channels * 4 / 1024 / 1024)) MiB" >&2
part=$((seconds < 10 ? seconds : 10))
sox -n -r "$rate" -c "$channels" -e floating-point -b 32 "$folder/part.w64" synth "$part" pinknoise vol 0.3
sox "$folder/part.w64" -e floating-point -b 32 "$folder/in.w64" repeat $(((seconds + part - 1) / part - 1)) trim 0 "$seconds"
rm "$folder/part.w64"

# Runs a command and adds "seconds kilobytes" to the file of its name.
measure() {
    local name=$1
    shift
    command time -f '%e %M' -o "$folder/$name.times" -a "$@" >/dev/null 2>"$folder/messages" ||
        fail "$name failed: $(tail -1 "$folder/messages")"
}

median() { awk '{ print $1 }' "$folder/$1.times" | sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }
peak() { awk '$2 > m { m = $2 } END { printf "%.1f", m / 1024 }' "$folder/$1.times"; }
# row NAME WHAT SECONDS: times real time, and the time for the same length of sound against sox's.
row() {
    awk -v what="$2" -v part="$3" -v all="$seconds" -v time="$(median "$1")" -v sox="$(median sox)" -v peak="$(peak "$1")" \
        'BEGIN { printf "%-52s %7.2f s %9.1f MiB %8.1fx %8.2f\n", what, time, peak, part / time, time / part * all / sox }'
}

# The first reading fills the page cache for all.
cat "$folder/in.w64" >/dev/null
for ((run = 1; run <= runs; ++run)); do
    echo "Run $run of $runs" >&2
    measure orvane "$program" render --input "$folder/in.w64" --output "$folder/mix.wav"
    measure sox sox "$folder/in.w64" -e floating-point -b 32 "$folder/sum.wav" remix -
done

gates=""
for ((channel = 0; channel < channels; ++channel)); do
    gates+="[0:a]pan=mono|c0=c$channel,agate[g$channel];"
done
inputs=$(for ((channel = 0; channel < channels; ++channel)); do printf '[g%d]' "$channel"; done)
part=$((seconds < 30 ? seconds : 30))
echo "The first $part s with ffmpeg" >&2
measure ffmpeg ffmpeg -nostdin -v error -y -t "$part" -i "$folder/in.w64" \
    -filter_complex "${gates}${inputs}amix=inputs=$channels,dynaudnorm" -c:a pcm_f32le "$folder/leveled.wav"

printf '\n%s s of %s channels, medians of %s runs in turns\n' "$seconds" "$channels" "$runs"
printf '%-52s %9s %13s %9s %8s\n' "" "time" "peak memory" "realtime" "/ sox"
row orvane "orvane-cli render: automix, leveler, stereo master" "$seconds"
row sox "sox remix -: the plain sum" "$seconds"
row ffmpeg "ffmpeg, the first $part s: agate each, amix, dynaudnorm" "$part"
