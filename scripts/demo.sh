#!/usr/bin/env bash
# Builds everything (installing missing Debian packages) and runs the filter
# against the simulated printer on a sample command file, showing the log
# the scheduler would read: the trace, the state reasons and the markers.
#
# Usage: scripts/demo.sh [simulator options ...]
#   e.g. scripts/demo.sh --error 060202
#        scripts/demo.sh --wake-after 2 --remaining 0
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
scripts/build.sh build >/dev/null

log=$(mktemp)
trap 'rm -f "$log"' EXIT
echo "=== commandtoquillaroth 1 demo demo 1 '' examples/commands.txt"
echo "=== (stderr, as the scheduler reads it)"
status=0
build/sim/quillaroth-sim --log "$log" "$@" -- \
  build/commandtoquillaroth 1 demo demo 1 '' examples/commands.txt || status=$?
echo "=== exit status: $status"
echo "=== what the simulated printer saw"
cat "$log"
