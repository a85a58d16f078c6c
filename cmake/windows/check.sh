#!/usr/bin/env bash
# Cross-builds the tree for 64-bit Windows and runs all tests under wine. ./check.sh windows calls it, when the
# packages and build/windows-dependencies are there.
#
#   check.sh [ctest options]
#
# One wine process stays alive meanwhile: else each test would wait for wine's services to start. At the end what
# runs in this tree's wine prefix is stopped, and nothing else.
set -euo pipefail
cd "$(dirname "$0")/../.."
export WINEPREFIX=$PWD/build/windows-wine WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml=' LC_ALL=C.UTF-8
wine_start_limit=180 # seconds

exec {keep_alive}<> <(:) # a pipe that nothing is written to
stop_wine() {
    exec {keep_alive}>&-
    wineserver -k >/dev/null 2>&1 || true
    wineserver -w >/dev/null 2>&1 || true
}
trap stop_wine EXIT

if [ ! -e build/windows-wine/system.reg ]; then
    timeout "$wine_start_limit" wine wineboot -i >build/wine.log 2>&1 ||
        { cat build/wine.log >&2; echo "error: wine could not make its prefix build/windows-wine" >&2; exit 1; }
fi
# Waits for input that never comes.
wine cmd.exe /c pause <&"$keep_alive" >/dev/null 2>&1 &

unset WINEDEBUG # from here on cmake/windows/wine.sh decides
if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
cmake --preset windows -DKVSUBSTANCE_WARNINGS_AS_ERRORS=ON >build/configure.log 2>&1 ||
    { cat build/configure.log >&2; exit 1; }
cmake --build --preset windows
ctest --preset windows --parallel "$(nproc)" "$@"
