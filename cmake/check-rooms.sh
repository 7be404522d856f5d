#!/usr/bin/env bash
# Fails where the code draws an arrow that Docs/Architecture.md does not, that is, where a room of the project uses
# another one, the operating system or a library that it must not use; and where the tests are too few or too many.
# Says "file:line: reason" for each. Builds and installs nothing.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."

# ROOM FOLDER: what its sources may include and its target be linked to. ROOM/HEADER allows that one header alone.
# A room stands below all that it uses, so no arrows can meet in a circle.
read -r -d '' rooms_table <<'TABLE' || true
Headers           Include                    :
Platform          Platform                   :
HostLibrary       HostLibrary                :
ExceptionBarrier  Packages/ExceptionBarrier  : Headers
Container         Packages/Container         : Headers Platform
Diagnostics       Packages/Diagnostics       : Headers Platform ExceptionBarrier Container
SingletonManager  Tools/SingletonManager     : HostLibrary Platform
Text              Sources/Text               : Platform
Xml               Sources/Xml                : Headers Platform ExceptionBarrier Diagnostics Text
HostFiles         Sources/HostFiles          : Headers Platform ExceptionBarrier Diagnostics Text Xml HostLibrary SingletonManager
Tool              Sources/Tool               : Headers Platform ExceptionBarrier Diagnostics Text Xml
Writers           Sources/Writers            : Headers ExceptionBarrier Diagnostics Text Xml
Options           Sources/Options            : Text Tool
Module            Sources/Module             : Headers Platform ExceptionBarrier Diagnostics Text HostFiles Tool Writers
FenrikSettings    Tools/FenrikCmd/Settings   : Platform
SimulatedSource   Tools/FenrikCmd/Simulated  : Platform FenrikSettings
KernelSource      Tools/FenrikCmd/KernelAttributes : Platform FenrikSettings
RedfishSource     Tools/FenrikCmd/Redfish    : Platform FenrikSettings
FenrikCmd         Tools/FenrikCmd            : Platform FenrikSettings SimulatedSource KernelSource RedfishSource
biosconfig        Tools/biosconfig           : Headers Platform Text Tool Options Diagnostics/DebugConfCheck.h
HostExample       Docs                       : Headers
TestSupport       Tests/Support              : Headers Platform Diagnostics
WriterTests       Tests/Writers              : Headers Platform Diagnostics Writers TestSupport
Tests             Tests                      : Headers Platform HostLibrary ExceptionBarrier Container Diagnostics SingletonManager Text Xml FenrikSettings SimulatedSource KernelSource RedfishSource HostFiles Tool Options Writers Module TestSupport
Benchmarks        Benchmarks                 : Headers Platform Container Diagnostics Text Xml HostFiles Tool Writers Module TestSupport WriterTests
Fuzzing           Fuzzing                    : Headers Platform Diagnostics Text Xml FenrikSettings SimulatedSource KernelSource RedfishSource HostFiles Tool Options Writers Module
TABLE

# LIBRARY, how its headers begin, and the files that may include them (one pattern).
read -r -d '' libraries_table <<'TABLE' || true
libxml2        libxml/     ^(Sources/Xml|Tools/(biosconfig|FenrikCmd)|Tests|Benchmarks|Fuzzing)/
nlohmann/json  nlohmann/   ^(Sources/(HostFiles/|Writers/JSONText\.cpp:)|Tools/(biosconfig|FenrikCmd)/|Tests/|Benchmarks/|Fuzzing/)
libcurl        curl/       ^Tools/FenrikCmd/Redfish/HttpConnection\.cpp:
CLI11          CLI/        ^Tools/(biosconfig|FenrikCmd)/
GoogleTest     gtest/      ^Tests/
benchmark      benchmark/  ^Benchmarks/
spdlog         spdlog/     ^Benchmarks/
libbsd         bsd/        ^Benchmarks/
GLib           glib.h      ^Benchmarks/
TABLE

# Where a source may know on which system it is. Elsewhere every <name.h> and <folder/...> of no library is the
# system's: the headers of C++ have neither.
platform_files='^(Platform/|Tests/(Support|Platform)/(Posix|Win32)/|Docs/MinimalHost\.cpp:|Benchmarks/(HeapMeter|RequestLoop)\.cpp:|Fuzzing/Fuzzing\.h:)'
system_macros='_WIN(32|64)|WIN32|_MSC_VER|__MINGW|__(linux|unix|APPLE|GLIBC)__|__CYGWIN__|_POSIX_|__has_include'

# The tests' share of the code that they test, in percent.
least_share=22
largest_share=33

failures=0
fail() { echo "$1" >&2; failures=$((failures + 1)); }

