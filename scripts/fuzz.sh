#!/usr/bin/env bash
# Fuzzes what reads untrusted bytes, under AddressSanitizer, from the corpora in fuzz/corpus; ends at the first
# finding. New inputs are kept in build/fuzz/corpus.
# Usage: scripts/fuzz.sh [SECONDS] [FUZZER...]
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-300}
[ $# -eq 0 ] || shift
fuzzers=("$@")
[ ${#fuzzers[@]} -gt 0 ] || fuzzers=(session_codec state_bytes)

scripts/setup.sh build fuzz
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target "${fuzzers[@]/%/_fuzzer}"
for fuzzer in "${fuzzers[@]}"; do
    mkdir -p "build/fuzz/corpus/$fuzzer"
    echo "== $fuzzer, $seconds s" >&2
    "build/fuzz/bin/${fuzzer}_fuzzer" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 -print_final_stats=1 \
        -artifact_prefix="build/fuzz/$fuzzer-" "build/fuzz/corpus/$fuzzer" "fuzz/corpus/$fuzzer"
done
