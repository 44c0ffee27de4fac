#!/bin/sh
# Runs a Windows test program under Wine. Now and then Wine exits at once without starting
# the program: a failure with nothing printed, not even the test runner's first line. Such a
# start is tried once more; a program that started and then failed is never run again.
out=$(mktemp) && err=$(mktemp) || exit 1
trap 'rm -f "$out" "$err"' EXIT
for attempt in 1 2; do
  wine "$@" >"$out" 2>"$err"
  status=$?
  if [ "$status" -eq 0 ] || [ -s "$out" ] || [ -s "$err" ]; then
    break
  fi
  [ "$attempt" -eq 1 ] && echo "wine-run: Wine exited with $status before the program started; starting it again" >&2
done
cat "$out"
cat "$err" >&2
exit "$status"
