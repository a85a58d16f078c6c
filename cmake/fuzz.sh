#!/usr/bin/env bash
# Builds the fuzzers and runs them in turn. ./check.sh fuzz calls it, when the packages are there.
#
#   fuzz.sh [--built] [SECONDS|smoke [TARGET...]]
#   fuzz.sh --keep [TARGET...]
#
# Each target runs for so long (60 seconds if nothing is said) on one core, and prints one line. "smoke" stands for
# 2,000 executions, the same each time. A finding ends the script with status 1; the line before says how to see it
# again. New inputs of interest stay in build/fuzz/corpora; build/fuzz/totals.txt has a line for each run: target,
# executions, seconds. With --built the programs are taken as they are. --keep fuzzes nothing but moves the smallest
# of the new inputs that cover more than those in fuzzers/ do to fuzzers/corpora, which stays below 100 kB for each
# target.
set -euo pipefail
cd "$(dirname "$0")/.."

is_built=
is_keeping=
seconds=60
case ${1:-} in
--built) is_built=1; shift ;;
--keep) is_built=1; is_keeping=1; shift ;;
esac
if [ -z "$is_keeping" ] && [ $# -gt 0 ]; then seconds=$1; shift; fi
case $seconds in
smoke) limit="-runs=2000 -seed=1" ;;
*) limit="-max_total_time=$seconds" ;;
esac
[[ $seconds =~ ^([1-9][0-9]*|smoke)$ ]] || { echo "error: \"$seconds\" is no number of seconds" >&2; exit 2; }
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(package assembly description host_description presets gui state_string source
    calls verifier)

# The longest input in bytes, and the dictionary, of each target.
options() {
    case $1 in
    package | assembly) echo "-max_len=8192" ;;
    description | host_description | presets)
        echo "-max_len=6144 -dict=fuzzers/dictionaries/description.txt" ;;
    gui) echo "-max_len=2048 -dict=fuzzers/dictionaries/description.txt" ;;
    state_string) echo "-max_len=1024 -dict=fuzzers/dictionaries/state_string.txt" ;;
    source) echo "-max_len=8192 -dict=fuzzers/dictionaries/source.txt" ;;
    calls) echo "-max_len=160 -len_control=0" ;;
    verifier) echo "-max_len=64 -len_control=0" ;;
    *) return 1 ;;
    esac
}

for target in "${targets[@]}"; do
    options "$target" >/dev/null || { echo "error: there is no target \"$target\"" >&2; exit 2; }
done
build=build/fuzz
if [ -z "$is_built" ]; then
    cmake --preset fuzz -DKVSUBSTANCE_WARNINGS_AS_ERRORS=ON >build/configure.log 2>&1 ||
        { cat build/configure.log >&2; exit 1; }
    cmake --build --preset fuzz --target fuzzers
fi

# Prints the smallest files of a folder that have so many bytes together.
smallest() { # folder, bytes
    find "$1" -type f -printf '%s %p\n' | sort -n | awk -v room="$2" '{ room -= $1; if (room >= 0) print $2 }'
}

keep() { # target
    local kept=fuzzers/corpora/$1 fresh=$build/fresh/$1 merged=$build/merged/$1 seeds=()
    rm -rf "$fresh" "$merged"
    mkdir -p "$kept" "$fresh" "$merged" $build/corpora/"$1"
    for folder in "$kept" $build/corpora/"$1"; do
        find "$folder" -type f -size -3 -exec cp -t "$fresh" {} + # up to 1 kB
    done
    for folder in fuzzers/findings fuzzers/seeds; do
        if [ -d "$folder/$1" ]; then seeds+=("$folder/$1"); fi
    done
    # What seeds cover need not be kept: they are replayed too.
    if [ ${#seeds[@]} -gt 0 ]; then cp -r "${seeds[@]/%//.}" "$merged"; fi
    $build/bin/fuzz_"$1" -merge=1 -use_counters=0 -rss_limit_mb=2048 "$merged" "$fresh" >$build/"$1"-merge.log 2>&1
    if [ ${#seeds[@]} -gt 0 ]; then
        for seed in "${seeds[@]}"; do (cd "$seed" && find . -type f) | (cd "$merged" && xargs rm -f); done
    fi
    rm -rf "$kept"
    mkdir -p "$kept"
    smallest "$merged" 90000 | xargs -r cp -t "$kept"
    echo "$1: $(find "$kept" -type f | wc -l) inputs, $(du -sb "$kept" | cut -f1) bytes"
}

export KVSUBSTANCE_ENGINE_MEMORY=1 # MiB that the engine keeps between runs
if [ -n "$is_keeping" ]; then
    for target in "${targets[@]}"; do keep "$target"; done
    exit
fi
for target in "${targets[@]}"; do
    corpus=$build/corpora/$target
    if [ "$seconds" = smoke ]; then
        corpus=$build/smoke/$target
        rm -rf "$corpus"
    fi
    log=$build/$target.log
    mkdir -p "$corpus"
    inputs=("$corpus")
    for folder in fuzzers/corpora fuzzers/findings fuzzers/seeds; do
        if [ -d "$folder/$target" ]; then inputs+=("$folder/$target"); fi
    done
    if [ "$target" = source ]; then inputs+=(samples/tops); fi
    # shellcheck disable=SC2046,SC2086 # several options
    if ! $build/bin/fuzz_"$target" $(options "$target") $limit -timeout=25 \
            -rss_limit_mb=2048 -malloc_limit_mb=128 -print_final_stats=1 -artifact_prefix=$build/"$target"- \
            "${inputs[@]}" >"$log" 2>&1; then
        finding=$(grep -o "$build/$target-[a-z]*-[0-9a-f]*" "$log" | tail -n 1 || true)
        grep -E 'ERROR|SUMMARY|runtime error|does not hold' "$log" >&2 || tail -n 20 "$log" >&2
        echo "error: $target: see $log; again: $build/bin/fuzz_$target $finding" >&2
        exit 1
    fi
    statistic() { sed -n "s/^stat::$1: *//p" "$log"; }
    if [ "$seconds" != smoke ]; then
        echo "$target $(statistic number_of_executed_units) $seconds" >>$build/totals.txt
    fi
    printf '%-17s %10s executions %7s/s, corpus %5s inputs, %5s new, peak %5s MiB\n' "$target" \
        "$(statistic number_of_executed_units)" "$(statistic average_exec_per_sec)" \
        "$(sed -n 's/.*DONE .*corp: \([0-9]*\).*/\1/p' "$log")" "$(statistic new_units_added)" \
        "$(statistic peak_rss_mb)"
done
