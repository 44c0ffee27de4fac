#!/bin/sh
# Stands in for MSBuild.exe with the .NET SDK's engine: runs "dotnet msbuild" with the same
# switches, /m included, and project paths written Windows-style ("Lib\Lib.csproj") turned
# into this system's.
#
# Visual Studio 2005/2008 projects target .NET 2.0/3.5, whose reference assemblies come
# from Mono (the folder "ref" beside this script, a TargetFrameworkRootPath layout). A
# project that names no TargetFrameworkVersion is a 2005 project: v2.0 comes in through
# the environment, which the project's own setting overrides. "/tv:Current" keeps MSBuild
# from reading old solutions with the 3.5 wrapper generator, which cannot load them.
# The structured logger is this folder's build of Quorvex.MSBuild.Tasks.dll, compiled
# against the SDK's Microsoft.Build.Framework.
#
# QV_DOTNET names another dotnet to run.

here=$(cd "$(dirname "$0")" && pwd)
dotnet=${QV_DOTNET:-dotnet}

for arg do
  shift
  case $arg in
    [/-][lL][oO][gG][gG][eE][rR]:*Quorvex.MSBuild.Tasks.dll*)
      arg="${arg%%:*}:$here/Quorvex.MSBuild.Tasks.dll${arg##*Quorvex.MSBuild.Tasks.dll}" ;;
    [/-]*) ;;
    *\\*)
      slashed=$(printf '%s' "$arg" | tr '\\' '/')
      [ -e "$slashed" ] && arg=$slashed ;;
  esac
  set -- "$@" "$arg"
done

: "${TargetFrameworkVersion:=v2.0}"
export TargetFrameworkVersion
export DOTNET_CLI_TELEMETRY_OPTOUT=1 DOTNET_NOLOGO=1 DOTNET_SKIP_FIRST_TIME_EXPERIENCE=1

"$dotnet" msbuild -nologo -tv:Current "-p:TargetFrameworkRootPath=$here/ref/" "$@"
status=$?
# A failed build and a broken SDK both end with an error code: say which it was.
if [ $status -ne 0 ] && ! "$dotnet" --version >/dev/null 2>&1; then
  echo "MSBuild.exe: the .NET SDK does not work: \"$dotnet --version\" fails;" \
       "set QV_DOTNET or choose --msbuild-engine xbuild" >&2
fi
exit $status
