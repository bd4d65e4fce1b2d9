#!/usr/bin/env bash
# Builds the fuzz targets with clang (libFuzzer, ASan, UBSan), writes their
# seed corpora with our own writers, and runs each target for SECONDS
# (default 60) on its seeds plus whatever it found in earlier runs.
# A crash, leak, UB report, timeout or finding of any target fails the run;
# the input that caused it is kept under build-fuzz/findings/, and replaying
# it is `build-fuzz/fuzz/fuzz_TARGET FILE`.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh

seconds=${1:-60}
build=build-fuzz
jobs=$(nproc 2>/dev/null || echo 2)
CC=clang CXX=clang++ cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DTNEF_BUILD_FUZZ=ON -DTNEF_BUILD_TESTS=OFF -DTNEF_BUILD_CLI=OFF -DTNEF_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" -j "$jobs"

rm -rf "$build/seeds"
"$build/fuzz/make_fuzz_seeds" "$build/seeds"
mkdir -p "$build/corpus" "$build/findings"
export ASAN_OPTIONS="detect_leaks=1:${ASAN_OPTIONS:-}"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1:${UBSAN_OPTIONS:-}"

failed=()
for target in module rtf_decoder rtf_readers ole_descriptors compound_file mail; do
  corpus="$build/corpus/$target"
  log="$build/fuzz_$target.log"
  mkdir -p "$corpus"
  dict=()
  [ -f "fuzz/$target.dict" ] && dict=(-dict="fuzz/$target.dict")
  echo "== fuzz_$target for ${seconds}s"
  if "$build/fuzz/fuzz_$target" -max_total_time="$seconds" -timeout=25 -rss_limit_mb=2048 \
      -print_final_stats=1 "${dict[@]}" -artifact_prefix="$build/findings/$target-" \
      "$corpus" "$build/seeds/$target" >"$log" 2>&1; then
    grep -E '^(Done|stat::number_of_executed_units|stat::peak_rss_mb)' "$log" || true
    echo "   corpus: $(ls "$corpus" | wc -l) inputs"
  else
    failed+=("$target")
    tail -n 60 "$log"
  fi
done

if [ ${#failed[@]} -ne 0 ]; then
  echo "fuzzing found problems in: ${failed[*]} (inputs in $build/findings/)" >&2
  exit 1
fi
echo "fuzzing: no findings"
