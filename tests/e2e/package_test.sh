#!/usr/bin/env bash
# Builds the Debian package with cpack and checks it: its file list (mode,
# owner and path of every entry: the filter executable at CUPS's filter
# folder, the PPD, the PPD fragment), its name, version and architecture,
# and the packages it depends on.
# Usage: package_test.sh BUILD_DIR VERSION SERVERBIN PPD_DIR DOC_DIR HAVE_BACKEND
# (the folders as absolute paths on the installed system).
set -euo pipefail

build=$1 version=$2 serverbin=$3 ppd_dir=$4 doc_dir=$5 have_backend=$6
work=$(mktemp -d /tmp/quillaroth-package.XXXXXX)
trap 'rm -rf "$work"' EXIT
failed=0

# Compares two texts; prints both on a difference and marks the failure.
check() {
  if [ "$2" != "$3" ]; then
    echo "FAIL: $1"
    diff <(printf '%s\n' "$2") <(printf '%s\n' "$3") || true
    failed=1
  else
    echo "ok: $1"
  fi
}

# Prints "MODE OWNER ./PATH" for each file and each folder above it, in
# dpkg -c's order (sorted by path); arguments are pairs MODE PATH.
expected_listing() {
  while [ $# -gt 0 ]; do
    local mode=$1 path=${2#/}
    shift 2
    echo "$mode root/root ./$path"
    path=$(dirname "$path")
    while [ "$path" != . ]; do
      echo "drwxr-xr-x root/root ./$path/"
      path=$(dirname "$path")
    done
  done | LC_ALL=C sort -u -k3
}

if ! out=$(cd "$build" && cpack -G DEB -B "$work" 2>&1); then
  echo "FAIL: cpack"
  echo "$out"
  exit 1
fi

arch=$(dpkg --print-architecture)
debs=$(cd "$work" && ls ./*.deb)
check "package file" "./commandtoquillaroth_${version}_${arch}.deb" "$debs"
deb="$work/commandtoquillaroth_${version}_${arch}.deb"
[ -f "$deb" ] || exit 1

files=(-rwxr-xr-x "$serverbin/filter/commandtoquillaroth"
       -rw-r--r-- "$ppd_dir/quillaroth-sim.ppd"
       -rw-r--r-- "$doc_dir/quillaroth-command-filter.txt")
if [ "$have_backend" = 1 ]; then
  files+=(-rwxr-xr-x "$serverbin/backend/quillarothsim")
fi
check "dpkg -c" "$(expected_listing "${files[@]}")" \
  "$(dpkg -c "$deb" | awk '{print $1, $2, $6}' | LC_ALL=C sort -k3)"

check "control fields" "commandtoquillaroth
$version
$arch" "$(dpkg-deb -f "$deb" Package Version Architecture | sed 's/^[^:]*: //')"

# The run-time libraries of the programs, without their version bounds.
check "Depends" "libc6, libcups2, libgcc-s1, libstdc++6" \
  "$(dpkg-deb -f "$deb" Depends | sed 's/ ([^)]*)//g')"

exit $failed
