#!/usr/bin/env bash
# Builds the fuzz targets (preset `fuzz`) and runs each for SECONDS on its corpus.
# Usage: scripts/fuzz.sh [SECONDS] [TARGET...]   (default 30 s, every target)
# A finding fails the run; its reproducer is left in build-fuzz/findings/TARGET/.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds="${1:-30}"
shift || true
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target qv_fuzz
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  for f in fuzz/*_fuzz.cpp; do targets+=("$(basename "$f" .cpp)"); done
fi
status=0
for t in "${targets[@]}"; do
  corpus="fuzz/corpus/${t%_fuzz}"
  work="build-fuzz/corpus/${t%_fuzz}"
  findings="build-fuzz/findings/$t"
  mkdir -p "$work" "$findings"
  echo "fuzz: $t for ${seconds}s"
  if ! build-fuzz/bin/"$t" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
      -print_final_stats=1 -artifact_prefix="$findings/" "$work" "$corpus" \
      > "build-fuzz/$t.log" 2>&1; then
    echo "fuzz: $t found a problem:"; tail -n 40 "build-fuzz/$t.log"; status=1
  else
    grep -E '^stat::number_of_executed_units|^Done' "build-fuzz/$t.log" | sed "s/^/fuzz: $t: /"
  fi
done
exit $status
