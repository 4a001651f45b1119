#!/usr/bin/env bash
# Installs the build into two temporary trees, once with DESTDIR and once
# with --prefix, and compares the whole list of installed files and modes
# with what CUPS needs; then runs cupstestppd on the installed PPD, which
# also checks that the filter named by the PPD is installed where CUPS
# looks for it.
# Usage: install_test.sh BUILD_DIR PREFIX SERVERBIN_DEST PPD_DEST DOC_DEST BIN_DEST SIM_LIB_DEST
#                        MAN_DEST
# (the *_DEST folders as the install rules name them: relative to the
# prefix, or absolute; SIM_LIB_DEST is the emulated USB printer's folder).
set -euo pipefail

# cupstestppd wants the filter that the PPD names to be owned by root.  A
# plain user runs the whole check under fakeroot, where the installed files
# are root's; without fakeroot that one check is left out, and said so.
if [ "$(id -u)" != 0 ] && [ -z "${FAKEROOTKEY:-}" ] && command -v fakeroot >/dev/null; then
  exec fakeroot -- bash "$0" "$@"
fi

build=$1 prefix=$2 serverbin=$3 ppd_dir=$4 doc_dir=$5 bin_dir=$6 sim_lib_dir=$7
man_dir=$8
work=$(mktemp -d /tmp/quillaroth-install.XXXXXX)
trap 'rm -rf "$work"' EXIT
failed=0

# Prints "MODE PATH" for each file and each folder above it, sorted, with
# PATH relative to the tree's root; arguments are pairs MODE PATH.
expected_listing() {
  while [ $# -gt 0 ]; do
    local mode=$1 path=$2
    shift 2
    echo "$mode $path"
    path=$(dirname "$path")
    while [ "$path" != . ]; do
      echo "drwxr-xr-x $path"
      path=$(dirname "$path")
    done
  done | LC_ALL=C sort -u -k2
}

# Prints the installed tree the same way.
actual_listing() {
  (cd "$1" && find . -mindepth 1 -printf '%M %P\n' | LC_ALL=C sort -k2)
}

# The path below the tree's root at which a destination ends up.
staged() {
  case $1 in
    /*) echo "${1#/}" ;;
    *) local base=${2#/}; echo "${base:+$base/}$1" ;;
  esac
}

source "$(dirname "$0")/../../scripts/compare.sh"

# The files of an install below the given base (prefix inside the tree):
# of one component (filter or sim), or of all.
files_below() {
  local base=$1 component=${2:-all} args=()
  if [ "$component" != sim ]; then
    args+=(-rwxr-xr-x "$(staged "$serverbin/filter/commandtoquillaroth" "$base")"
           -rw-r--r-- "$(staged "$doc_dir/quillaroth-command-filter.txt" "$base")"
           -rwxr-xr-x "$(staged "$bin_dir/quillaroth" "$base")"
           -rw-r--r-- "$(staged "$man_dir/man1/quillaroth.1" "$base")")
  fi
  if [ "$component" != filter ]; then
    args+=(-rw-r--r-- "$(staged "$ppd_dir/quillaroth-sim.ppd" "$base")"
           -rwxr-xr-x "$(staged "$serverbin/backend/quillarothsim" "$base")"
           -rwxr-xr-x "$(staged "$bin_dir/quillaroth-sim" "$base")"
           -rw-r--r-- "$(staged "$sim_lib_dir/libusb-1.0.so.0" "$base")")
  fi
  expected_listing "${args[@]}"
}

# 1. DESTDIR: everything lands below the tree, at the prefix (or the
#    absolute folder).
DESTDIR="$work/destdir" cmake --install "$build" >/dev/null
check "DESTDIR install" "$(files_below "$prefix")" "$(actual_listing "$work/destdir")"

# 2. Each component alone: the filter without the simulated printer (a
#    production server), and the simulated printer without the filter.
for component in filter sim; do
  DESTDIR="$work/$component" cmake --install "$build" --component $component >/dev/null
  check "$component component" "$(files_below "$prefix" $component)" \
    "$(actual_listing "$work/$component")"
done

# 3. --prefix: relative destinations move with the prefix.  Absolute ones
#    would go to the real system, so they are staged below DESTDIR here.
if [ "${serverbin:0:1}" = / ] || [ "${ppd_dir:0:1}" = / ]; then
  echo "note: absolute install folders; --prefix is checked below DESTDIR"
  DESTDIR="$work/prefix" cmake --install "$build" --prefix /stage >/dev/null
  check "--prefix install" "$(files_below /stage)" "$(actual_listing "$work/prefix")"
else
  cmake --install "$build" --prefix "$work/prefix" >/dev/null
  check "--prefix install" "$(files_below /)" "$(actual_listing "$work/prefix")"
fi

# 4. cupstestppd on the installed PPD, with the DESTDIR tree as its root so
#    that the filter it names is looked up there.
if [ "$(id -u)" != 0 ]; then
  echo "skipped: cupstestppd (the filter must be owned by root: run as root or install fakeroot)"
  exit $failed
fi
ppd="$work/destdir/$(staged "$ppd_dir/quillaroth-sim.ppd" "$prefix")"
status=0
out=$(cupstestppd -R "$work/destdir" "$ppd" 2>&1) || status=$?
check "cupstestppd" "$ppd: PASS
status 0" "$out
status $status"

exit $failed
