#!/usr/bin/env bash
# Runs all tests with clang's source-based coverage and prints what they reach of the library's own code and of the
# verifier: a table, and below it the lines that none of them reaches. Pages with every line and every branch are in
# build/coverage/pages. ./check.sh coverage calls this.
#
# How it counts: a line counts when it holds code, and each side of a condition is a branch; leaving by an exception is
# none. A template or a function of a header counts once, by the instance that was reached most. Assertions are compiled
# out, as in what is shipped, and Windows' side of an #if is not seen. The counters lie in files that are mapped into
# memory (%c), so that what runs after exit, in a forked child, or before _exit, abort and a crash counts as well.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/coverage

cmake --preset coverage >build/configure.log 2>&1 || { cat build/configure.log >&2; exit 1; }
cmake --build --preset coverage
rm -rf $build/profiles
LLVM_PROFILE_FILE=$PWD/$build/profiles/%c%4m.profraw ctest --preset coverage --parallel "$(nproc)"
llvm-profdata-14 merge -failure-mode=all -sparse $build/profiles/*.profraw -o $build/tests.profdata

mapfile -t sources < <(git ls-files -co --exclude-standard 'material/*' 'bridge/*' 'framework/*' 'support/*' \
    embedded/program/Verifier.cpp | grep -E '\.(cpp|h)$')
mapfile -t programs < <(find $build/bin $build/lib -type f \( -executable -o -name '*.so*' \) | sort)
covered=("${programs[0]}" "${programs[@]/#/-object=}" -instr-profile "$build/tests.profdata")
llvm-cov-14 show "${covered[@]}" -show-instantiations=false -show-branches=count -format html \
    -output-dir $build/pages "${sources[@]}" 2>/dev/null
llvm-cov-14 show "${covered[@]}" -show-instantiations=false "${sources[@]}" 2>/dev/null >$build/lines.txt
llvm-cov-14 report "${covered[@]}" -show-region-summary=false "${sources[@]}" 2>/dev/null >$build/files.txt

# Of the columns of a file: 5 and 6 are its lines and those missed, 8 and 9 its branches.
awk '
    function percent(all, missed) { return all ? sprintf("%.2f %%", 100 * (all - missed) / all) : "-" }
    function row(name, lines, missed_lines, branches, missed_branches) {
        printf "%-24s %6d %7d %10s %9d %7d %10s\n", name, lines, missed_lines, percent(lines, missed_lines),
            branches, missed_branches, percent(branches, missed_branches)
    }
    $1 ~ /\.(cpp|h)$/ {
        folder = $1
        sub(/\/[^\/]*$/, "", folder)
        if (!(folder in lines)) order[++count] = folder
        lines[folder] += $5; missed_lines[folder] += $6; branches[folder] += $8; missed_branches[folder] += $9
        all_lines += $5; all_missed_lines += $6; all_branches += $8; all_missed_branches += $9
    }
    END {
        printf "%-24s %6s %7s %10s %9s %7s %10s\n", "", "lines", "missed", "reached", "branches", "missed", "reached"
        for (i = 1; i <= count; ++i) {
            folder = order[i]
            row(folder, lines[folder], missed_lines[folder], branches[folder], missed_branches[folder])
        }
        row("all", all_lines, all_missed_lines, all_branches, all_missed_branches)
    }' $build/files.txt | tee $build/report.txt
awk -v root="$PWD/" '
    /^\/.*:$/ { file = substr($0, length(root) + 1, length($0) - length(root) - 1) }
    /^ *[0-9]+\| +0\|/ { split($0, part, "|"); text = part[3]; sub(/^ +/, "", text); print "not reached: " file ":" (part[1] + 0) "  " text }
    ' $build/lines.txt | tee -a $build/report.txt
