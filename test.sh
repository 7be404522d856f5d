#!/usr/bin/env bash
# Builds everything and runs all tests.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")"

cmake/install-packages.sh </dev/null
cmake --preset debug >/dev/null
cmake --build --preset debug -- --quiet
ctest --preset debug --parallel "$(nproc)"
