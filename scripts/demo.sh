#!/usr/bin/env bash
# Sets everything up, builds, and runs the main job: the demo build process
# (examples/demo/Greeting.qvproj) through qvhost, which builds the sample Visual Studio 2008
# solution for real with MSBuild (Mono's xbuild) and shows the log.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh default

# A fresh copy of the samples, so that no build output lands in the source tree, and a copy
# of the build process that qvhost saves the counted-up build number back into (kept from
# one demo run to the next).
demo="$PWD/build/demo"
rm -rf "$demo/vs2008"
mkdir -p "$demo"
cp -R examples/vs2008 "$demo/vs2008"
[ -f "$demo/Greeting.qvproj" ] || cp examples/demo/Greeting.qvproj "$demo/Greeting.qvproj"

# MSTest.exe cannot run here: the demo's options point Visual Studio 2008 at the stand-in,
# which replays a run of the sample's six checks.
mkdir -p "$demo/mstest" "$demo/TestResults"
rm -f "$demo/TestResults/Greeting.trx"
export QV_STANDIN_DIR="$demo/mstest"
printf 'Passed Greeting.Tests.GreeterChecks.%s\n' DefaultSalutation OwnSalutation MissingName \
  BlankName NameIsTrimmed NullSalutationRefused > "$QV_STANDIN_DIR/tests.txt"
printf '<QvOptions>\n  <Section key="VisualStudioDotNet">\n    <Value name="MSDevPath2008" type="string">%s</Value>\n  </Section>\n</QvOptions>\n' \
  "$PWD/build/bin/standins/mstest/" > "$demo/options.xml"
# MSBuild is the .NET SDK's engine where it is installed, else Mono's xbuild.
engine=xbuild
if command -v dotnet >/dev/null && [ -x build/bin/dotnet/MSBuild.exe ]; then engine=dotnet; fi

echo "==== How the package reads the sample solution (qvsln)"
build/bin/qvsln "$demo/vs2008/Greeting.sln"
echo
echo "==== The demo build process (qvhost run build/demo/Greeting.qvproj, a copy of examples/demo/Greeting.qvproj; MSBuild engine: $engine)"
build/bin/qvhost run "$demo/Greeting.qvproj" --var "DEMO=$demo" --options "$demo/options.xml" \
  --msbuild-engine "$engine"
echo
echo "==== The build number qvhost saved back into build/demo/Greeting.qvproj"
grep -n 'AssemblyVersionBuild' "$demo/Greeting.qvproj"
echo
echo "==== The version resource it stamped (vs2008/GreetingNative/App.rc)"
sed -n '/^VS_VERSION_INFO/,/^END/p' "$demo/vs2008/GreetingNative/App.rc" | tr -d '\r'
echo
echo "==== The program it built (its stamped version; Debug, with DEBUG, TRACE and EXTRA defined)"
mono "$demo/vs2008/Greeting.Console/bin/Debug/Greeting.Console.exe"
