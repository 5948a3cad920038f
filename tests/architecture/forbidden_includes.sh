#!/usr/bin/env bash
# forbidden_includes.sh COMPILER DIRECTORIES ROWS: fails unless every row's first header is found in the include
# directories of its target, and none of the others is.
set -euo pipefail
compiler=$1 directories=$2 rows=$3

# finds TARGET HEADER
finds() {
  local -a roots
  read -ra roots < <(grep "^$1 " "$directories" | cut -d' ' -f2-)
  local found
  found=$(printf '#include "%s"\n' "$2" | "$compiler" -std=c++20 -M -MG "${roots[@]/#/-I}" -x c++ -)
  [[ $found =~ /include/[a-z_0-9]+/$2 ]]
}

wrong=0
while read -r target own forbidden; do
  finds "$target" "$own" || { echo "$target does not find $own, a header of its own."; wrong=1; }
  for header in $forbidden; do
    [ -e "${rows%/tests/*}/$header" ] || { echo "$header does not exist; mend the row of $target."; wrong=1; }
    if finds "$target" "$header"; then
      echo "$target sees $header and must not."
      wrong=1
    fi
  done
done < <(grep -v '^#' "$rows")
exit $wrong
