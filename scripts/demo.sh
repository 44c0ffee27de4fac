#!/usr/bin/env bash
# Sets everything up, builds, and runs the main job on the bundled examples.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh default
if [ -x build/bin/qvsln ]; then
  for sln in examples/*/*.sln; do
    echo "==== $sln"
    build/bin/qvsln "$sln"
  done
else
  echo "The SDK is built (build/bin); the solution inspector arrives with the solution model."
fi
