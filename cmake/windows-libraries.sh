#!/usr/bin/env bash
# Provides the libraries that the Windows build uses, in build/windows-libraries/prefix: libxml2 and GoogleTest compiled
# from the distribution's sources, the headers of nlohmann/json and CLI11 in a folder apart from the machine's own.
# Does nothing when they are there already.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."

place=$PWD/build/windows-libraries
prefix=$place/prefix
stamp=$place/made-by
recipe=$(sha256sum cmake/windows-libraries.sh cmake/windows-toolchain.cmake; dpkg-query --show libxml2-dev googletest \
    nlohmann-json3-dev libcli11-dev g++-mingw-w64-x86-64-posix)
[[ -f $stamp && $(<"$stamp") == "$recipe" ]] && exit 0
echo "Building the libraries for Windows" >&2
rm -rf "$place"
mkdir -p "$prefix/include" "$prefix/share/cmake"

# fetch_source PACKAGE: takes the machine's package sources as they are, but for source packages, and leaves the
# machine's own lists alone.
fetch_source() {
    mkdir -p "$place/apt/sources" "$place/apt/lists/partial" "$place/apt/cache/archives/partial" "$place/src"
    local file
    for file in /etc/apt/sources.list.d/*.sources; do
        [[ -f $file ]] && sed 's/^Types:.*/Types: deb-src/' "$file" >"$place/apt/sources/${file##*/}"
    done
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [[ -f $file ]] && sed -n 's/^deb[[:space:]]/deb-src /p' "$file" >"$place/apt/sources/${file##*/}"
    done
    mv "$place/apt/sources/sources.list" "$place/apt/sources/main.list" 2>/dev/null || true
    local options=(-q -o Dir::Etc::SourceList=/dev/null -o "Dir::Etc::SourceParts=$place/apt/sources"
        -o "Dir::State::Lists=$place/apt/lists" -o "Dir::Cache=$place/apt/cache" -o APT::Sandbox::User=
        -o Acquire::Languages=none)
    apt-get "${options[@]}" update >"$place/apt/log" 2>&1 || { cat "$place/apt/log" >&2; return 1; }
    # The installed version where the sources still have it, else the one that they have.
    local version
    version=$(dpkg-query --show --showformat='${source:Version}' "$1-dev")
    (cd "$place/src" && { apt-get "${options[@]}" source "$1=$version" || apt-get "${options[@]}" source "$1"; }) \
        >>"$place/apt/log" 2>&1 || { cat "$place/apt/log" >&2; return 1; }
}

# build_library NAME SOURCE-DIRECTORY OPTIONS...
build_library() {
    local name=$1 source=$2
    shift 2
    {
        cmake -G Ninja -S "$source" -B "$place/$name" -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/windows-toolchain.cmake" \
            -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" -DBUILD_SHARED_LIBS=OFF "$@" &&
            cmake --build "$place/$name" && cmake --install "$place/$name"
    } >"$place/$name.log" 2>&1 || { tail -n 40 "$place/$name.log" >&2; return 1; }
}

fetch_source libxml2
build_library libxml2 "$(echo "$place"/src/libxml2-*/)" -DCMAKE_C_FLAGS="-DLIBXML_STATIC -ffunction-sections -fdata-sections -ffile-prefix-map=$place/src/=" \
    -DLIBXML2_WITH_{ICONV,LZMA,ZLIB,PYTHON,TESTS,PROGRAMS,HTTP,FTP,C14N,CATALOG,DEBUG,HTML,READER}=OFF \
    -DLIBXML2_WITH_{SCHEMAS,SCHEMATRON,XINCLUDE,XPTR,MODULES,LEGACY}=OFF
build_library googletest /usr/src/googletest -DBUILD_GMOCK=OFF
for headers in nlohmann CLI; do cp -R "/usr/include/$headers" "$prefix/include/"; done
for package in nlohmann_json CLI11; do cp -R "/usr/share/cmake/$package" "$prefix/share/cmake/"; done
mkdir -p "$prefix/share/copyright"
for package in libxml2-dev nlohmann-json3-dev libcli11-dev g++-mingw-w64-x86-64-posix mingw-w64-x86-64-dev; do
    cp "/usr/share/doc/$package/copyright" "$prefix/share/copyright/$package.txt"
done
printf '%s' "$recipe" >"$stamp"
