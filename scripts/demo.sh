#!/usr/bin/env bash
# Sets everything up, builds, and runs the main job on the bundled examples.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh default
# The solution inspector over every bundled solution: format, configurations, projects in
# build order with their dependencies, configuration mappings and version scripts.
for sln in examples/*/*.sln; do
  echo "==== $sln"
  build/bin/qvsln "$sln"
  echo
done
