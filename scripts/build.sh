#!/usr/bin/env bash
# Installs what is missing, then configures and builds into build/ (incremental).
# With target names as arguments, builds only those (and what they need).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
build="${QUORVEL_BUILD_DIR:-$root/build}"
if [[ ! -f "$build/build.ninja" ]]; then
  cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
targets=()
for target in "$@"; do
  targets+=(--target "$target")
done
cmake --build "$build" -j "$(nproc)" "${targets[@]}"
