#!/usr/bin/env bash
# Runs every test: installs what is missing, builds with warnings as errors,
# runs the unit, integration and end-to-end suites, then the extra checks.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
scripts/build.sh build
log=$(mktemp)
trap 'rm -f "$log"' EXIT
(cd build && ctest --output-on-failure -j "$(nproc)") | tee "$log"
summary=$(grep -E '^[0-9]+% tests passed, [0-9]+ tests failed out of [0-9]+' "$log" | tail -1)

# Further stages (sanitizers, memory checks, fuzzing, static analysis), each
# a script of its own that exits non-zero on failure.
for stage in sanitizers valgrind fuzz static; do
  if [ -x "scripts/check-$stage.sh" ]; then
    echo "=== check-$stage ==="
    "scripts/check-$stage.sh"
  fi
done

# One closing line for the whole run: the CTest suite's count (the extra
# stages above have passed if we got here).
total=$(sed -E 's/.* out of ([0-9]+)$/\1/' <<<"$summary")
failed=$(sed -E 's/.*, ([0-9]+) tests failed.*/\1/' <<<"$summary")
echo "tests: $((total - failed)) passed, $failed failed"

