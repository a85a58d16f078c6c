#!/usr/bin/env bash
# Runs a Windows program in the wine prefix of this tree, build/windows-wine. cmake/windows/check.sh makes it and
# keeps it warm; a program runs without that as well, only slower.
#
# Nothing of wine's own is printed but a DLL that is missing, of which the exit status (53) alone says too little.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
export WINEPREFIX=$root/build/windows-wine
export LC_ALL=C.UTF-8 # file names outside are UTF-8
export WINEDEBUG=${WINEDEBUG:--all,err+module}
export WINEDLLOVERRIDES='mscoree,mshtml='
exec wine "$@"
