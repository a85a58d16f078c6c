#!/usr/bin/env bash
# Runs all tests with clang's source-based coverage and prints what they reach of the library's own code and of the
# verifier. Pages with every line are in build/coverage/pages. ./check.sh coverage calls this.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/coverage

cmake --preset coverage >build/configure.log 2>&1 || { cat build/configure.log >&2; exit 1; }
cmake --build --preset coverage
rm -rf $build/profiles
LLVM_PROFILE_FILE=$PWD/$build/profiles/%4m.profraw ctest --preset coverage --parallel "$(nproc)"
llvm-profdata-14 merge -sparse $build/profiles/*.profraw -o $build/tests.profdata

mapfile -t sources < <(git ls-files 'material/*' 'bridge/*' 'framework/*' 'support/*' embedded/program/Verifier.cpp |
    grep -E '\.(cpp|h)$')
objects=()
for program in $build/bin/*; do
    [ -f "$program" ] && objects+=(-object "$program")
done
llvm-cov-14 show -instr-profile $build/tests.profdata "${objects[@]}" -format html -output-dir $build/pages \
    -show-branches count "${sources[@]}" 2>/dev/null
llvm-cov-14 report -instr-profile $build/tests.profdata "${objects[@]}" -show-region-summary=false \
    "${sources[@]}" 2>/dev/null | tee $build/report.txt
