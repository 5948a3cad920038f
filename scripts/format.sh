#!/usr/bin/env bash
# Formats every C++ file of the tree in place; with --check, only lists files that are not formatted.
set -euo pipefail
cd "$(dirname "$0")/.."

mapfile -t files < <(git ls-files --cached --others --exclude-standard '*.h' '*.cpp')
if [ "${1:-}" = --check ]; then
    clang-format --dry-run --Werror "${files[@]}"
    echo "${#files[@]} files are formatted."
else
    clang-format -i "${files[@]}"
fi
