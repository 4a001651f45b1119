#!/usr/bin/env bash
# promtool check rules on examples/quillaroth.rules.yml, then promtool test
# rules on tests/monitor/quillaroth.rules.test.yml, which feeds series
# through every rule and says which alerts fire when.  Each must exit 0
# and print exactly its success report.
# Usage: rules_test.sh SOURCE_DIR
# Exit 77 (skipped) when promtool (Debian package prometheus) is missing.
set -u

cd "$1" || exit 1
if ! command -v promtool >/dev/null; then
  echo "SKIP: promtool is not installed (Debian package prometheus)"
  exit 77
fi

failed=0
# Runs promtool with the arguments and compares its exit status and all
# it prints with status 0 and the expected text.
expect() {
  local expected=$1
  shift
  local output status
  output=$(promtool "$@" 2>&1; echo "status $?")
  status=${output##*status }
  output=${output%status *}
  if [ "$status" = 0 ] && [ "$output" = "$expected" ]; then
    echo "PASS: promtool $*"
  else
    echo "FAIL: promtool $*: exit status $status, output:"
    printf '%s' "$output"
    failed=1
  fi
}

expect $'Checking examples/quillaroth.rules.yml\n  SUCCESS: 6 rules found\n\n' \
  check rules examples/quillaroth.rules.yml
expect $'Unit Testing:  tests/monitor/quillaroth.rules.test.yml\n  SUCCESS\n\n' \
  test rules tests/monitor/quillaroth.rules.test.yml
exit $failed
