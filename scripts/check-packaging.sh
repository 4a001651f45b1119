#!/usr/bin/env bash
# Builds the Debian packages (debian/) from a throw-away copy of the tree,
# so that the checkout stays clean, and checks them:
#   1. lintian on the source and binary packages: no error, no warning;
#   2. the file list and the control fields of each package;
#   3. installed on this machine, their autopkgtests (debian/tests), which
#      run the installed filter, simulator and backend, one of them under a
#      private cupsd;
#   4. removed again, nothing of theirs left behind.
# The packages must not be installed beforehand (the check would remove
# them).  Installing needs root, or sudo.
# Usage: scripts/check-packaging.sh
#        (QUILLAROTH_PACKAGING_KEEP=1 keeps the packages and logs in /tmp)
source "$(dirname "$0")/lib.sh"
source scripts/compare.sh

readonly kPackages=(printer-driver-quillaroth quillaroth-sim)
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
version=$(dpkg-parsechangelog -S Version)
arch=$(dpkg --print-architecture)
work=$(mktemp -d /tmp/quillaroth-packaging.XXXXXX)
installed=0
failed=0

# Removes the packages if this run installed them, and the work folder
# (unless QUILLAROTH_PACKAGING_KEEP is set: then its path is printed, for a
# look at the packages and the logs).
cleanup() {
  if [ "$installed" = 1 ]; then
    $sudo dpkg --purge "${kPackages[@]}" >/dev/null 2>&1 || true
  fi
  if [ -n "${QUILLAROTH_PACKAGING_KEEP:-}" ]; then
    echo "check-packaging: kept $work"
  else
    # autopkgtest's results there belong to root.
    $sudo rm -rf "$work"
  fi
}
trap cleanup EXIT

# The package's entries as "MODE OWNER PATH", in dpkg -c's order.
contents() {
  dpkg -c "$work/${1}_${version}_${arch}.deb" | awk '{print $1, $2, $6}'
}

# The package's Depends and Recommends, without the version bounds of the
# shared libraries (dpkg-shlibdeps works them out).
relations() {
  dpkg-deb -f "$work/${1}_${version}_${arch}.deb" Depends Recommends |
    sed 's/\(lib[^ ,]*\) ([^)]*)/\1/g'
}

# The ELF files that the package installs (as built in its debian/ folder),
# one per line.
elf_files() {
  find "$tree/debian/$1" -type f -print0 | xargs -0 file -N -0 |
    awk -F'\0' '$2 ~ /ELF/ {print $1}' | sort
}

# The shared libraries that the package's ELF files name (NEEDED), one per
# line, without the dynamic loader, whose name is the architecture's (the
# programs' interpreter).
needed_libraries() {
  local files loader
  mapfile -t files < <(elf_files "$1")
  loader=$(readelf -lW "${files[@]}" 2>/dev/null |
             sed -n 's|.*Requesting program interpreter: .*/\([^/]*\)]$|\1|p' | sort -u)
  objdump -p "${files[@]}" | awk -v loader="$loader" '$1 == "NEEDED" && $2 != loader {print $2}' |
    sort -u
}

# The packages of those libraries as dpkg-shlibdeps names them on this
# machine ("libcups2" on Debian 12, "libcups2t64" on Debian 13),
# comma-separated, without version bounds.
library_packages() {
  local files
  mapfile -t files < <(elf_files "$1")
  (cd "$tree" && dpkg-shlibdeps -O "${files[@]}" 2>/dev/null) |
    sed -e 's/^shlibs:Depends=//' -e 's/ ([^)]*)//g'
}

for package in "${kPackages[@]}"; do
  if dpkg-query -W -f='${Status}\n' "$package" 2>/dev/null | grep -q ' installed$'; then
    echo "check-packaging: $package is installed here, and this check installs and removes its own build; first: sudo apt-get purge ${kPackages[*]}"
    exit 1
  fi
done
project_version=$(sed -n 's/^project(commandtoquillaroth VERSION \([^ )]*\).*/\1/p' CMakeLists.txt)
check "debian/changelog's version is the project's ($project_version)" \
  "$project_version" "$version"

