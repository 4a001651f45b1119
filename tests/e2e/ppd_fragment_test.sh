#!/usr/bin/env bash
# The PPD fragment for existing queues must carry exactly the filter,
# command and state-reason lines of the simulated printer's PPD, so that a
# queue built from either shows the same texts.
# Usage: ppd_fragment_test.sh SOURCE_DIR
set -euo pipefail

fragment=$(grep -v '^\*%' "$1/ppd/quillaroth-command-filter.txt")
from_ppd=$(grep -E '^\*(cupsFilter2|cupsCommands|cupsIPPReason)' "$1/ppd/quillaroth-sim.ppd")
if [ "$fragment" != "$from_ppd" ]; then
  echo "FAIL: fragment and PPD differ"
  diff <(printf '%s\n' "$from_ppd") <(printf '%s\n' "$fragment") || true
  exit 1
fi
echo "ok: fragment matches the PPD"
