#!/usr/bin/env bash
# The suite where a newcomer puts it: copies the checkout (the files git
# tracks and the new ones it does not ignore, with their uncommitted
# changes) to a folder whose path holds what a shell, a glob or a quoted
# string would read as syntax (blanks, quotes, parentheses, "&", "$",
# brackets) and non-ASCII letters, below a private folder (mode 0700, owned
# by the user running the test, as a home folder is), builds there what
# the integration tests need (the filter, the simulated printer, the sleep
# interposer, integration_tests) and runs a few of them there: the ones
# that preload libraries by path into the filter, and the one that runs the
# filter as "nobody" when run as root.
#
# Prints its progress with the time.  Takes about 35 s on two cores (a Debug
# build of about 30 s, then 8 tests; a minute more when the sleep interposer
# fails to load and the printer that never wakes costs its real waits);
# CTest stops it after 900 s.  The copy is removed afterwards unless
# QUILLAROTH_NEWCOMER_KEEP=1.  Skipped (exit 77) when the source is not a
# git checkout: only git knows which files belong to it.
#
# Usage: newcomer_test.sh SOURCE_DIR [extra cmake args ...]
source "$1/scripts/lib.sh"
shift

tests="WakeUpWait.*:PrinterTransaction.ShortWriteOfTheWakeUpEndsWithStatus1:CommandFileOpenTest.UnreadableFile"
started=$(date +%s)

list=$(mktemp)
if ! git ls-files -co --exclude-standard -z >"$list" 2>"$list.err"; then
  echo "newcomer: SKIPPED: $PWD is not a git checkout ($(head -1 "$list.err")): no list of its files to copy"
  rm -f "$list" "$list.err"
  exit 77
fi
rm -f "$list.err"

top=$(mktemp -d /tmp/quillaroth-newcomer.XXXXXX)
chmod 700 "$top"
checkout="$top/Mon dossier/l'essai (v2) & \$HOME [x]/réplique é"
cleanup() {
  rm -f "$list"
  if [ "${QUILLAROTH_NEWCOMER_KEEP:-0}" = 1 ]; then
    echo "newcomer: kept $top"
  else
    rm -rf "$top"
  fi
}
trap cleanup EXIT

# Files that git still tracks but that are deleted in the work tree are not
# part of the checkout any more.
echo "newcomer: [$(now)] copy of $PWD to $checkout/src"
mkdir -p "$checkout/src"
while IFS= read -r -d '' file; do
  if [ -e "$file" ] || [ -L "$file" ]; then printf '%s\0' "$file"; fi
done <"$list" | tar -cf - --null --no-recursion -T - | tar -xf - -C "$checkout/src"
echo "newcomer: $(find "$checkout/src" -type f | wc -l) files copied"

echo "newcomer: [$(now)] configure and build integration_tests in $checkout/build"
cmake -S "$checkout/src" -B "$checkout/build" -DCMAKE_BUILD_TYPE=Debug \
  -DQUILLAROTH_WERROR=ON "$@"
cmake --build "$checkout/build" -j "$check_jobs" --target integration_tests

echo "newcomer: [$(now)] integration tests from $checkout/src (user $(id -un)): $tests"
cd "$checkout/src"
status=0
"$checkout/build/tests/integration_tests" --gtest_filter="$tests" || status=$?
echo "newcomer: [$(now)] exit status $status after $(since "$started") s"
exit "$status"
