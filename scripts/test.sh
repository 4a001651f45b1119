#!/usr/bin/env bash
# Runs every test: installs what is missing, builds with warnings as errors,
# runs the unit, integration and end-to-end suites, then the extra checks.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
scripts/build.sh build
(cd build && ctest --output-on-failure -j "$(nproc)")

# Further stages (sanitizers, memory checks, fuzzing, static analysis), each
# a script of its own that exits non-zero on failure.
for stage in sanitizers valgrind fuzz static; do
  if [ -x "scripts/check-$stage.sh" ]; then
    echo "=== check-$stage ==="
    "scripts/check-$stage.sh"
  fi
done
