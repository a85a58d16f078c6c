#!/usr/bin/env bash
# Compares the binary interface of the shared libraries with the recorded one, cmake/abi/*.abi; "record" writes the
# record anew. Programs that were linked with an older library rely on it: layouts of classes, virtual functions,
# exported symbols. ./check.sh abi calls this after building the debug preset.
set -euo pipefail
cd "$(dirname "$0")/.."
action=${1:-compare}
case $action in
compare | record) ;;
*) echo "error: unknown action \"$action\"; expected nothing or record" >&2; exit 2 ;;
esac

work=build/abi
rm -rf "$work"
mkdir -p "$work" cmake/abi

changed=0
for library in kvsubstance kvbase kvimage; do
    record=cmake/abi/$library.abi
    present=$work/$library.abi
    abidw --exported-interfaces-only --drop-undefined-syms --drop-private-types --no-elf-needed --no-parameter-names \
        --no-corpus-path --no-comp-dir-path --no-show-locs --headers-dir platform --headers-dir material --headers-dir bridge \
        "build/debug/lib/lib$library.so" | sed "s|path='$PWD/|path='|" >"$present"
    if [ "$action" = record ]; then
        cp "$present" "$record"
    elif ! abidiff "$record" "$present"; then
        changed=1
    fi
done
if [ "$changed" -ne 0 ]; then
    echo "error: the binary interface is another than cmake/abi/ records; if it is meant to change, run" \
        "\"./check.sh abi record\", commit the record, and say in CHANGELOG.md what hosts have to rebuild" >&2
    exit 1
fi
echo "binary interface: 3 libraries $([ "$action" = record ] && echo recorded || echo as recorded)"
