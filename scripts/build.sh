#!/usr/bin/env bash
# Configures and builds with a CMake preset (default: "default").
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-default}"
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
