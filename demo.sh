#!/usr/bin/env bash
# Builds the tool and the sample materials, and renders them into out/: every bottom alone, a sheet of every top over
# every bottom, and a gallery page of what each package has to offer.
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
sheet_size=256
pictures=()
render() { # picture, side in pixels, packages
    local picture=$1 side=$2
    shift 2
    "$tool" render "$@" -o "$picture" --size "$side"
    pictures+=("$picture")
}
names_in() { # folder of sources
    local source
    for source in "$1"/*.xml; do basename "$source" .xml; done
}
mapfile -t bottoms < <(names_in samples/bottoms)
mapfile -t tops < <(names_in samples/tops)

echo "Rendering ${#bottoms[@]} bottoms at $size x $size, and ${#tops[@]} tops over each at $sheet_size x $sheet_size"
mkdir -p out/stacked
for bottom in "${bottoms[@]}"; do
    render "out/$bottom.png" "$size" "$packages/$bottom.kvpkg"
    for top in "${tops[@]}"; do
        render "out/stacked/${bottom}_$top.png" "$sheet_size" "$packages/$bottom.kvpkg" "$packages/$top.kvpkg"
    done
    echo "  $bottom"
done
"$tool" sheet "${pictures[@]}" -o out/sheet.png --columns $((1 + ${#tops[@]}))

echo "Making the gallery"
sample_packages=()
for name in "${bottoms[@]}" "${tops[@]}"; do sample_packages+=("$packages/$name.kvpkg"); done
"$tool" gallery "${sample_packages[@]}" -o out
echo "Done in $((SECONDS - started)) s. Open out/gallery.html, and look at out/sheet.png and the ${#pictures[@]} pictures" \
    "it is made of."
