#!/usr/bin/env bash
# Runs every command block of README.md and docs/*.md that is marked
# runnable, so that the documentation cannot drift from what the commands
# do.  A marker stands on the line right before a ```sh block:
#
#   <!-- runnable -->         runs as any user, with no scheduler
#   <!-- runnable: root -->   runs as root, against a private scheduler
#
# Usage: runnable_blocks_test.sh SOURCE_DIR BUILD_DIR user|root
#                                [CUPS_SERVER_BIN CUPS_DATA_DIR]
#
# "user" runs the blocks marked for any user, "root" the root ones.  Each
# block runs with bash -euo pipefail, within 300 s, in the work folder of
# its file (the blocks of one file run in order there, as a reader follows
# them), whose top-level entries are links to the checkout's, with "build"
# a link to BUILD_DIR, and with the build's quillaroth and quillaroth-sim
# first on PATH.  The user blocks run as the build's owner would: another
# user is skipped.  A block runs in a session of its own; what it starts
# in the background ("&") must still run half a second after it ends, and
# runs on until a later block starts something in the background, or the
# run ends.  A failed block is shown with its output.
#
# The root blocks run in a network and mount namespace of their own: a
# private cupsd (tests/e2e/private_cupsd.sh) with the build's filter and
# simulated printer's backend in its server folder takes CUPS' own port
# 631 on a loopback of their own, CUPS_SERVER names it, "sudo" runs its
# command as it is, and /usr/share/ppd holds the simulated printer's PPD
# where the package puts it.  Neither the system's scheduler nor its files
# are touched.
#
# The blocks write files in /tmp by name (/tmp/sim.log, ...): when one of
# those is there before the run the test is skipped, and what the blocks
# made there is removed afterwards.  Exit status 0 when every block ended
# with 0, 1 when one did not, 77 (skipped) with the reason when the blocks
# cannot run here.
set -uo pipefail

readonly kBlockSeconds=300

skip() {
  echo "SKIP: $*"
  exit 77
}

if [ $# -lt 3 ]; then
  echo "usage: $0 SOURCE_DIR BUILD_DIR user|root [CUPS_SERVER_BIN CUPS_DATA_DIR]" >&2
  exit 2
fi
source_dir=$(cd "$1" && pwd) || exit 2
build_dir=$(cd "$2" && pwd) || exit 2
mode=$3
server_bin=${4:-/usr/lib/cups}
data_dir=${5:-/usr/share/cups}
case "$mode" in
  user) wanted="runnable" ;;
  root) wanted="runnable: root" ;;
  *) echo "$0: the mode is user or root, not '$mode'" >&2; exit 2 ;;
esac

# Prints the marked blocks of the documents as records: a line
# "@@ FILE:LINE" (the line of the block's opening fence), then the block's
# lines.  A marker that does not stand right before a ```sh block, or a
# block that does not end, is an error of the document.
extract_blocks() {
  local file
  for file in README.md docs/*.md; do
    [ -f "$source_dir/$file" ] || continue
    awk -v file="$file" -v wanted="<!-- $wanted -->" '
      pending {
        if ($0 != indent "```sh") {
          printf "%s:%d: a runnable marker must stand right before a ```sh block\n",
                 file, NR - 1 > "/dev/stderr"
          bad = 1
        } else {
          print "@@ " file ":" NR
          inside = 1
        }
        pending = 0
        next
      }
      inside && $0 == indent "```" { inside = 0; next }
      inside {
        if (substr($0, 1, length(indent)) == indent) print substr($0, length(indent) + 1)
        else print
        next
      }
      /^ *<!-- runnable/ {
        text = $0
        sub(/^ */, "", text)
        if (text != "<!-- runnable -->" && text != "<!-- runnable: root -->") {
          printf "%s:%d: unknown marker %s\n", file, NR, text > "/dev/stderr"
          bad = 1
        } else if (text == wanted) {
          # A block in a list item is indented as its marker is.
          indent = substr($0, 1, length($0) - length(text))
          pending = 1
        }
      }
      END {
        if (inside) { printf "%s: a runnable block does not end\n", file > "/dev/stderr"; bad = 1 }
        if (bad) exit 1
      }' "$source_dir/$file" || return 1
  done
}

