#!/usr/bin/env bash
# Installs the Debian packages that building and testing need, when missing.
# Usage: scripts/setup.sh [extra-package ...]
set -euo pipefail

packages=(cmake g++ make pkg-config libcups2-dev libgtest-dev valgrind "$@")
if [ -f "$(dirname "$0")/packages.txt" ]; then
  while read -r p; do
    case "$p" in ''|'#'*) ;; *) packages+=("$p") ;; esac
  done < "$(dirname "$0")/packages.txt"
fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "setup: installing ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
