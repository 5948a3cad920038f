#!/usr/bin/env bash
# Fuzzes the readers of untrusted bytes and the operations on a mixer under AddressSanitizer, starting from the corpora in
# fuzz/corpus; ends at the first finding. Keeps new inputs in build/fuzz/corpus; with --keep, adds those that reach new
# code to the corpora afterwards.
# Usage: scripts/fuzz.sh [--keep] [SECONDS] [FUZZER...]; all fuzzers of fuzz/CMakeLists.txt by default, 300 s each.
set -euo pipefail
cd "$(dirname "$0")/.."

keep=
if [ "${1:-}" = --keep ]; then
    keep=yes
    shift
fi
seconds=${1:-300}
[ $# -eq 0 ] || shift
fuzzers=("$@")

scripts/setup.sh build fuzz
cmake --preset fuzz >/dev/null
[ ${#fuzzers[@]} -gt 0 ] || mapfile -t fuzzers <build/fuzz/fuzz/fuzzers
cmake --build --preset fuzz --target "${fuzzers[@]/%/_fuzzer}"
for fuzzer in "${fuzzers[@]}"; do
    program=build/fuzz/bin/${fuzzer}_fuzzer
    limits=(-timeout=10 -rss_limit_mb=4096)
    mkdir -p "build/fuzz/corpus/$fuzzer"
    echo "== $fuzzer, $seconds s" >&2
    "$program" -max_total_time="$seconds" "${limits[@]}" -print_final_stats=1 -artifact_prefix="build/fuzz/$fuzzer-" \
        "build/fuzz/corpus/$fuzzer" "fuzz/corpus/$fuzzer"
    [ -z "$keep" ] || "$program" -merge=1 "${limits[@]}" "fuzz/corpus/$fuzzer" "build/fuzz/corpus/$fuzzer"
done
