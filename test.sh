#!/usr/bin/env bash
# test.sh: builds everything and runs all tests.
# test.sh windows: the same for 64-bit Windows, cross-built and run under Wine; then both systems make their files from
# the same dumps, and these are compared byte for byte.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")"
. cmake/phases.sh

# build PRESET TARGETS...
build() {
    cmake --preset "$1"
    cmake --build --preset "$1" ${2:+--target "${@:2}"} -- --quiet
}

run_tests() { ctest --preset "$1" --parallel "$(nproc)"; }

case ${1-} in
'')
    phase "Installing" cmake/install-packages.sh </dev/null
    phase "Building" build debug
    step "Testing" run_tests debug
    ;;
windows)
    phase "Installing for Windows" cmake/install-packages.sh g++-mingw-w64-x86-64-posix wine64 dpkg-dev </dev/null
    phase "Building the libraries for Windows" cmake/windows-libraries.sh </dev/null
    phase "Building for Windows" build windows
    step "Testing for Windows" run_tests windows
    phase "Building the programs for Linux" build debug biosconfig BiosConfigModule FenrikCmd
    step "Comparing the systems" Tests/compare-systems.sh build/debug/bin build/windows/bin
    ;;
*)
    echo "usage: $0 [windows]" >&2
    exit 2
    ;;
esac
