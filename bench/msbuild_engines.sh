#!/usr/bin/env bash
# Wall time of a rebuild of examples/vs2008 through qvhost (the build action, the MSBuild.exe
# launcher, the logger and the structured-output reader) against the same engine run
# directly with the same arguments, for each engine present: dotnet msbuild and xbuild.
#
# Usage: bench/msbuild_engines.sh [RUNS] [BUILD_DIR]   (5 runs, build/ by default)
# Prints the median of RUNS alternating runs of each and qvhost's overhead in percent.
set -euo pipefail

runs=${1:-5}
root=$(cd "$(dirname "$0")/.." && pwd)
bin=$(cd "${2:-$root/build}/bin" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r "$root/examples/vs2008" "$work/vs2008"
sln=$work/vs2008/Greeting.sln
export XDG_CONFIG_HOME=$work QV_KEY_FILE=$work/key

now() { date +%s.%N; }
median() { sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }


qvhost_run() { # ENGINE_FOLDER
  "$bin/qvhost" --no-default-packages --package "$bin/QvVisualStudioDotNet.qvp" \
    --options "$work/options.xml" --framework "v3.5=$1" exec TQvVSDotNetAction \
    "Solution=$sln" "SolutionConfiguration=Release|Any CPU" VStudioVersion=vs2008 \
    BuildAction=baRebuild >/dev/null
}

bench() { # NAME ENGINE_FOLDER LOGGER DIRECT_COMMAND...
  local name=$1 folder=$2 logger=$3
  shift 3
  local hosted=() direct=()
  qvhost_run "$folder" # warm-up, and proof that it builds
  for ((i = 0; i < runs; i++)); do
    local t0 t1 t2
    t0=$(now)
    qvhost_run "$folder"
    t1=$(now)
    (cd "$work/vs2008" && "$@" /t:Rebuild "/logger:$logger" /noconlog \
      "/p:Configuration=Release;Platform=Any CPU" /v:normal /m "$sln" >/dev/null)
    t2=$(now)
    hosted+=("$(awk "BEGIN { print $t1 - $t0 }")")
    direct+=("$(awk "BEGIN { print $t2 - $t1 }")")
  done
  local h d
  h=$(printf '%s\n' "${hosted[@]}" | median)
  d=$(printf '%s\n' "${direct[@]}" | median)
  printf '%-8s qvhost %6.2f s   direct %6.2f s   overhead %+5.1f %%  (median of %d)\n' \
    "$name" "$h" "$d" "$(awk "BEGIN { print ($h - $d) * 100 / $d }")" "$runs"
}

# The switches the build action passes (its "Running ... with parameters" log line).
echo "Rebuild of examples/vs2008/Greeting.sln: /t:Rebuild /logger:LOGGER /noconlog" \
  "\"/p:Configuration=Release;Platform=Any CPU\" /v:normal /m"
if command -v dotnet >/dev/null && [ -f "$bin/dotnet/Quorvex.MSBuild.Tasks.dll" ]; then
  # What the launcher adds, so that the direct run builds the same legacy projects.
  bench dotnet "$bin/dotnet" "$bin/dotnet/Quorvex.MSBuild.Tasks.dll" \
    env TargetFrameworkVersion=v2.0 dotnet msbuild -nologo -tv:Current \
    "-p:TargetFrameworkRootPath=$bin/dotnet/ref/"
fi
if command -v xbuild >/dev/null && [ -f "$bin/Quorvex.MSBuild.Tasks.dll" ]; then
  # xbuild rejects /m, which the launcher drops.
  bench xbuild "$bin/mono" "$bin/Quorvex.MSBuild.Tasks.dll" sh -c 'for a; do
    case $a in /m) ;; *) set -- "$@" "$a" ;; esac; shift; done; exec xbuild "$@"' xbuild
fi
