#!/usr/bin/env bash
# Sets everything up, builds and runs the whole test suite.
# Usage: scripts/test.sh [preset]   (presets: default, asan, windows)
# `windows` cross-builds with MinGW-w64 (its libraries first, from Debian's sources) and
# runs the tests under Wine, in a Wine prefix of its own (build-windows/wine).
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-default}"
scripts/setup.sh
if [ "$preset" = windows ]; then
  scripts/windows-deps.sh
  WINEPREFIX="$PWD/build-windows/wine" WINEDEBUG=-all wineboot -i >/dev/null 2>&1 || true
fi
scripts/build.sh "$preset"
ctest --preset "$preset"
