#!/usr/bin/env bash
# Configures and builds the project into build/ (warnings are errors).
# Usage: scripts/build.sh [build-dir] [extra cmake args ...]
set -euo pipefail
cd "$(dirname "$0")/.."
dir=${1:-build}
shift || true
cmake -S . -B "$dir" -DQUILLAROTH_WERROR=ON "$@" >/dev/null
cmake --build "$dir" -j "$(nproc)"
