#!/usr/bin/env bash
# Builds everything and runs the tests.
#
#   ./check.sh          optimised, gcc
#   ./check.sh debug    not optimised, gcc
#   ./check.sh asan     under the address, leak and undefined behaviour sanitizers
#   ./check.sh tsan     under the thread sanitizer
#   ./check.sh clang    optimised, clang
#   ./check.sh windows  64-bit Windows: cross-built with mingw-w64, run under wine (docs/windows.md)
#   ./check.sh lint     formatting, clang-tidy, and the shipped headers on their own
#   ./check.sh abi      the binary interface against its record; "abi record" writes the record anew
#   ./check.sh bench    benchmarks, optimised; fails when time grows faster than it may
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
bench)
    cmake/install-packages.sh "${build_packages[@]}" "${benchmark_packages[@]}"
    cmake --preset release -DKVSUBSTANCE_BUILD_BENCHMARKS=ON >build/configure.log 2>&1 ||
        { cat build/configure.log >&2; exit 1; }
    cmake --build --preset release --target model_benchmarks engine_benchmarks
    build/release/bin/model_benchmarks
    build/release/bin/engine_benchmarks --benchmark_repetitions=5
    ;;
*)
    echo "error: unknown mode \"$mode\"; expected release, debug, asan, tsan, clang, windows, lint, abi or bench" >&2
    exit 2
    ;;
esac
