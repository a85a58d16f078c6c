#!/usr/bin/env bash
# The reference of the shipped headers, as HTML. Fails when anything public is undescribed, or described wrongly.
#
#   cmake/documentation/check.sh [FOLDER]    the pages go to FOLDER/html; without it, to build/reference/html
set -euo pipefail
cd "$(dirname "$0")/../.."
folder=${1:-build/reference}

if ! command -v doxygen >/dev/null; then
    echo "error: doxygen was not found; on Debian it is the package doxygen" >&2
    exit 1
fi
mapfile -t headers < <(find platform material bridge conformance -name '*.h' | grep -vxFf cmake/internal-headers.txt | sort)
mkdir -p "$folder"
doxygen - <<END
@INCLUDE         = cmake/documentation/Doxyfile
INPUT            = docs/reference.md ${headers[*]}
OUTPUT_DIRECTORY = $folder
END
echo "$folder/html/index.html"
