# Shared pieces of the scripts in scripts/: sourced, never run.
#
#   source "$(dirname "$0")/lib.sh"
#
# puts the shell in strict mode (set -euo pipefail) and in the checkout's top
# folder, and gives:
#   build_jobs   parallel jobs of a build: every core
#   check_jobs   parallel jobs of a check run: at most two, because the tests
#                have real time-outs (1 s, 5 s, 30 s) and time bounds that a
#                crowded machine would miss
#   now          the time of day, for progress lines
#   since T      seconds elapsed since the epoch time T (from date +%s)
#   stage NAME COMMAND...
#                runs COMMAND as the stage NAME between an opening and a
#                closing line with the time:
#                  === [12:03:04] stage ctest: start
#                  === [12:03:55] stage ctest: passed in 51 s
#                and returns COMMAND's exit status

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

build_jobs=$(nproc)
check_jobs=$(( build_jobs < 2 ? build_jobs : 2 ))

# Prints the time of day (HH:MM:SS).
now() { date +%H:%M:%S; }

# Prints the seconds elapsed since the epoch time $1.
since() { echo $(( $(date +%s) - $1 )); }

# Runs a command as a named stage between its opening and closing lines;
# returns the command's exit status.
stage() {
  local name=$1 started status=0
  shift
  started=$(date +%s)
  echo "=== [$(now)] stage $name: start"
  "$@" || status=$?
  if [ "$status" -eq 0 ]; then
    echo "=== [$(now)] stage $name: passed in $(since "$started") s"
  else
    echo "=== [$(now)] stage $name: FAILED (exit $status) in $(since "$started") s"
  fi
  return "$status"
}
