#!/usr/bin/env bash
# Builds libFuzzer targets with clang (ASan + UBSan) into build-fuzz/,
# replays their seed corpora and saved crash inputs (fuzz/regressions/),
# then fuzzes each target for FUZZ_SECONDS (default 60) seconds.
# The targets are the ones named, or else every fuzz/fuzz_*.cc.
# A crash input is left in build-fuzz/crashes/<target>/: copy it to
# fuzz/regressions/<target>/ once the bug is fixed, so that it is replayed
# from then on.
# Usage: scripts/check-fuzz.sh [target ...]
#   e.g. FUZZ_SECONDS=5 scripts/check-fuzz.sh fuzz_dump_mem
source "$(dirname "$0")/lib.sh"
dir=build-fuzz
seconds=${FUZZ_SECONDS:-60}

known=()
for source in fuzz/fuzz_*.cc; do
  [ -e "$source" ] && known+=("$(basename "$source" .cc)")
done
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=("${known[@]}")
if [ ${#targets[@]} -eq 0 ]; then
  echo "check-fuzz: no fuzz target (no fuzz/fuzz_*.cc)"
  exit 1
fi
for target in "${targets[@]}"; do
  if [ ! -e "fuzz/$target.cc" ]; then
    echo "check-fuzz: unknown target '$target'; the targets: ${known[*]}"
    exit 1
  fi
done

export ASAN_OPTIONS="halt_on_error=1:detect_leaks=1"
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"

start=$(date +%s)
echo "check-fuzz: [$(now)] build ${targets[*]} into $dir"
cmake -S . -B "$dir" -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
      -DQUILLAROTH_FUZZ=ON -DBUILD_TESTING=OFF -DQUILLAROTH_WERROR=ON
cmake --build "$dir" -j "$check_jobs" --target "${targets[@]}"
built=$(date +%s)

# Every seed and every saved crash input of the targets, once through their
# target (the CTest test fuzz_replay_<target>; a target with no input has
# none).
echo "check-fuzz: [$(now)] replay of the corpora and regression inputs"
replays=()
for target in "${targets[@]}"; do
  listed=$(cd "$dir/fuzz" && ctest -N -R "^fuzz_replay_$target\$")
  if grep -q '^Total Tests: 1$' <<<"$listed"; then
    replays+=("fuzz_replay_$target")
  else
    echo "check-fuzz: $target: no seed or regression input to replay"
  fi
done
if [ ${#replays[@]} -gt 0 ]; then
  regex="^($(IFS='|'; echo "${replays[*]}"))\$"
  if ! (cd "$dir/fuzz" && ctest --output-on-failure -R "$regex") >"$dir/replay.log" 2>&1; then
    cat "$dir/replay.log"
    echo "check-fuzz: FAILED (replay of corpus/regressions)"
    exit 1
  fi
  echo "check-fuzz: replay: $(grep -E 'tests passed' "$dir/replay.log")"
fi

failed=0
fuzz_start=$(date +%s)
for target in "${targets[@]}"; do
  work="$dir/corpus/$target"
  crashes="$dir/crashes/$target"
  mkdir -p "$work" "$crashes"
  log="$dir/$target.log"
  status=0
  echo "check-fuzz: [$(now)] $target: fuzzing for $seconds s"
  # The first directory collects new inputs; the checked-in seeds are only
  # read.
  seeds=()
  [ -d "fuzz/corpus/$target" ] && seeds=("fuzz/corpus/$target")
  "$dir/fuzz/$target" -max_total_time="$seconds" -print_final_stats=1 \
      -artifact_prefix="$crashes/" "$work" "${seeds[@]}" \
      >"$log" 2>&1 || status=$?
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  cov=$(grep -oE 'cov: [0-9]+' "$log" | tail -1 || true)
  echo "check-fuzz: $target: ${runs:-?} executions in ${seconds} s, ${cov:-cov: ?}, corpus $(ls "$work" | wc -l) inputs, exit $status"
  if [ "$status" -ne 0 ]; then
    grep -E 'ERROR|SUMMARY|runtime error|Test unit written' "$log" || tail -20 "$log"
    failed=1
  fi
done
echo "check-fuzz: build $((built - start)) s, fuzzing $(since "$fuzz_start") s"
if [ "$failed" -ne 0 ]; then
  echo "check-fuzz: FAILED"
  exit 1
fi
echo "check-fuzz: OK"
