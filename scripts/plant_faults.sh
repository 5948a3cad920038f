#!/usr/bin/env bash
# Plants the faults of scripts/planted_faults.txt in a copy of the tree, one at a time, and checks that the tests catch
# each. Exits with 1 if one is missed, has no test, does not apply or does not build.
# Usage: scripts/plant_faults.sh [--list] [FAULT...]
#   FAULT   the number of a fault, or text that its entry holds; all faults by default
#   --list  names the faults and checks that each applies, without building
# The copy and its build stay in build/faults, so that the next run compiles little.
set -euo pipefail
cd "$(dirname "$0")/.."

table=scripts/planted_faults.txt
copy=build/faults/tree
build=$copy/build/dev
log=build/faults/log
# In seconds; a fault may hang its tests.
limit=180

usage() {
    sed -n '2,/^set/{/^set/d;s/^# \?//;p}' "$0"
}

# The entries of the table, as arrays.
whys=() olds=() news=() targets=() filters=() texts=()
readTable() {
    local why='' old='' new='' entry='' line
    while IFS= read -r line || [ -n "$line" ]; do
        entry+=$line$'\n'
        case "$line" in
        '# '*) why=${line#'# '} ;;
        '- '*) old+=${old:+$'\n'}${line#'- '} ;;
        '+ '*) new+=${new:+$'\n'}${line#'+ '} ;;
        '@ '*)
            local target filter
            read -r target filter <<<"${line#'@ '}"
            whys+=("$why") olds+=("$old") news+=("$new") targets+=("$target") filters+=("${filter:-*}") texts+=("$entry")
            why='' old='' new='' entry=''
            ;;
        '') entry='' ;;
        *)
            echo "plant_faults.sh: $table has an invalid line: $line" >&2
            exit 1
            ;;
        esac
    done < <(sed '1,/^$/d' "$table")
}

isChosen() {
    local number=$1 word
    shift
    [ $# -gt 0 ] || return 0
    for word; do
        if [[ $word =~ ^[0-9]+$ ]]; then
            [ "$word" -ne "$number" ] || return 0
        elif [[ ${texts[number - 1]} == *"$word"* ]]; then
            return 0
        fi
    done
    return 1
}

# Prints the file that contains the old text of a fault, if it occurs exactly once in the sources.
fileOf() {
    local old=${olds[$1]} file content rest found=
    while IFS= read -r file; do
        content=$(<"$file")
        [[ $content == *"$old"* ]] || continue
        rest=${content#*"$old"}
        if [ -n "$found" ] || [[ $rest == *"$old"* ]]; then return 1; fi
        found=$file
    done < <(git grep -lF --untracked -e "${old%%$'\n'*}" -- '*.cpp' '*.h' ':!tests')
    [ -n "$found" ] && echo "$found"
}

plant() {
    local content
    content=$(<"$1")
    printf '%s\n' "${content/"${olds[$2]}"/"${news[$2]}"}" >"$copy/$1"
}

# Updates the copy file by file; unchanged files keep their time and are not compiled again.
copyTree() {
    local file
    while IFS= read -r -d '' file; do
        if [ ! -f "$file" ] || cmp -s "$file" "$copy/$file"; then continue; fi
        mkdir -p "$copy/$(dirname "$file")"
        cp "$file" "$copy/$file"
    done < <(git ls-files -co --exclude-standard -z)
}

compile() {
    nice cmake --build "$build" --target "$1" >"$log" 2>&1
}

# Whether the filter of a fault selects a test; a renamed one would leave it a fault that nothing looks for.
hasTests() {
    QT_QPA_PLATFORM=offscreen "$build/bin/$1" --gtest_list_tests --gtest_filter="$2" 2>&1 | grep '^  ' >/dev/null
}

runTests() {
    # The subshell waits for the tests, so that its message about their end goes to the log.
    (
        cd "$build"
        QT_QPA_PLATFORM=offscreen nice timeout -k 5 "$limit" "bin/$1" --gtest_brief=1 --gtest_filter="$2" || exit 1
    ) >"$log" 2>&1
}

caught=0 planted=0
report() {
    printf '%-14s %2d  %s\n' "$1" $(($2 + 1)) "${whys[$2]}"
    planted=$((planted + 1))
    [ "$1" != caught ] || caught=$((caught + 1))
}

tryFault() {
    local fault=$1 file
    if ! file=$(fileOf "$fault"); then
        report "does not apply" "$fault"
        return
    fi
    plant "$file" "$fault"
    if ! compile "${targets[fault]}"; then
        report "does not build" "$fault"
    elif ! hasTests "${targets[fault]}" "${filters[fault]}"; then
        report "has no test" "$fault"
    elif runTests "${targets[fault]}" "${filters[fault]}"; then
        report MISSED "$fault"
    else
        report caught "$fault"
    fi
    cp "$file" "$copy/$file"
}

# The faults of one target; its tests must pass without them, or they would catch anything.
tryTarget() {
    local target=$1 fault filter=
    shift
    for fault; do filter+=${filter:+:}${filters[fault]}; done
    if ! compile "$target" || ! runTests "$target" "$filter"; then
        cat "$log" >&2
        echo "plant_faults.sh: $target does not build or fails without any fault." >&2
        exit 1
    fi
    for fault; do tryFault "$fault"; done
}

listFaults() {
    local fault file
    for fault; do
        if file=$(fileOf "$fault"); then
            printf '%2d  %s: %s (%s)\n' $((fault + 1)) "$file" "${whys[fault]}" "${targets[fault]}"
            caught=$((caught + 1))
        else
            report "does not apply" "$fault"
        fi
    done
    [ "$caught" -eq $# ]
}

isList=
case "${1:-}" in
-h | --help)
    usage
    exit
    ;;
--list)
    isList=yes
    shift
    ;;
-*)
    echo "plant_faults.sh: $1 is not an option (see --help)." >&2
    exit 2
    ;;
esac
readTable
chosen=()
for ((fault = 0; fault < ${#whys[@]}; ++fault)); do
    if isChosen $((fault + 1)) "$@"; then chosen+=("$fault"); fi
done
if [ ${#chosen[@]} -eq 0 ]; then
    echo "plant_faults.sh: No fault is chosen; --list names them." >&2
    exit 2
fi
if [ -n "$isList" ]; then
    listFaults "${chosen[@]}"
    exit
fi

mkdir -p "$copy"
copyTree
cmake -S "$copy" -B "$build" -G Ninja -DCMAKE_EXPORT_COMPILE_COMMANDS=ON -DCMAKE_BUILD_TYPE=Release \
    "-DCMAKE_CXX_FLAGS_RELEASE=-O1 -DNDEBUG" -DORVANE_BUILD_BENCH=OFF >"$log" 2>&1 || {
    cat "$log" >&2
    exit 1
}
mapfile -t chosenTargets < <(for fault in "${chosen[@]}"; do echo "${targets[fault]}"; done | sort -u)
for target in "${chosenTargets[@]}"; do
    ofTarget=()
    for fault in "${chosen[@]}"; do
        [ "${targets[fault]}" != "$target" ] || ofTarget+=("$fault")
    done
    tryTarget "$target" "${ofTarget[@]}"
done
echo "$caught of $planted caught"
[ "$caught" -eq "$planted" ]