blocks=$(cd "$source_dir" && extract_blocks) || exit 1
if [ -z "$blocks" ]; then
  echo "FAIL: no block of README.md or docs/*.md is marked <!-- $wanted -->"
  exit 1
fi

# The files in /tmp that the blocks name.
tmp_paths=$(grep -v '^@@ ' <<<"$blocks" | grep -oE '/tmp/[A-Za-z0-9._-]+' | sort -u || true)
for path in $tmp_paths; do
  if [ -e "$path" ]; then
    skip "$path is there already, and a runnable block writes it: remove it first"
  fi
done

# The programs that the blocks call, with their Debian packages.
if [ "$mode" = user ]; then
  needed="cmake:cmake promtool:prometheus pkill:procps pgrep:procps setsid:util-linux"
else
  needed="lpadmin:cups-client lp:cups-client lpstat:cups-client ipptool:cups-ipp-utils
          ip:iproute2 unshare:util-linux pkill:procps pgrep:procps setsid:util-linux"
fi
for program in $needed; do
  PATH="$PATH:/usr/sbin:/sbin" command -v "${program%%:*}" >/dev/null ||
    skip "${program%%:*} is not installed (Debian package ${program#*:})"
done
if [ "$mode" = user ] && [ ! -w "$build_dir" ]; then
  skip "the build folder $build_dir is not this user's: the blocks run as its builder would (cmake --install writes install_manifest.txt there)"
fi
if [ "$mode" = root ]; then
  [ -z "${QUILLAROTH_DOCS_SANITIZED:-}" ] ||
    skip "a sanitizer build ($QUILLAROTH_DOCS_SANITIZED): CUPS' usb backend cannot load the emulated libusb built with it"
  [ "$(id -u)" -eq 0 ] ||
    skip "the root blocks need root: cupsd runs as root, and they run in namespaces of their own"
  [ -f "$source_dir/tests/e2e/private_cupsd.sh" ] ||
    skip "tests/e2e/private_cupsd.sh, the private scheduler for scripts, is not in this tree"
  [ -x "${CUPSD:-/usr/sbin/cupsd}" ] || skip "no cupsd (${CUPSD:-/usr/sbin/cupsd}): install cups-daemon"
  [ -x "$server_bin/daemon/cups-exec" ] || skip "no $server_bin/daemon/cups-exec: install cups-daemon"
  [ -d /usr/share/ppd ] || skip "no /usr/share/ppd to put the simulated printer's PPD in: install cups"
  unshare --net --mount true 2>/dev/null ||
    skip "cannot make a network and mount namespace here (unshare --net --mount)"
fi

work=$(mktemp -d /tmp/quillaroth-docs.XXXXXX) || exit 1
chmod 0755 "$work"
cleanup() {
  local path
  for path in $tmp_paths; do rm -rf "$path"; done
  rm -rf "$work"
}
trap cleanup EXIT

# The programs that the documents call by name.
mkdir "$work/bin"
ln -s "$build_dir/admin/quillaroth" "$work/bin/quillaroth"
ln -s "$build_dir/sim/quillaroth-sim" "$work/bin/quillaroth-sim"

