#!/usr/bin/env bash
# Line and branch coverage of the test suite, per component folder: builds the
# project with gcc's --coverage into build-coverage/, runs the suite there and
# prints one row per folder (gcovr; branches that only exceptions take, and
# branches the compiler marks unreachable, are left out). Counters are updated
# atomically: batch's worker threads would otherwise leave counts gcov can't
# parse.
#
#   scripts/coverage.sh [--json FILE]   FILE: the per-folder figures as JSON too
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
if ! command -v gcovr >/dev/null; then
  sudo_cmd=""
  [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
  $sudo_cmd apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq gcovr >/dev/null
fi
json_out=""
if [ "${1:-}" = "--json" ]; then json_out=${2:?--json needs a file}; fi

build=build-coverage
jobs=$(nproc 2>/dev/null || echo 2)
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Debug -DTNEF_BUILD_BENCH=OFF \
  -DCMAKE_C_FLAGS="--coverage -fprofile-update=atomic" -DCMAKE_CXX_FLAGS="--coverage -fprofile-update=atomic" \
  -DCMAKE_EXE_LINKER_FLAGS=--coverage -DCMAKE_SHARED_LINKER_FLAGS=--coverage >/dev/null
cmake --build "$build" -j "$jobs" >/dev/null
find "$build" -name '*.gcda' -delete
# The gcov runtime linked into the shared objects calls malloc itself, so the
# checks that they import no allocator can't hold in this build.
ctest --test-dir "$build" -j "$jobs" --output-on-failure \
  -E 'ExportsOnlyTheEntryAndImportsNoAllocator|SharedObjectExportsOneFunctionAndNoHeap' >/dev/null

components="reader stream catalogue render ole oleio host client rtf mail cli"
filter=$(printf '%s|' $components)
gcovr --root . --object-directory "$build" -j "$jobs" --exclude-throw-branches \
  --exclude-unreachable-branches --filter "^(${filter%|})/" \
  --json-summary "$build/coverage-summary.json" >/dev/null

python3 - "$build/coverage-summary.json" "$components" "$json_out" <<'EOF'
import json, sys
summary = json.load(open(sys.argv[1]))
folders = {name: [0, 0, 0, 0] for name in sys.argv[2].split()}
for f in summary["files"]:
    top = f["filename"].split("/", 1)[0]
    if top in folders:
        t = folders[top]
        t[0] += f["line_covered"]; t[1] += f["line_total"]
        t[2] += f["branch_covered"]; t[3] += f["branch_total"]
pct = lambda a, b: round(100.0 * a / b, 1) if b else None
rows = {k: {"lines": pct(v[0], v[1]), "branches": pct(v[2], v[3]), "lineCount": v[1]}
        for k, v in folders.items() if v[1]}
print("| Folder | Lines | Branches |")
print("|---|---|---|")
for name, r in rows.items():
    br = "-" if r["branches"] is None else f'{r["branches"]} %'
    print(f'| {name} | {r["lines"]} % | {br} |')
if sys.argv[3]:
    json.dump(rows, open(sys.argv[3], "w"), indent=1)
EOF
