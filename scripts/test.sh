#!/usr/bin/env bash
# Runs every test: installs what is missing, builds with warnings as errors,
# runs the CTest suite (unit, integration, end-to-end, install and newcomer
# tests), then the extra checks, each a script of its own,
# scripts/check-NAME.sh, that exits non-zero on failure.  Every stage prints
# an opening and a closing line with the time; a failed check does not stop
# the ones after it.  The last line counts the CTest tests and the checks
# (each check one test):
#   tests: N passed, M failed
# and the exit status is 0 when M is 0.
# Usage: scripts/test.sh
source "$(dirname "$0")/lib.sh"

# The extra checks, in the order they run: adding one is adding its name
# here and writing its script.
checks=(sanitizers valgrind fuzz static packaging)

passed=0
failed=0
results=()

# Notes one stage's outcome for the summary; $2 is its exit status.
note() {
  if [ "$2" -eq 0 ]; then results+=("passed  $1"); else results+=("FAILED  $1"); fi
}

# Prints the summary of the stages and the closing line, and exits.
finish() {
  echo "=== [$(now)] summary"
  printf '    %s\n' "${results[@]}"
  echo "tests: $passed passed, $failed failed"
  if [ "$failed" -eq 0 ]; then exit 0; fi
  exit 1
}

# Runs a stage that everything after it needs: the run ends if it fails.
needed() {
  local status=0
  stage "$@" || status=$?
  note "$1" "$status"
  if [ "$status" -ne 0 ]; then
    failed=$((failed + 1))
    finish
  fi
}

# Every check has its script, or the run fails before it starts.
for check in "${checks[@]}"; do
  if [ ! -x "scripts/check-$check.sh" ]; then
    echo "test.sh: scripts/check-$check.sh is missing or not executable: the check '$check' cannot run"
    results+=("FAILED  $check (no script)")
    failed=$((failed + 1))
  fi
done
[ "$failed" -eq 0 ] || finish

# Set-up and build: without them nothing else can run.
needed setup scripts/setup.sh
needed build scripts/build.sh build

# The CTest suite; its own summary line gives the counts.
log=$(mktemp)
trap 'rm -f "$log"' EXIT
run_ctest() { (cd build && ctest --output-on-failure -j "$check_jobs") | tee "$log"; }
status=0
stage ctest run_ctest || status=$?
summary=$(grep -E '^[0-9]+% tests passed, [0-9]+ tests failed out of [0-9]+' "$log" | tail -1 || true)
if [ -n "$summary" ]; then
  total=$(sed -E 's/.* out of ([0-9]+)$/\1/' <<<"$summary")
  ctest_failed=$(sed -E 's/.*, ([0-9]+) tests failed.*/\1/' <<<"$summary")
  passed=$((passed + total - ctest_failed))
  failed=$((failed + ctest_failed))
  # ctest failed with every test passed (an error of its own): one failure.
  if [ "$status" -ne 0 ] && [ "$ctest_failed" -eq 0 ]; then failed=$((failed + 1)); fi
  note "ctest ($summary)" "$status"
else
  # No summary: ctest itself failed (a bad configuration, no tests).
  failed=$((failed + 1))
  note "ctest (no test summary, exit $status)" 1
fi

for check in "${checks[@]}"; do
  status=0
  stage "$check" "scripts/check-$check.sh" || status=$?
  note "$check" "$status"
  if [ "$status" -eq 0 ]; then passed=$((passed + 1)); else failed=$((failed + 1)); fi
done

finish
