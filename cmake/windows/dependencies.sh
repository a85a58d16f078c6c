#!/usr/bin/env bash
# Builds what the Windows build stands on into build/windows-dependencies/installed: TinyXML, Boost, libpng and
# GoogleTest from Debian's source packages, and copies of the header-only libraries, because the building
# machine's include folder must never be seen by the cross compiler. What is there already is not built again.
#
#   dependencies.sh header-only-package...
#
# The sources come through apt, from the places that the machine is set up for; its own configuration is left alone.
set -euo pipefail
cd "$(dirname "$0")/../.."
here=$PWD/build/windows-dependencies
installed=$here/installed
sources=$here/sources
apt_lists=$here/apt
toolchain=$PWD/cmake/windows/toolchain.cmake
compiler=x86_64-w64-mingw32-g++-posix
mkdir -p "$installed/include" "$installed/lib" "$sources" "$apt_lists/partial"

# A part is done when this file is there. It names what the part was made from.
done_file() { echo "$installed/.$1"; }

apt_options=(-o "Dir::Etc::SourceList=$here/sources.list" -o Dir::Etc::SourceParts=/dev/null
    -o "Dir::State::Lists=$apt_lists" -o APT::Sandbox::User=)

# Debian's archives of this machine, as archives of sources.
prepare_apt() {
    [ -e "$here/sources.list" ] && return
    apt-get indextargets 'Created-By: Packages' 'Origin: Debian' \
        --format 'deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $(REPO_URI) $(RELEASE) $(COMPONENT)' |
        sort -u >"$here/sources.list.new"
    [ -s "$here/sources.list.new" ] ||
        { echo "error: apt knows no Debian archive; run apt-get update first" >&2; exit 1; }
    # Under its last name only when apt has read it: a run that is cut short begins anew.
    apt-get "${apt_options[@]}" -o "Dir::Etc::SourceList=$here/sources.list.new" update >"$here/apt.log" 2>&1 ||
        { cat "$here/apt.log" >&2; exit 1; }
    mv "$here/sources.list.new" "$here/sources.list"
}

# Some mirrors lack the newest version that their list names; then the one before is taken.
fetch() { # source package
    prepare_apt
    local version
    for version in $(apt-cache "${apt_options[@]}" showsrc --only-source "$1" | sed -n 's/^Version: //p' | sort -V -r -u); do
        (cd "$sources" && apt-get "${apt_options[@]}" source --download-only --only-source "$1=$version") \
            >>"$here/apt.log" 2>&1 && return
        rm -f "$sources/$1"_*
    done
    tail -n 5 "$here/apt.log" >&2
    echo "error: apt could not fetch the source package $1" >&2
    exit 1
}

# With Debian's patches.
unpack() { # source package, folder
    fetch "$1"
    rm -rf "${sources:?}/$2"
    dpkg-source --no-check -x "$sources/$1"_*.dsc "$sources/$2" >>"$here/apt.log" 2>&1
}

logged() { # log file, command
    "${@:2}" >"$1" 2>&1 || { tail -n 40 "$1" >&2; echo "error: $2 failed; the whole log is $1" >&2; exit 1; }
}

build_with_cmake() { # name, source folder, options
    local name=$1 folder=$2
    shift 2
    logged "$here/$name.log" cmake -G Ninja -S "$folder" -B "$here/$name" --toolchain "$toolchain" \
        -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF "-DCMAKE_INSTALL_PREFIX=$installed" -Wno-dev "$@"
    logged "$here/$name.log" cmake --build "$here/$name" --target install
    rm -rf "${here:?}/$name"
}

build_tinyxml() {
    unpack tinyxml tinyxml
    local objects=() name
    for name in tinystr tinyxml tinyxmlerror tinyxmlparser; do
        $compiler -O2 -DTIXML_USE_STL -c "$sources/tinyxml/$name.cpp" -o "$sources/tinyxml/$name.o"
        objects+=("$sources/tinyxml/$name.o")
    done
    x86_64-w64-mingw32-ar rcs "$installed/lib/libtinyxml.a" "${objects[@]}"
    cp "$sources/tinyxml/tinyxml.h" "$sources/tinyxml/tinystr.h" "$installed/include"
}

# The patches of Debian's package are left out: they are about its own build and about libraries not used here.
build_boost() {
    fetch boost1.81
    rm -rf "$sources/boost"
    tar -x -J -f "$sources"/boost1.81_*.orig.tar.xz -C "$sources" \
        --exclude='*/doc' --exclude='*/test' --exclude='*/example' --exclude='*.html'
    build_with_cmake boost "$sources/boost" -DBOOST_INSTALL_LAYOUT=system \
        '-DBOOST_INCLUDE_LIBRARIES=thread;smart_ptr;lexical_cast;core;unordered'
}

build_libpng() {
    unpack libpng1.6 libpng
    build_with_cmake libpng "$sources/libpng" -DPNG_SHARED=OFF -DPNG_TESTS=OFF
}

build_googletest() {
    unpack googletest googletest
    build_with_cmake googletest "$sources/googletest" -DBUILD_GMOCK=OFF
}

copy_headers() { # Debian package
    local file
    while read -r file; do
        case $file in
        /usr/include/*.h | /usr/include/*.hpp) file=${file#/usr/} ;;
        /usr/share/cmake/*.cmake) file=${file#/usr/} ;;
        *) continue ;;
        esac
        mkdir -p "$installed/$(dirname "$file")"
        cp "/usr/$file" "$installed/$file"
    done < <(dpkg-query -L "$1")
}

for part in tinyxml boost libpng googletest; do
    [ -e "$(done_file $part)" ] && continue
    echo "Building $part for Windows"
    "build_$part"
    touch "$(done_file $part)"
done
for package in "$@"; do
    version=$(dpkg-query -W -f '${Version}' "$package")
    [ "$(cat "$(done_file "$package")" 2>/dev/null)" = "$version" ] && continue
    copy_headers "$package"
    echo "$version" >"$(done_file "$package")"
done
rm -rf "${sources:?}" "$apt_lists" "$here/sources.list"
