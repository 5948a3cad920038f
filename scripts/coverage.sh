#!/usr/bin/env bash
# Runs the tests on instrumented programs and prints the covered share of each folder's lines and branches. Writes a
# report of every line to build/coverage/report.
# Usage: scripts/coverage.sh
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build tests coverage
scripts/build.sh coverage ORVANE_BUILD_TESTS=ON ORVANE_BUILD_BENCH=OFF
find build/coverage -name '*.gcda' -delete
# Programs that are killed, and one that may write only a few bytes, cannot write their counts and would report it.
GCOV_ERROR_FILE=/dev/null ctest --preset coverage -j2 --quiet --no-tests=error \
    -E Program.FailsIfAFileExceedsTheSizeLimit

folders=(app audio cli dsp engine machine midi platform plugins ui)
report=build/coverage/report
mkdir -p "$report"
# Header paths contain the links that the build makes for each target.
gcovr -j 2 --exclude-throw-branches --exclude-unreachable-branches --exclude '.*autogen.*' \
    --filter "(build/coverage/include/[a-z_]*/)?($(IFS='|' && echo "${folders[*]}"))/" \
    --html-details "$report/index.html" --csv "$report/files.csv" "${folders[@]/#/build/coverage/}"
awk -F, 'NR > 1 {
        sub("^build/coverage/include/[a-z_]*/", "")
        split($1, path, "/")
        for (i = 1; i <= 2; ++i) {
            folder = i == 1 ? path[1] : "all"
            lines[folder] += $2; run[folder] += $3; branches[folder] += $5; taken[folder] += $6
        }
    }
    END {
        printf "%-10s %8s %10s %12s\n", "folder", "lines", "run", "branches"
        fflush()
        for (folder in lines)
            printf "%-10s %8d %8.1f %% %10.1f %%\n", folder, lines[folder], 100 * run[folder] / lines[folder],
                100 * taken[folder] / branches[folder] | "sort"
    }' "$report/files.csv"
