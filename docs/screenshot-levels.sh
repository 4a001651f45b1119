#!/usr/bin/env bash
# Takes docs/images/ink-levels.png: the "Ink/Toner Levels" page of a queue's
# properties in system-config-printer, after its "Refresh" button has sent
# the queue a "ReportLevels" command job that commandtoquillaroth answered.
#
# Everything runs in a private folder under /tmp: the simulated printer as a
# network printer on a free loopback port (quillaroth-sim --listen), a cupsd
# on another with the filter and CUPS' own socket backend, a queue on
# socket://127.0.0.1:PORT, and system-config-printer on a virtual X display
# (Xvfb, openbox) in a D-Bus session of its own.  The system's CUPS
# configuration, spool and scheduler are never used.  Needs root (cupsd runs
# as root); installs the Debian packages it needs.
#
# Usage: docs/screenshot-levels.sh [--remaining N] [--total N] [--sheet XXXX]
#                                  [--out FILE]
#   defaults: 120 of 350 prints left on a ribbon of type 8f10,
#             docs/images/ink-levels.png
# Set QUILLAROTH_SHOT_KEEP=1 to keep the private folder (logs) afterwards.
set -euo pipefail

remaining=120
total=350
sheet=8f10
out=
while [ $# -gt 0 ]; do
  case "$1" in
    --remaining) remaining=$2; shift 2 ;;
    --total) total=$2; shift 2 ;;
    --sheet) sheet=$2; shift 2 ;;
    --out) out=$(realpath -m "$2"); shift 2 ;;
    *) echo "usage: $0 [--remaining N] [--total N] [--sheet XXXX] [--out FILE]" >&2
       exit 2 ;;
  esac
done
# The picture is of a level: counts the filter turns into a percentage.
if ! [[ $total =~ ^[0-9]+$ && $remaining =~ ^[0-9]+$ && $sheet =~ ^[0-9a-fA-F]{4}$ ]] ||
   [ "$total" -lt 1 ] || [ "$total" -gt 65534 ] || [ "$remaining" -gt 65534 ]; then
  echo "screenshot: --total must be 1-65534, --remaining 0-65534, --sheet 4 hex digits" >&2
  exit 2
fi
cd "$(dirname "$0")/.."
out=${out:-docs/images/ink-levels.png}
queue=photo

say() { echo "screenshot: $*"; }

# Runs the command until it succeeds, ten seconds at most; its last status.
wait_until() {
  for _ in $(seq 100); do
    "$@" && return 0
    sleep 0.1
  done
  "$@"
}

# Shows the log of what did not start, says so and ends the run.
not_started() {
  cat "$1" >&2
  say "$2 did not start"
  exit 1
}

if [ "$(id -u)" -ne 0 ]; then
  echo "screenshot: must run as root: cupsd runs as root and starts the filter and backend as lp" >&2
  exit 1
fi

say "installing missing Debian packages"
scripts/setup.sh system-config-printer python3-gi-cairo xvfb openbox xdotool \
  x11-utils imagemagick dbus-daemon at-spi2-core python3-pyatspi

say "building the filter and the simulated printer into build/"
cmake -S . -B build -DQUILLAROTH_WERROR=ON >/dev/null
cmake --build build -j2 --target commandtoquillaroth quillaroth-sim >/dev/null

root=$(mktemp -d /tmp/quillaroth-shot.XXXXXX)
pids=()
# Stops what was started, the last first (openbox before its X display).
cleanup() {
  for ((i = ${#pids[@]} - 1; i >= 0; i--)); do
    kill "${pids[i]}" 2>/dev/null || true
    wait "${pids[i]}" 2>/dev/null || true
  done
  if [ "${QUILLAROTH_SHOT_KEEP:-0}" = 1 ]; then
    say "kept $root"
  else
    rm -rf "$root"
  fi
}
trap cleanup EXIT
trap 'exit 130' INT TERM

say "private CUPS tree in $root"
# The scheduler of the end-to-end tests, with the filter and CUPS' own
# socket backend in a server folder of its own.
source tests/e2e/private_cupsd.sh
mkdir -p "$root"/{bin/filter,bin/backend,bin/daemon}
install -m 0755 build/commandtoquillaroth "$root/bin/filter/commandtoquillaroth"
serverbin=$(cups-config --serverbin 2>/dev/null || echo /usr/lib/cups)
datadir=$(cups-config --datadir 2>/dev/null || echo /usr/share/cups)
ln -s "$serverbin/backend/socket" "$root/bin/backend/socket"
ln -s "$serverbin/daemon/cups-exec" "$root/bin/daemon/cups-exec"
say "starting cupsd"
private_cupsd_start "$root" "$root/bin" "$datadir" || not_started /dev/null cupsd
pids+=("$private_cupsd_pid")
export CUPS_SERVER=$private_cupsd_server
say "cupsd answers on $CUPS_SERVER"

say "starting the simulated printer: quillaroth-sim --listen 127.0.0.1:0 --total $total --remaining $remaining --sheet $sheet"
build/sim/quillaroth-sim --listen 127.0.0.1:0 --total "$total" \
  --remaining "$remaining" --sheet "$sheet" --log "$root/log/sim.log" \
  >"$root/log/sim.out" 2>&1 &
pids+=($!)
sim_listens() { grep -q '^listening on ' "$root/log/sim.out"; }
wait_until sim_listens || not_started "$root/log/sim.out" "the simulated printer"
uri="socket://$(sed -n 's/^listening on //p' "$root/log/sim.out")"

say "adding the queue $queue on $uri"
# (lpadmin warns that printer drivers are deprecated; the queue works.)
lpadmin -p "$queue" -E -v "$uri" -P ppd/quillaroth-sim.ppd 2>"$root/log/lpadmin.err" ||
  { cat "$root/log/lpadmin.err" >&2; exit 1; }

say "starting Xvfb"
Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp \
  3>"$root/display" >"$root/log/xvfb.log" 2>&1 &
pids+=($!)
display_open() { [ -s "$root/display" ]; }
wait_until display_open || not_started "$root/log/xvfb.log" Xvfb
export DISPLAY=:$(cat "$root/display")

say "display $DISPLAY; starting the window manager (openbox)"
openbox --sm-disable >"$root/log/openbox.log" 2>&1 &
pids+=($!)
wm_runs() { xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id'; }
wait_until wm_runs || not_started "$root/log/openbox.log" openbox

mkdir -p "$(dirname "$out")"
expected=$((remaining * 100 / total))
status=0
dbus-run-session -- /usr/bin/python3 docs/screenshot-levels-gui.py \
  "$queue" "$expected" "$out" "$root/log/system-config-printer.log" \
  2> >(grep --line-buffered -v -e '^dbus-daemon' -e '^SpiRegistry' >&2) ||
  status=$?

say "what the filter reported for the command job (from cupsd's log):"
sed -n -E 's/^.*\[Job [0-9]+\] ((ATTR: marker|STATE: \+com\.quillaroth-).*)$/  \1/p' \
  "$root/log/error_log"
say "what the simulated printer saw:"
sed 's/^/  /' "$root/log/sim.log"
if [ "$status" -ne 0 ]; then
  QUILLAROTH_SHOT_KEEP=1
  say "failed; the logs are in $root/log"
  exit "$status"
fi
say "done in $SECONDS s: $out shows ${expected}% ($remaining of $total)"
