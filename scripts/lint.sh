#!/usr/bin/env bash
# Checks the code with clang-tidy and cppcheck, as the debug preset compiles it.
# Usage: scripts/lint.sh [FILE...]
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build tests check lint
cmake --preset debug -DORVANE_BUILD_TESTS=ON -DORVANE_BUILD_BENCH=ON >/dev/null
if [ $# -gt 0 ]; then
    files=("$@")
else
    mapfile -t files < <(git ls-files '*.cpp' | grep -v '^tests/')
fi
# GCC, whose warnings the build keeps to, does not count this one among conversions.
printf '%s\n' "${files[@]}" |
    xargs -P 2 -n 4 clang-tidy-16 -p build/debug --quiet --extra-arg=-Wno-sign-conversion
cppcheck --quiet --std=c++20 --language=c++ --enable=warning,performance,portability --inline-suppr \
    --suppress=missingInclude --library=scripts/cppcheck.cfg --error-exitcode=1 -I . "${files[@]}"
echo "${#files[@]} files are clean."
