#!/bin/sh
# Stands in for MSBuild.exe on Mono: runs xbuild without the /m switches that xbuild rejects,
# and with project paths written Windows-style ("Lib\Lib.csproj") turned into this system's.
#
# QV_XBUILD names another xbuild to run; "exec" passes its exit code and signals through.

for arg do
  shift
  case $arg in
    [/-][mM] | [/-][mM]:* | \
    [/-][mM][aA][xX][cC][pP][uU][cC][oO][uU][nN][tT] | \
    [/-][mM][aA][xX][cC][pP][uU][cC][oO][uU][nN][tT]:*)
      continue ;;
    [/-]*) ;;
    *\\*)
      slashed=$(printf '%s' "$arg" | tr '\\' '/')
      [ -e "$slashed" ] && arg=$slashed ;;
  esac
  set -- "$@" "$arg"
done
exec "${QV_XBUILD:-xbuild}" "$@"
