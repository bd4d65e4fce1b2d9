#!/usr/bin/env bash
# Whole-process figures of tnef-reader side by side with cat and dd, in one
# run: open + list time beyond start-up, extraction throughput against a
# plain copy of the same bytes, peak memory for several stream sizes, and
# batch scaling with --jobs.
#
#   bench/compare.sh [SIZE]     SIZE of the large stream, default 512M (K, M, G)
#
# Builds the tool and the stream maker into build/ when needed, works in a
# scratch folder under $TMPDIR (or /tmp) and removes it at the end.
set -euo pipefail
cd "$(dirname "$0")/.."
size="${1:-512M}"
build=build

configure() {
  cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTNEF_BUILD_BENCH=ON "$@" >/dev/null
}
[ -f "$build/CMakeCache.txt" ] || configure
if ! cmake --build "$build" -j2 --target tnef-reader make-big-stream measure-run >/dev/null 2>&1; then
  # An older build folder without the benches: configure them in and try again.
  configure
  if ! cmake --build "$build" -j2 --target tnef-reader make-big-stream measure-run >/dev/null; then
    echo "compare: cannot build tnef-reader and the bench helpers (is libbenchmark-dev installed?" \
         "scripts/install-deps.sh installs it)" >&2
    exit 1
  fi
fi
type=$(sed -n 's/^CMAKE_BUILD_TYPE:[A-Z]*=//p' "$build/CMakeCache.txt")
case "$type" in
  Release|RelWithDebInfo) ;;
  *) echo "compare: warning: $build is a '$type' build; the figures want Release or RelWithDebInfo" >&2 ;;
esac

work=$(mktemp -d "${TMPDIR:-/tmp}/tnef-compare.XXXXXX")
trap 'rm -rf "$work"' EXIT
trap 'exit 130' INT TERM
python3 bench/compare.py --tool "$build/cli/tnef-reader" --maker "$build/bench/make-big-stream" \
  --measure "$build/bench/measure-run" --work "$work" --size "$size"
