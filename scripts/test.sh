#!/usr/bin/env bash
# Builds the project and runs every test, then builds the browser viewer and
# runs its tests in Chromium. With --sanitize, builds and runs the C++ suite
# under AddressSanitizer and UndefinedBehaviorSanitizer (the viewer's tests
# run once, in the plain run).
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh

build=build
flags=(-DCMAKE_BUILD_TYPE=RelWithDebInfo)
if [ "${1:-}" = "--sanitize" ]; then
  build=build-asan
  flags=(-DCMAKE_BUILD_TYPE=Debug -DTNEF_SANITIZE=ON -DTNEF_BUILD_BENCH=OFF)
  export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1:${ASAN_OPTIONS:-}"
  export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1:${UBSAN_OPTIONS:-}"
fi
jobs=$(nproc 2>/dev/null || echo 2)
cmake -S . -B "$build" "${flags[@]}" >/dev/null
cmake --build "$build" -j "$jobs"
ctest --test-dir "$build" --output-on-failure -j "$jobs"
if [ "${1:-}" != "--sanitize" ]; then
  ./scripts/web.sh
  TNEF_BUILD="$PWD/$build" node --test web/tests/viewer.test.mjs
fi
