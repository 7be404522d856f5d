#!/usr/bin/env bash
# run.sh [--long]: builds the release and the measuring programs, and prints what requests cost beside the goals. Takes
# about three minutes, with --long a quarter of an hour, and 4 GB of memory.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."

cmake/install-packages.sh libbenchmark-dev libbsd-dev libglib2.0-dev pkgconf xsltproc valgrind </dev/null
cmake --preset release -DBIOSCONFIG_BUILD_BENCHMARKS=ON >/dev/null
cmake --build --preset release -- --quiet
python3 Benchmarks/measure.py build/release/bin "$@"
Benchmarks/check-instructions.sh || true
