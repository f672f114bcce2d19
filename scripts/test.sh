#!/usr/bin/env bash
# Builds everything and runs every test through CTest, headless.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/build.sh"
export QT_QPA_PLATFORM=offscreen
cd "${QUORVEL_BUILD_DIR:-$root/build}"
ctest --output-on-failure -j "$(nproc)" "$@"
