#!/usr/bin/env bash
# Builds the tool for release and makes its Debian package,
# build-package/tnef-reader_VERSION_ARCH.deb, with its dependencies declared.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh

build=build-package
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DTNEF_BUILD_TESTS=OFF -DTNEF_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" -j "$(nproc 2>/dev/null || echo 2)"
(cd "$build" && cpack -G DEB)
ls "$build"/tnef-reader_*.deb
