#!/usr/bin/env bash
# Builds everything with AddressSanitizer + UndefinedBehaviorSanitizer into
# build-asan/ and runs the whole CTest suite there: the first sanitizer
# finding aborts the process that made it, and so fails its test.
# Usage: scripts/check-sanitizers.sh [extra ctest args ...]
set -euo pipefail
cd "$(dirname "$0")/.."
dir=build-asan
jobs=$(( $(nproc) < 2 ? $(nproc) : 2 ))

# The integration tests LD_PRELOAD the sleep interposer into the filter;
# ASan insists on being first in the link order unless told otherwise.
export ASAN_OPTIONS="verify_asan_link_order=0:halt_on_error=1:abort_on_error=0:detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1:check_initialization_order=1"
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"

start=$(date +%s)
cmake -S . -B "$dir" -DQUILLAROTH_WERROR=ON \
      -DQUILLAROTH_SANITIZE=address,undefined >/dev/null
cmake --build "$dir" -j "$jobs" >/dev/null
built=$(date +%s)

log=$(mktemp)
trap 'rm -f "$log"' EXIT
status=0
(cd "$dir" && ctest --output-on-failure -j "$jobs" "$@") >"$log" 2>&1 || status=$?
end=$(date +%s)

# Whatever happened, show the failures and the sanitizer reports in full.
if [ "$status" -ne 0 ]; then
  grep -vE '^ *(Start +[0-9]+:|[0-9]+/[0-9]+ Test +#[0-9]+: .* Passed )' "$log"
fi
findings=$(grep -cE '^(==[0-9]+==ERROR: |SUMMARY: (Address|UndefinedBehavior|Leak)Sanitizer)|runtime error:' "$log" || true)
summary=$(grep -E 'tests passed|tests failed' "$log" | tail -1)
echo "check-sanitizers: ${summary:-no test summary}; sanitizer findings: $findings; build $((built - start)) s, tests $((end - built)) s"
if [ "$status" -ne 0 ] || [ "$findings" -ne 0 ]; then
  echo "check-sanitizers: FAILED"
  exit 1
fi
echo "check-sanitizers: OK"
