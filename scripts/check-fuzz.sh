#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (ASan + UBSan) into build-fuzz/,
# replays the seed corpora and the saved crash inputs (fuzz/regressions/),
# then fuzzes each target for FUZZ_SECONDS (default 60) seconds.
# A crash input is left in build-fuzz/crashes/<target>/: copy it to
# fuzz/regressions/<target>/ once the bug is fixed, so that it is replayed
# from then on.
# Usage: scripts/check-fuzz.sh [target ...]
set -euo pipefail
cd "$(dirname "$0")/.."
dir=build-fuzz
seconds=${FUZZ_SECONDS:-60}
jobs=$(( $(nproc) < 2 ? $(nproc) : 2 ))
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(fuzz_replies fuzz_command_file fuzz_dump_mem)

export ASAN_OPTIONS="halt_on_error=1:detect_leaks=1"
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"

start=$(date +%s)
cmake -S . -B "$dir" -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
      -DQUILLAROTH_FUZZ=ON -DBUILD_TESTING=OFF -DQUILLAROTH_WERROR=ON >/dev/null
cmake --build "$dir" -j "$jobs" --target "${targets[@]}" >/dev/null
built=$(date +%s)

# Every seed and every saved crash input, once through its target.
if ! (cd "$dir/fuzz" && ctest --output-on-failure) >"$dir/replay.log" 2>&1; then
  cat "$dir/replay.log"
  echo "check-fuzz: FAILED (replay of corpus/regressions)"
  exit 1
fi
echo "check-fuzz: replay: $(grep -E 'tests passed' "$dir/replay.log")"

failed=0
for target in "${targets[@]}"; do
  work="$dir/corpus/$target"
  crashes="$dir/crashes/$target"
  mkdir -p "$work" "$crashes"
  log="$dir/$target.log"
  status=0
  # The first directory collects new inputs; the checked-in seeds are only
  # read.
  "$dir/fuzz/$target" -max_total_time="$seconds" -print_final_stats=1 \
      -artifact_prefix="$crashes/" "$work" "fuzz/corpus/$target" \
      >"$log" 2>&1 || status=$?
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  cov=$(grep -oE 'cov: [0-9]+' "$log" | tail -1 || true)
  echo "check-fuzz: $target: ${runs:-?} executions in ${seconds} s, ${cov:-cov: ?}, corpus $(ls "$work" | wc -l) inputs, exit $status"
  if [ "$status" -ne 0 ]; then
    grep -E 'ERROR|SUMMARY|runtime error|Test unit written' "$log" || tail -20 "$log"
    failed=1
  fi
done
end=$(date +%s)
echo "check-fuzz: build $((built - start)) s, fuzzing $((end - built)) s"
if [ "$failed" -ne 0 ]; then
  echo "check-fuzz: FAILED"
  exit 1
fi
echo "check-fuzz: OK"
