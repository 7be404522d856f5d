#!/usr/bin/env bash
# test.sh: builds everything and runs all tests.
# test.sh windows: the same for 64-bit Windows, cross-built and run under Wine; then both systems make their files from
# the same dumps, and these are compared byte for byte.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")"

# run_tests PRESET
run_tests() {
    cmake --preset "$1" >/dev/null
    cmake --build --preset "$1" -- --quiet
    ctest --preset "$1" --parallel "$(nproc)"
}

case ${1-} in
'')
    cmake/install-packages.sh </dev/null
    run_tests debug
    ;;
windows)
    cmake/install-packages.sh g++-mingw-w64-x86-64-posix wine64 dpkg-dev </dev/null
    cmake/windows-libraries.sh </dev/null
    run_tests windows
    cmake --preset debug >/dev/null
    cmake --build --preset debug --target biosconfig BiosConfigModule FenrikCmd -- --quiet
    Tests/compare-systems.sh build/debug/bin build/windows/bin
    ;;
*)
    echo "usage: $0 [windows]" >&2
    exit 2
    ;;
esac
