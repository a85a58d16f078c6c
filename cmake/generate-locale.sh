#!/usr/bin/env bash
# Makes the locale with decimal commas under which some tests run a second time. Without it they still run, with
# the C++ half of such a locale only.
set -euo pipefail
locale -a | grep -qi '^de_DE\.utf-\?8$' && exit 0
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
"${as_root[@]}" localedef -i de_DE -f UTF-8 de_DE.UTF-8 || echo "note: no de_DE.UTF-8 locale for the tests" >&2
