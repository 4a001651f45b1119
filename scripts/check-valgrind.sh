#!/usr/bin/env bash
# Runs the integration tests with every filter run under valgrind memcheck,
# on the normal build (build/): each run must end with no memcheck error and
# no definitely lost block.  valgrind writes its reports to files of its own
# (one per filter process), so the filter's stderr that the tests compare is
# untouched; a run with errors exits 99, which also fails its test.
# Usage: scripts/check-valgrind.sh [extra gtest filter, default: all but the
#        30-second probe time-outs]
source "$(dirname "$0")/lib.sh"
dir=${QUILLAROTH_BUILD_DIR:-build}
filter=${1:--*NeverAnswered*:*UnansweredProbe*}

start=$(date +%s)
echo "check-valgrind: [$(now)] build integration_tests in $dir"
cmake -S . -B "$dir" -DQUILLAROTH_WERROR=ON
cmake --build "$dir" -j "$check_jobs" --target integration_tests
build_seconds=$(since "$start")

logs=$(mktemp -d /tmp/valgrind-logs.XXXXXX)
trap 'rm -rf "$logs"' EXIT
# Filter runs as an unprivileged user (the unreadable-file test) log here too.
chmod 1777 "$logs"
export QUILLAROTH_FILTER_WRAPPER="valgrind --quiet --error-exitcode=99 --leak-check=full --errors-for-leak-kinds=definite --show-leak-kinds=definite --track-fds=no --log-file=$logs/vg.%p"

echo "check-valgrind: [$(now)] integration tests, filter under memcheck (gtest filter $filter)"
tests_start=$(date +%s)
status=0
"$dir/tests/integration_tests" --gtest_filter="$filter" 2>&1 |
  tee "$logs/tests.log" || status=$?

runs=$(find "$logs" -name 'vg.*' | wc -l)
# With --quiet a clean run leaves an empty log; anything in one is a finding.
dirty=$(find "$logs" -name 'vg.*' -size +0 | wc -l)
errors=$(cat "$logs"/vg.* 2>/dev/null | grep -cE '^==[0-9]+== (Invalid|Conditional|Syscall param|Mismatched|Source and destination)' || true)
lost=$(cat "$logs"/vg.* 2>/dev/null | grep -cE 'definitely lost in' || true)
for f in $(find "$logs" -name 'vg.*' -size +0 | head -5); do
  echo "--- $f"; head -60 "$f"
done
passed=$(grep -E '^\[  PASSED  \]' "$logs/tests.log" || true)
echo "check-valgrind: $runs filter runs under memcheck, $dirty with findings ($errors errors, $lost definite leaks); tests: ${passed:-see above}; build $build_seconds s, tests $(since "$tests_start") s"
if [ "$status" -ne 0 ] || [ "$dirty" -ne 0 ] || [ "$runs" -eq 0 ]; then
  echo "check-valgrind: FAILED"
  exit 1
fi
echo "check-valgrind: OK"
