#!/usr/bin/env bash
# Builds the tool and shows what the demo stream in samples/ holds.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j "$(nproc 2>/dev/null || echo 2)" --target tnef-reader tnefreader zdolefio
echo
./build/cli/tnef-reader list samples/demo.tnef
echo
./build/cli/tnef-reader props samples/demo.tnef
echo
echo "== the message rendered as HTML (summary header, then the stored body):"
./build/cli/tnef-reader show --format html samples/demo.tnef
echo
out=$(mktemp -d)
./build/cli/tnef-reader extract samples/demo.tnef -C "$out"
echo
echo "== the unpacked OLE package ($out/hello.txt):"
cat "$out/hello.txt"
