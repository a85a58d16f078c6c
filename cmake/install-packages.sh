#!/usr/bin/env bash
# Installs the Debian packages named on the command line that are missing. Needs root or sudo only then.
set -euo pipefail

missing=()
for package in "$@"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || {
        echo "error: these packages are missing and neither root nor sudo is at hand: ${missing[*]}" >&2
        exit 1
    }
    as_root=(sudo)
fi
echo "Installing ${missing[*]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! { "${as_root[@]}" apt-get update &&
       "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"; } \
     </dev/null >"$log" 2>&1; then
    tail -n 20 "$log" >&2
    echo "error: apt-get could not install ${missing[*]}" >&2
    exit 1
fi
