#!/usr/bin/env bash
# Sets everything up, builds and runs the whole test suite.
# Usage: scripts/test.sh [preset]   (presets: default, asan)
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-default}"
scripts/setup.sh
scripts/build.sh "$preset"
ctest --preset "$preset"