# The tracked files and the new ones not ignored, as they are now.
tree="$work/commandtoquillaroth-$version"
mkdir "$tree"
git ls-files -z --cached --others --exclude-standard |
  tar --null -T - -cf - | tar -xf - -C "$tree"

start=$(date +%s)
echo "check-packaging: [$(now)] dpkg-buildpackage -us -uc (source and binary packages)"
if ! (cd "$tree" && DEB_BUILD_OPTIONS="parallel=$build_jobs ${DEB_BUILD_OPTIONS:-}" \
        dpkg-buildpackage -us -uc >"$work/build.log" 2>&1); then
  tail -60 "$work/build.log"
  echo "check-packaging: FAILED (package build)"
  exit 1
fi
grep -E '^\[  (PASSED|FAILED)  \]' "$work/build.log" | sed 's/^/unit tests at build time: /'
build_seconds=$(since "$start")
check "packages built" "./printer-driver-quillaroth-dbgsym_${version}_${arch}.deb
./printer-driver-quillaroth_${version}_${arch}.deb
./quillaroth-sim-dbgsym_${version}_${arch}.deb
./quillaroth-sim_${version}_${arch}.deb" "$(cd "$work" && ls ./*.deb)"

echo "check-packaging: [$(now)] lintian"
start=$(date +%s)
lintian_status=0
lintian_out=$(lintian --fail-on error,warning \
                "$work/commandtoquillaroth_${version}_${arch}.changes" 2>&1) ||
  lintian_status=$?
grep -v '^running with root privileges is not recommended!$' <<<"$lintian_out" || true
check "lintian: no error, no warning" 0 "$lintian_status"
lintian_seconds=$(since "$start")

# debhelper puts systemd units in /lib/systemd/system or, on newer
# releases, /usr/lib/systemd/system: the check takes the one it used.
unitdir=$(contents printer-driver-quillaroth |
          sed -n 's|.* \./\(.*\)/quillaroth-refresh\.service$|\1|p')
case "$unitdir" in
  lib/systemd/system|usr/lib/systemd/system) ;;
  *) echo "FAIL: quillaroth-refresh.service in '$unitdir'"; failed=1 ;;
esac
units="drwxr-xr-x root/root ./${unitdir%%/*}/
drwxr-xr-x root/root ./${unitdir%/*}/
drwxr-xr-x root/root ./$unitdir/
-rw-r--r-- root/root ./$unitdir/quillaroth-refresh.service
-rw-r--r-- root/root ./$unitdir/quillaroth-refresh.timer"
driver_files="drwxr-xr-x root/root ./
drwxr-xr-x root/root ./usr/
drwxr-xr-x root/root ./usr/bin/
-rwxr-xr-x root/root ./usr/bin/quillaroth
drwxr-xr-x root/root ./usr/lib/
drwxr-xr-x root/root ./usr/lib/cups/
drwxr-xr-x root/root ./usr/lib/cups/filter/
-rwxr-xr-x root/root ./usr/lib/cups/filter/commandtoquillaroth
drwxr-xr-x root/root ./usr/share/
drwxr-xr-x root/root ./usr/share/doc/
drwxr-xr-x root/root ./usr/share/doc/printer-driver-quillaroth/
-rw-r--r-- root/root ./usr/share/doc/printer-driver-quillaroth/README.md.gz
-rw-r--r-- root/root ./usr/share/doc/printer-driver-quillaroth/changelog.gz
-rw-r--r-- root/root ./usr/share/doc/printer-driver-quillaroth/copyright
drwxr-xr-x root/root ./usr/share/doc/printer-driver-quillaroth/examples/
-rw-r--r-- root/root ./usr/share/doc/printer-driver-quillaroth/examples/commands.txt
-rw-r--r-- root/root ./usr/share/doc/printer-driver-quillaroth/examples/quillaroth.rules.yml
-rw-r--r-- root/root ./usr/share/doc/printer-driver-quillaroth/quillaroth-command-filter.txt
drwxr-xr-x root/root ./usr/share/man/
drwxr-xr-x root/root ./usr/share/man/man1/
-rw-r--r-- root/root ./usr/share/man/man1/quillaroth.1.gz"
check "printer-driver-quillaroth: files" \
  "$(printf '%s\n' "$driver_files" "$units" | LC_ALL=C sort -k3,3 -u)" \
  "$(contents printer-driver-quillaroth)"
check "printer-driver-quillaroth: shared libraries" "libc.so.6
libcups.so.2
libgcc_s.so.1
libstdc++.so.6" "$(needed_libraries printer-driver-quillaroth)"
check "printer-driver-quillaroth: relations" "Depends: $(library_packages printer-driver-quillaroth)
Recommends: cups-daemon" "$(relations printer-driver-quillaroth)"

check "quillaroth-sim: files" "drwxr-xr-x root/root ./
drwxr-xr-x root/root ./usr/
drwxr-xr-x root/root ./usr/bin/
-rwxr-xr-x root/root ./usr/bin/quillaroth-sim
drwxr-xr-x root/root ./usr/lib/
drwxr-xr-x root/root ./usr/lib/cups/
drwxr-xr-x root/root ./usr/lib/cups/backend/
-rwxr-xr-x root/root ./usr/lib/cups/backend/quillarothsim
drwxr-xr-x root/root ./usr/lib/quillaroth-sim/
-rw-r--r-- root/root ./usr/lib/quillaroth-sim/libusb-1.0.so.0
drwxr-xr-x root/root ./usr/share/
drwxr-xr-x root/root ./usr/share/doc/
drwxr-xr-x root/root ./usr/share/doc/quillaroth-sim/
-rw-r--r-- root/root ./usr/share/doc/quillaroth-sim/README.md.gz
-rw-r--r-- root/root ./usr/share/doc/quillaroth-sim/changelog.gz
-rw-r--r-- root/root ./usr/share/doc/quillaroth-sim/copyright
drwxr-xr-x root/root ./usr/share/man/
drwxr-xr-x root/root ./usr/share/man/man1/
-rw-r--r-- root/root ./usr/share/man/man1/quillaroth-sim.1.gz
drwxr-xr-x root/root ./usr/share/ppd/
drwxr-xr-x root/root ./usr/share/ppd/quillaroth/
-rw-r--r-- root/root ./usr/share/ppd/quillaroth/quillaroth-sim.ppd" \
  "$(contents quillaroth-sim)"
check "quillaroth-sim: shared libraries" "libc.so.6
libcups.so.2
libgcc_s.so.1
libstdc++.so.6" "$(needed_libraries quillaroth-sim)"
check "quillaroth-sim: relations" \
  "Depends: printer-driver-quillaroth (= $version), $(library_packages quillaroth-sim)" \
  "$(relations quillaroth-sim)"

# autopkgtest installs the packages (and what the tests depend on) on this
# machine itself: the null testbed.
echo "check-packaging: [$(now)] autopkgtest (installs ${kPackages[*]})"
start=$(date +%s)
installed=1
autopkgtest_status=0
$sudo autopkgtest --output-dir "$work/autopkgtest" \
  "$work/commandtoquillaroth_${version}.dsc" \
  "$work/printer-driver-quillaroth_${version}_${arch}.deb" \
  "$work/quillaroth-sim_${version}_${arch}.deb" \
  -- null >"$work/autopkgtest.log" 2>&1 || autopkgtest_status=$?
if [ "$autopkgtest_status" != 0 ]; then
  tail -80 "$work/autopkgtest.log"
fi
sed 's/^/autopkgtest: /' "$work/autopkgtest/summary"
check "autopkgtest: every test passed" 0 "$autopkgtest_status"
autopkgtest_seconds=$(since "$start")

# Removed, nothing of theirs may be left.
echo "check-packaging: [$(now)] dpkg --purge ${kPackages[*]}"
$sudo dpkg --purge "${kPackages[@]}" >/dev/null
installed=0
left=$(for package in "${kPackages[@]}"; do
         dpkg -c "$work/${package}_${version}_${arch}.deb" | awk '$1 !~ /^d/ {print substr($6, 2)}'
       done | while read -r path; do [ -e "$path" ] && echo "$path"; done || true)
check "removed: no file left" "" "$left"

echo "check-packaging: build $build_seconds s, lintian $lintian_seconds s, autopkgtest $autopkgtest_seconds s"
if [ "$failed" != 0 ]; then
  echo "check-packaging: FAILED"
  exit 1
fi
echo "check-packaging: OK"
