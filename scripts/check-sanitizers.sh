#!/usr/bin/env bash
# Builds everything with AddressSanitizer + UndefinedBehaviorSanitizer into
# build-asan/ and runs the CTest suite there: the first sanitizer finding
# aborts the process that made it, and so fails its test.  The newcomer test
# is left out: it builds and runs a copy of its own, without sanitizers.
# Usage: scripts/check-sanitizers.sh [extra ctest args ...]
source "$(dirname "$0")/lib.sh"
dir=build-asan

# The integration tests LD_PRELOAD the sleep interposer into the filter;
# ASan insists on being first in the link order unless told otherwise.
export ASAN_OPTIONS="verify_asan_link_order=0:halt_on_error=1:abort_on_error=0:detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1:check_initialization_order=1"
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"

start=$(date +%s)
echo "check-sanitizers: [$(now)] build into $dir"
cmake -S . -B "$dir" -DQUILLAROTH_WERROR=ON \
      -DQUILLAROTH_SANITIZE=address,undefined
cmake --build "$dir" -j "$check_jobs"
build_seconds=$(since "$start")

log=$(mktemp)
trap 'rm -f "$log"' EXIT
echo "check-sanitizers: [$(now)] CTest suite in $dir"
tests_start=$(date +%s)
status=0
(cd "$dir" && ctest --output-on-failure -j "$check_jobs" -LE newcomer "$@") 2>&1 |
  tee "$log" || status=$?

findings=$(grep -cE '^(==[0-9]+==ERROR: |SUMMARY: (Address|UndefinedBehavior|Leak)Sanitizer)|runtime error:' "$log" || true)
summary=$(grep -E 'tests passed|tests failed' "$log" | tail -1)
echo "check-sanitizers: ${summary:-no test summary}; sanitizer findings: $findings; build $build_seconds s, tests $(since "$tests_start") s"
if [ "$status" -ne 0 ] || [ "$findings" -ne 0 ]; then
  echo "check-sanitizers: FAILED"
  exit 1
fi
echo "check-sanitizers: OK"