# Runs the blocks; in root mode, inside the namespaces with the scheduler.
run_blocks() {
  local record file_line file session block_dir failed=0 count=0 status pid
  local sessions=()
  if [ "$mode" = root ]; then
    start_scheduler || return 1
    sudo() { "$@"; }
    export -f sudo
    export CUPS_SERVER=127.0.0.1:631
  fi
  export PATH="$work/bin:$PATH:/usr/sbin:/sbin"
  while IFS= read -r -d $'\x1e' record; do
    [ -n "$record" ] || continue
    file_line=${record%%$'\n'*}
    file=${file_line%:*}
    session="$work/session-${file//\//-}"
    if [ ! -d "$session" ]; then
      mkdir "$session"
      for entry in "$source_dir"/*; do
        [ "$(basename "$entry")" = build ] || ln -s "$entry" "$session/"
      done
      ln -s "$build_dir" "$session/build"
    fi
    block_dir="$work/block-$count"
    mkdir "$block_dir"
    printf '%s\n' "${record#*$'\n'}" >"$block_dir/block.sh"
    count=$((count + 1))
    # A block that starts a program in the background ("&") stops those
    # that earlier blocks started, as a reader would before trying the
    # next example on the same port.
    if grep -qE '&[[:space:]]*$' "$block_dir/block.sh"; then
      for pid in "${sessions[@]}"; do pkill -TERM -s "$pid" 2>/dev/null || true; done
      sessions=()
    fi
    (cd "$session" && exec setsid timeout "$kBlockSeconds" bash -euo pipefail "$block_dir/block.sh") \
      </dev/null >"$block_dir/out" 2>&1 &
    pid=$!
    wait "$pid"
    status=$?
    # What the block left running (a printer started with "&") runs on for
    # the blocks after it, in the session that setsid made, whose id is
    # $pid; it must still run a moment later.
    sessions+=("$pid")
    if [ "$status" -eq 0 ] && grep -qE '&[[:space:]]*$' "$block_dir/block.sh"; then
      sleep 0.5
      if ! pgrep -s "$pid" >/dev/null; then
        echo "(what the block started in the background has ended)" >>"$block_dir/out"
        status=1
      fi
    fi
    if [ "$status" -eq 0 ]; then
      echo "ok $file_line"
    else
      echo "FAILED $file_line (exit $status):"
      sed 's/^/    /' "$block_dir/block.sh"
      echo "  its output:"
      sed 's/^/    /' "$block_dir/out"
      [ "$status" -eq 124 ] && echo "  (the block did not end within $kBlockSeconds s)"
      failed=$((failed + 1))
    fi
  done < <(awk '/^@@ / { if (n++) printf "\x1e"; sub(/^@@ /, "") } { print } END { printf "\x1e" }' <<<"$blocks")
  for pid in "${sessions[@]}"; do pkill -TERM -s "$pid" 2>/dev/null || true; done
  echo "runnable blocks ($mode): $count run, $failed failed"
  [ "$failed" -eq 0 ]
}

# Starts the private scheduler on 127.0.0.1:631 of this network namespace,
# with the build's filter and the simulated printer's backend, CUPS' own
# socket backend, and the simulated printer's PPD where its package puts
# it.
start_scheduler() {
  ip link set lo up || { echo "cannot bring up the namespace's loopback" >&2; return 1; }
  mount -t tmpfs -o mode=0755 quillaroth-docs /usr/share/ppd &&
    mkdir /usr/share/ppd/quillaroth &&
    cp "$source_dir/ppd/quillaroth-sim.ppd" /usr/share/ppd/quillaroth/ ||
    { echo "cannot put the PPD in /usr/share/ppd/quillaroth" >&2; return 1; }
  local root="$work/cups" bin="$work/cups/bin"
  mkdir -p "$bin/filter" "$bin/backend" "$bin/daemon"
  install -m 0755 "$build_dir/commandtoquillaroth" "$bin/filter/commandtoquillaroth"
  install -m 0755 "$build_dir/sim/quillarothsim" "$bin/backend/quillarothsim"
  ln -s "$server_bin/backend/socket" "$bin/backend/socket"
  ln -s "$server_bin/daemon/cups-exec" "$bin/daemon/cups-exec"
  # shellcheck source=../e2e/private_cupsd.sh
  source "$source_dir/tests/e2e/private_cupsd.sh"
  # The namespace's loopback is ours: CUPS' own port is free, and
  # ipp://localhost/ reaches the scheduler there.
  private_cupsd_free_port() { echo 631; }
  private_cupsd_start "$root" "$bin" "$data_dir" || return 1
  trap private_cupsd_stop EXIT
  echo "private scheduler on $private_cupsd_server"
}

if [ "$mode" = root ]; then
  export -f run_blocks start_scheduler
  export source_dir build_dir mode server_bin data_dir work blocks kBlockSeconds
  unshare --net --mount --propagation private bash -uo pipefail -c run_blocks
else
  run_blocks
fi
