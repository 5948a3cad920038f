#!/usr/bin/env bash
# Checks the code with clang-tidy and cppcheck, as the debug preset compiles it.
# Usage: scripts/lint.sh [--changed | FILE...]
# --changed: the sources that differ from origin's main branch, or that the last commit changed if none does.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build tests check lint
cmake --preset debug -DORVANE_BUILD_TESTS=ON -DORVANE_BUILD_BENCH=ON >/dev/null
if [ "${1:-}" = --changed ]; then
    base=$(git merge-base HEAD origin/main 2>/dev/null || true)
    if [ -z "$base" ] || git diff --quiet "$base" -- '*.cpp'; then base=HEAD~1; fi
    mapfile -t files < <(git diff --name-only --diff-filter=d "$base" -- '*.cpp' 2>/dev/null)
    if [ ${#files[@]} -eq 0 ]; then
        echo "No source has changed."
        exit 0
    fi
elif [ $# -gt 0 ]; then
    files=("$@")
else
    mapfile -t files < <(git ls-files '*.cpp' | grep -v '^tests/')
fi
# The build uses GCC's warnings. GCC does not treat the first as a conversion, and has attributes of its own.
printf '%s\n' "${files[@]}" |
    xargs -P 2 -n 4 clang-tidy-16 -p build/debug --quiet --extra-arg=-Wno-sign-conversion --extra-arg=-Wno-unknown-attributes
cppcheck --quiet --std=c++20 --language=c++ --enable=warning,performance,portability --inline-suppr \
    --suppress=missingInclude --library=scripts/cppcheck.cfg --library=googletest --error-exitcode=1 -I . "${files[@]}"
echo "${#files[@]} files are clean."
