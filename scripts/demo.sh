#!/usr/bin/env bash
# Builds everything (installing missing Debian packages) and runs the filter
# against the simulated printer on a sample command file, showing the log
# the scheduler would read: the trace, the state reasons and the markers.
# The set-up and the build show their progress (a minute or two on a fresh
# machine); the demo's own output follows the line of "#".
#
# Usage: scripts/demo.sh [simulator options ...]
#   e.g. scripts/demo.sh --error 060202
#        scripts/demo.sh --wake-after 3 --remaining 0
source "$(dirname "$0")/lib.sh"

started=$(date +%s)
echo "demo: [$(now)] set-up (scripts/setup.sh)"
scripts/setup.sh
echo "demo: [$(now)] build (scripts/build.sh build)"
scripts/build.sh build
echo "demo: [$(now)] ready after $(since "$started") s"

log=$(mktemp)
trap 'rm -f "$log"' EXIT
echo
printf '#%.0s' {1..72}
echo
echo "=== build/sim/quillaroth-sim$(printf ' %q' "$@") -- \\"
echo "===   build/commandtoquillaroth 1 demo demo 1 '' examples/commands.txt"
echo "=== (the filter's stderr, as the scheduler reads it)"
status=0
build/sim/quillaroth-sim --log "$log" "$@" -- \
  build/commandtoquillaroth 1 demo demo 1 '' examples/commands.txt || status=$?
echo "=== exit status: $status"
echo "=== what the simulated printer saw"
cat "$log"
