#!/usr/bin/env bash
# Installs the Debian packages that building and testing need, when missing:
# the compiler, CMake, GoogleTest, valgrind and libcups' headers, then what
# scripts/packages.txt lists, then the extra packages given as arguments.
# Prints the packages it installs and apt's own progress; as root, or
# through sudo.
# Usage: scripts/setup.sh [extra-package ...]
source "$(dirname "$0")/lib.sh"

packages=(cmake g++ make pkg-config libcups2-dev libgtest-dev valgrind)
while read -r p; do
  case "$p" in ''|'#'*) ;; *) packages+=("$p") ;; esac
done <scripts/packages.txt
packages+=("$@")

# Each package once, in the order first named.
mapfile -t packages < <(printf '%s\n' "${packages[@]}" | awk '!seen[$0]++')

missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [ "$status" = "install ok installed" ] || missing+=("$p")
done
if [ ${#missing[@]} -eq 0 ]; then
  echo "setup: all ${#packages[@]} packages are installed"
  exit 0
fi

echo "setup: installing ${#missing[@]} of ${#packages[@]} packages: ${missing[*]}"
sudo=()
[ "$(id -u)" -eq 0 ] || sudo=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update
"${sudo[@]}" apt-get install -y --no-install-recommends "${missing[@]}"
echo "setup: installed ${missing[*]}"
