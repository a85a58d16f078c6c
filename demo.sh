#!/usr/bin/env bash
# Builds the tool and the sample materials, and renders every bottom with every top into out/.
set -euo pipefail
cd "$(dirname "$0")"
source cmake/packages.sh
started=$SECONDS

cmake/install-packages.sh "${build_packages[@]}"
mkdir -p build out
echo "Building (build/release)"
cmake --preset release >build/configure.log 2>&1 || { cat build/configure.log >&2; exit 1; }
cmake --build --preset release --target samples >build/demo.log 2>&1 || { tail -n 40 build/demo.log >&2; exit 1; }

tool=build/release/bin/kvsubstance
packages=build/release/samples
size=${KVSUBSTANCE_DEMO_SIZE:-512}
pictures=()
render() { # picture, packages
    local picture=$1
    shift
    "$tool" render "$@" -o "$picture" --size "$size"
    pictures+=("$picture")
    echo "  $picture"
}
echo "Rendering at $size x $size"
for bottom in samples/bottoms/*.xml; do
    bottom_name=$(basename "$bottom" .xml)
    render "out/$bottom_name.png" "$packages/$bottom_name.kvpkg"
    for top in samples/tops/*.xml; do
        top_name=$(basename "$top" .xml)
        render "out/${bottom_name}_$top_name.png" "$packages/$bottom_name.kvpkg" "$packages/$top_name.kvpkg"
    done
done
"$tool" sheet "${pictures[@]}" -o out/sheet.png
echo "Done in $((SECONDS - started)) s. Look at out/sheet.png, and at the ${#pictures[@]} pictures beside it."
