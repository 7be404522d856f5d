#!/usr/bin/env bash
# check-package.sh BUILD-DIRECTORY [TOOLCHAIN-FILE LAUNCHER]: makes the package of a build, unpacks it in an empty place,
# makes a report with what is in it, and builds and runs a host against it.
set -euo pipefail

source_directory=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
build=$(realpath "$1")
toolchain=(${2:+"-DCMAKE_TOOLCHAIN_FILE=$2"})
launcher=("${@:3}")
work=$(mktemp -d)
export WINEPREFIX=$work/wine
trap '[[ ! -d $WINEPREFIX ]] || /usr/lib/wine/wineserver64 -k || true; rm -rf "$work"' EXIT
cd "$work"

cpack --config "$build/CPackConfig.cmake" -B "$work/package" >/dev/null
archive=$(echo package/BiosConfigModule-*-*.*)
echo "${archive##*/}"
cmake -E tar xf "$archive"
top=$(echo "$work"/BiosConfigModule-*)

# A report, with the stand-in where the external tool is installed.
mkdir -p tool/ModuleData "Programs/Quenor Corporation/Quenor(R) Tarnwell Tool/SupportedBinaries/FENRIK/FenrikBinary"
find "$top" -name CapsList.json -exec cp {} tool/ \;
find "$top" -name FenrikCmd.exe -exec cp {} Programs/*/*/SupportedBinaries/FENRIK/FenrikBinary/ \;
program=$(echo "$top"/bin/biosconfig*)
"${launcher[@]}" "$program" report --program-files Programs --tool-dir tool -o report.xml
rows=$(grep -o '<Row>' report.xml | wc -l)
echo "report.xml has $rows rows"
((rows > 250))

configure_host() {
    cmake -G Ninja -S "$source_directory/Tests/Consumer" -DHOST_SOURCE="$source_directory/Docs/MinimalHost.cpp" \
        -DBiosConfigModule_DIR="$(dirname "$(find "$top" -name BiosConfigModuleConfig.cmake)")" "${toolchain[@]}" "$@"
}
configure_host -B consumer >/dev/null
cmake --build consumer >/dev/null
module=$(<consumer/module-path)
# Wine's name of that path: Windows wants a full one for a library that is to find others beside itself.
((${#launcher[@]} == 0)) || module="Z:${module//\//\\}"
"${launcher[@]}" "$(find consumer -maxdepth 1 -type f -name 'Consumer*')" "$module" tool/ >host.out 2>host.messages || cat host.messages >&2
grep 'BIOS Options: bios options' host.messages
grep -q '<Header>Name,Value,Prompt,Description</Header>' host.out

# A host that takes its compiler for Microsoft's is told why it cannot have the module.
! configure_host -B stranger -DMSVC=ON >/dev/null 2>stranger.messages
grep 'This module was built with GCC' stranger.messages
