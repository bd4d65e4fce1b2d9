#!/usr/bin/env bash
# Rebuilds samples/demo.tnef with our own writer.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build >/dev/null
cmake --build build --target make-demo-sample -j "$(nproc 2>/dev/null || echo 2)"
./build/samples/make-demo-sample samples/demo.tnef
echo "wrote samples/demo.tnef"
