#!/usr/bin/env bash
# Builds the tests and runs them, under a sanitizer if asked.
# Usage: ./test.sh [--sanitize address|thread] [--build-only | CTEST ARGS]
set -euo pipefail
cd "$(dirname "$0")"

preset=release
bench=ON
launcher=()
if [ "${1:-}" = --sanitize ]; then
    preset=${2:-}
    bench=OFF
    case "$preset" in
    address | thread) shift 2 ;;
    *)
        echo "test.sh: --sanitize takes address or thread." >&2
        exit 2
        ;;
    esac
    # The sanitizers of older compilers cannot start if the kernel randomises more address bits than they support.
    if setarch "$(uname -m)" -R true 2>/dev/null; then launcher=(setarch "$(uname -m)" -R); fi
fi

export ASAN_OPTIONS=${ASAN_OPTIONS:-halt_on_error=1:detect_leaks=1:strict_string_checks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-halt_on_error=1:print_stacktrace=1}
export TSAN_OPTIONS=${TSAN_OPTIONS:-halt_on_error=1:second_deadlock_stack=1:suppressions=$PWD/tests/support/tsan.supp}

scripts/setup.sh build tests
"${launcher[@]}" scripts/build.sh "$preset" ORVANE_BUILD_TESTS=ON ORVANE_BUILD_BENCH="$bench"
if [ "${1:-}" = --build-only ]; then exit 0; fi
"${launcher[@]}" ctest --preset "$preset" -j2 --output-on-failure --no-tests=error "$@"