# sources PATTERN...: the files that git knows, or would take.
sources() { git ls-files -co --exclude-standard -- "$@" | while read -r file; do [[ ! -e $file ]] || echo "$file"; done; }

declare -A folder_of uses holders
room_names=()
while read -r room folder arrows; do
    room_names+=("$room")
    folder_of[$room]=$folder
    uses[$room]=" ${arrows#:} "
    for used in ${arrows#:}; do
        [[ -n ${folder_of[${used%%/*}]-} ]] || fail "$0: $room stands above ${used%%/*}, which it uses"
    done
done <<<"$rooms_table"

# room_of FILE: the room with the longest folder that holds it, into $room.
room_of() {
    local place=$1 name
    while [[ $place == */* ]]; do
        place=${place%/*}
        for name in "${room_names[@]}"; do
            if [[ ${folder_of[$name]} == "$place" ]]; then room=$name; return; fi
        done
    done
    room=
}

# may_use ROOM OTHER [HEADER]: without a header, whether there is one that it may use.
may_use() { [[ $1 == "$2" || ${uses[$1]} == *" $2 "* || ${uses[$1]} == *" $2/${3:+$3 }"* ]]; }

# check_include PLACE ROOM HEADER
check_include() {
    local holder=
    for holder in ${holders[$3]-}; do
        if may_use "$2" "$holder" "$3"; then return; fi
    done
    if [[ -n $holder ]]; then
        fail "$1: $2 must not use $holder (\"$3\")"
    else
        fail "$1: no room has \"$3\""
    fi
}

# check_library PLACE HEADER: a header of a library, of C++ or of the system.
check_library() {
    local library begin users
    while read -r library begin users; do
        [[ $2 == "$begin"* ]] || continue
        [[ $1 =~ $users ]] || fail "$1: $library has no place here (<$2>)"
        return
    done <<<"$libraries_table"
    if [[ $2 =~ \.h$|/ && ! $1 =~ $platform_files ]]; then
        fail "$1: the operating system has its place in Platform/ (<$2>)"
    fi
}

mapfile -t files < <(sources '*.h' '*.cpp')
for file in "${files[@]}"; do
    room_of "$file"
    [[ -n $room ]] || fail "$file: stands in no room"
    if [[ $file == *.h ]]; then holders[${file##*/}]+=" $room"; fi
done

# Includes of rooms, of libraries and of the system; questions which system it is.
while IFS=: read -r file line text; do
    place=$file:$line
    room_of "$file"
    [[ -n $room && $text =~ [\"\<]([^\"\>]+) ]] || continue
    header=${BASH_REMATCH[1]}
    if [[ $text == *\"* || -n ${holders[${header##*/}]-} ]]; then
        check_include "$place" "$room" "${header##*/}"
    else
        check_library "$place" "$header"
    fi
done < <(grep -nE '^[[:space:]]*#[[:space:]]*include' "${files[@]}")
while IFS=: read -r file line text; do
    [[ $file: =~ $platform_files ]] || fail "$file:$line: the operating system has its place in Platform/ ($text)"
done < <(grep -nE "^[[:space:]]*#[[:space:]]*(el)?if.*($system_macros)" "${files[@]}")

# Links: a room is linked to what the table says, tests, benchmarks and fuzz targets to nothing else. The tests' own
# function links, too.
while read -r file; do
    room_of "$file"
    [[ -n $room ]] || continue
    linked=
    while read -r used; do
        [[ -n ${folder_of[$used]-} ]] || continue
        linked+=" $used "
        may_use "$room" "$used" || fail "$file: $room must not be linked to $used"
    done < <(sed 's/#.*//' "$file" | tr '\n' ' ' | grep -oE '(target_link_libraries|add_component_test)\([^)]*' |
        grep -oE '[[:alnum:]_:]+')
    [[ $file == @(Tests|Benchmarks|Fuzzing)/* || $file != "${folder_of[$room]}/CMakeLists.txt" ]] && continue
    for used in ${uses[$room]}; do
        [[ $linked == *" ${used%%/*} "* ]] || fail "$file: $room is not linked to ${used%%/*}, which it may use"
    done
done < <(sources '*CMakeLists.txt')

# Lines of code: neither blank nor a comment alone.
count() { sources "$@" | grep -E '\.(h|cpp)$' | xargs -d '\n' cat -- | grep -cvE '^[[:space:]]*(//.*)?$'; }
code=$(count Sources Packages Platform Include HostLibrary Tools)
tests=$(count Tests)
share=$((100 * tests / code))
echo "The tests are $share % of the code: $tests of $code lines."
((share >= least_share && share <= largest_share)) ||
    fail "The tests should be between $least_share and $largest_share % of the code."

((failures == 0))
