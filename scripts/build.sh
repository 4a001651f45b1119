#!/usr/bin/env bash
# Configures and builds the project into build/ (warnings are errors),
# showing cmake's configure output and the build's progress.
# Usage: scripts/build.sh [build-dir] [extra cmake args ...]
source "$(dirname "$0")/lib.sh"

dir=${1:-build}
shift || true
cmake -S . -B "$dir" -DQUILLAROTH_WERROR=ON "$@"
cmake --build "$dir" -j "$build_jobs"
