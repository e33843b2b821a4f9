#!/usr/bin/env bash
# Installs the dependencies, builds, and runs every test.
#   scripts/run-tests.sh              a normal build in build/
#   scripts/run-tests.sh --sanitize   the same with ASan and UBSan, in build-sanitize/
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
build=build
# Set every time: a cache from another configuration must not turn the tests off.
options=(-DLLDPSNMP_TESTS=ON)
if [ "${1:-}" = "--sanitize" ]; then
  build=build-sanitize
  options+=(-DLLDPSNMP_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug)
  export ASAN_OPTIONS=detect_leaks=0:abort_on_error=1
  export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
fi
cmake -S . -B "$build" "${options[@]}"
cmake --build "$build" -j"$(nproc)"
ctest --test-dir "$build" --output-on-failure --no-tests=error -j"$(nproc)"
