#!/usr/bin/env bash
# qvsln --json against the npm package vs-parse (run with node) on the same 5,000-project
# solution (project files on disk, random dependencies), alternating five pairs, with
# peak memory. Needs node and npm; vs-parse is installed into build/vsparse on first use.
# Usage: bench/solution_load.sh [PAIRS]
set -euo pipefail
cd "$(dirname "$0")/.."
pairs="${1:-5}"
build/bin/bench_solution --benchmark_filter='OpenRandomSolution/5000$' --benchmark_min_time=0.01 >/dev/null
sln="${TMPDIR:-/tmp}/qvbench-5000-r/Big.sln"
if [ ! -d build/vsparse/node_modules/vs-parse ]; then
  mkdir -p build/vsparse
  (cd build/vsparse && npm init -y >/dev/null && npm install --silent vs-parse >/dev/null)
fi
printf '%s\n' "const p = require('vs-parse');" \
  "process.stdout.write(JSON.stringify(p.parseSolutionSync(process.argv[2])));" \
  > build/vsparse/parse.js
calc() { awk "BEGIN { printf \"%.4f\", $1 }"; }
# Timed with bash's own clock: starting `date` around each run would add to both sides.
seconds() { local s e; s=$EPOCHREALTIME; "$@" >/dev/null; e=$EPOCHREALTIME; calc "$e - $s"; }
q=0; n=0
for i in $(seq "$pairs"); do
  a=$(seconds build/bin/qvsln --json "$sln"); b=$(seconds node build/vsparse/parse.js "$sln")
  printf 'pair %d: qvsln %.3f s   vs-parse %.3f s\n' "$i" "$a" "$b"
  q=$(calc "$q + $a"); n=$(calc "$n + $b")
done
rss() { /usr/bin/time -f '%M' "$@" 2>&1 >/dev/null | tail -n 1; }
printf 'mean: qvsln %.3f s, vs-parse %.3f s, vs-parse/qvsln = %.2f (target >= 6)\n' \
  "$(calc "$q / $pairs")" "$(calc "$n / $pairs")" "$(calc "$n / $q")"
printf 'peak memory: qvsln %s KB, vs-parse %s KB; node alone starts in %.3f s\n' \
  "$(rss build/bin/qvsln --json "$sln")" "$(rss node build/vsparse/parse.js "$sln")" \
  "$(seconds node -e 0)"
