#!/usr/bin/env bash
# Builds everything and runs the tests.
#
#   ./check.sh                 optimised, gcc
#   ./check.sh debug           not optimised, gcc
#   ./check.sh asan            under the address, leak and undefined behaviour sanitizers
#   ./check.sh tsan            under the thread sanitizer
#   ./check.sh clang           optimised, clang
#   ./check.sh windows         64-bit Windows: cross-built with mingw-w64, run under wine (docs/windows.md)
#   ./check.sh lint            formatting, clang-tidy, the shipped headers on their own and their reference
#   ./check.sh abi [record]    the binary interface against its record; or writes the record anew
#   ./check.sh coverage        lines and branches that the tests reach (build/coverage/pages)
#   ./check.sh bench           benchmarks, as one table (build/release/benchmarks.txt); fails when a target is missed
#   ./check.sh fuzz [SECONDS]  each fuzzer for so long (60 seconds) on what it has found so far; "smoke": shortly,
#                              and the same each time
#   ./check.sh soak [SECONDS]  random operations for so long (600 seconds); fails when memory, threads or handles grow
#
# Each mode builds into build/<mode> (the first one into build/release). Warnings are errors.
set -euo pipefail
cd "$(dirname "$0")"
source cmake/packages.sh

build_and_test() { # preset, packages that it needs besides the usual ones
    local preset=$1
    shift
    cmake/install-packages.sh "${build_packages[@]}" "${test_packages[@]}" "$@"
    cmake/generate-locale.sh
    cmake --preset "$preset" -DKVSUBSTANCE_WARNINGS_AS_ERRORS=ON >build/configure.log 2>&1 ||
        { cat build/configure.log >&2; exit 1; }
    cmake --build --preset "$preset"
    ctest --preset "$preset" --parallel "$(nproc)"
}

mode=${1:-release}
mkdir -p build
case $mode in
release | debug | asan | tsan)
    build_and_test "$mode"
    ;;
clang)
    build_and_test clang "${clang_packages[@]}"
    ;;
windows)
    cmake/install-packages.sh "${build_packages[@]}" "${windows_packages[@]}"
    cmake/windows/dependencies.sh "${header_packages[@]}"
    cmake/windows/check.sh
    ;;
lint)
    cmake/install-packages.sh "${build_packages[@]}" "${clang_packages[@]}" "${lint_packages[@]}"
    cmake/lint.sh
    ;;
abi)
    cmake/install-packages.sh "${build_packages[@]}" "${abi_packages[@]}"
    cmake --preset debug >build/configure.log 2>&1 || { cat build/configure.log >&2; exit 1; }
    cmake --build --preset debug --target kvsubstance
    cmake/abi.sh "${@:2}"
    ;;
coverage)
    cmake/install-packages.sh "${build_packages[@]}" "${test_packages[@]}" "${clang_packages[@]}" "${coverage_packages[@]}"
    cmake/generate-locale.sh
    cmake/coverage.sh
    ;;
bench)
    cmake/install-packages.sh "${build_packages[@]}" "${benchmark_packages[@]}"
    cmake --preset release -DKVSUBSTANCE_BUILD_BENCHMARKS=ON >build/configure.log 2>&1 ||
        { cat build/configure.log >&2; exit 1; }
    cmake --build --preset release --target library_benchmarks engine_benchmarks benchmark_table
    rows=build/release/benchmarks.rows
    rm -f "$rows"
    status=0
    build/release/bin/library_benchmarks --rows="$rows" || status=1
    build/release/bin/engine_benchmarks --rows="$rows" || status=1
    build/release/bin/benchmark_table "$rows" | tee build/release/benchmarks.txt
    exit $status
    ;;
fuzz)
    cmake/install-packages.sh "${build_packages[@]}" "${fuzz_packages[@]}"
    cmake/fuzz.sh "${2:-60}"
    ;;
soak)
    cmake/install-packages.sh "${build_packages[@]}"
    cmake --preset release >build/configure.log 2>&1 || { cat build/configure.log >&2; exit 1; }
    cmake --build --preset release --target soak
    build/release/bin/soak "${2:-600}"
    ;;
*)
    echo "error: unknown mode \"$mode\"; the modes are:" >&2
    sed -n 's/^#   //p' "$0" >&2
    exit 2
    ;;
esac
