#!/usr/bin/env bash
# What can be said about the sources without running them.
set -euo pipefail
cd "$(dirname "$0")/.."

mapfile -t sources < <(git ls-files --cached --others --exclude-standard '*.cpp' '*.h')
clang-format-14 --dry-run --Werror "${sources[@]}"
echo "formatting: ${#sources[@]} files"

# Each shipped header compiles on its own, in both language versions.
mapfile -t shipped < <(git ls-files --cached --others --exclude-standard 'platform/*.h' 'material/*.h' 'bridge/*.h' \
    'conformance/*.h' |
    grep -v -x -F -f cmake/internal-headers.txt)
for header in "${shipped[@]}"; do
    for standard in 17 20; do
        for compiler in g++ clang++-14; do
            echo "#include \"$header\"" |
                "$compiler" -std=c++$standard -Wall -Wextra -Wpedantic -Werror -fsyntax-only -I. -x c++ - ||
                { echo "error: $header does not compile on its own with $compiler as C++$standard" >&2; exit 1; }
        done
    done
done
echo "shipped headers: ${#shipped[@]} compile on their own as C++17 and C++20"

cmake/documentation/check.sh

cmake --preset clang >build/configure.log 2>&1 || { cat build/configure.log >&2; exit 1; }
cmake --build --preset clang --target generated_sources >/dev/null
mapfile -t checked < <(printf '%s\n' "${sources[@]}" | grep '\.cpp$' | grep -v -E '^(tests|fuzzers|examples|benchmarks)/')
if ! complaints=$(printf '%s\0' "${checked[@]}" |
        xargs -0 -P "$(nproc)" -n 1 clang-tidy-14 -p build/clang --quiet --warnings-as-errors='*' 2>/dev/null); then
    echo "$complaints" >&2
    echo "error: clang-tidy has complaints" >&2
    exit 1
fi
echo "clang-tidy: ${#checked[@]} files"
