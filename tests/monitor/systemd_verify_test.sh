#!/usr/bin/env bash
# systemd-analyze verify on quillaroth-refresh.service and .timer, as they
# would be installed: in a private root that holds the units in
# etc/systemd/system, the built quillaroth as usr/bin/quillaroth (verify
# checks that each ExecStart= program exists and is executable) and a copy
# of this machine's systemd units (timers.target, sysinit.target ...).
# Expects exit 0 and no output at all: verify only warns, with exit 0, on
# an unknown key.
# Usage: systemd_verify_test.sh UNIT_DIR QUILLAROTH_BINARY
# Exit 77 (skipped) when systemd-analyze or systemd's own units are missing.
set -u

unit_dir=$1
binary=$2
units=(quillaroth-refresh.service quillaroth-refresh.timer)

if ! command -v systemd-analyze >/dev/null; then
  echo "SKIP: systemd-analyze is not installed (Debian package systemd)"
  exit 77
fi
system_units=
for dir in /usr/lib/systemd/system /lib/systemd/system; do
  if [ -f "$dir/timers.target" ]; then system_units=$dir; break; fi
done
if [ -z "$system_units" ]; then
  echo "SKIP: systemd's own units (timers.target) are not installed"
  exit 77
fi

root=$(mktemp -d "${TMPDIR:-/tmp}/systemd_verify.XXXXXX") || exit 1
trap 'rm -rf "$root"' EXIT
(
  mkdir -p "$root/usr/bin" "$root/usr/lib/systemd" "$root/etc/systemd/system" &&
    cp -a "$system_units" "$root/usr/lib/systemd/system" &&
    install -m 0755 "$binary" "$root/usr/bin/quillaroth" &&
    for unit in "${units[@]}"; do
      install -m 0644 "$unit_dir/$unit" "$root/etc/systemd/system/$unit" ||
        exit 1
    done
) || { echo "FAIL: cannot lay out the private root $root"; exit 1; }

output=$(systemd-analyze verify --root="$root" "${units[@]}" 2>&1)
status=$?
if [ "$status" -ne 0 ] || [ -n "$output" ]; then
  echo "FAIL: systemd-analyze verify: exit status $status, output:"
  echo "$output"
  exit 1
fi
echo "PASS: systemd-analyze verify ${units[*]}: exit status 0, no output"
