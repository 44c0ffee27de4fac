#!/bin/sh
# Runs a Windows test program under Wine. Now and then Wine exits at once without starting
# the program: a failure with nothing printed, not even the test runner's first line. Such a
# start is tried once more; a program that started and then failed is never run again.
# Address-space randomisation is switched off for Wine and what it starts: with it, a process
# Wine starts now and then fails before it runs ("failed to map the shared user data"), and
# CreateProcess reports an internal error.
run="wine"
command -v setarch >/dev/null 2>&1 && run="setarch $(uname -m) -R wine"
out=$(mktemp) && err=$(mktemp) || exit 1
trap 'rm -f "$out" "$err"' EXIT
for attempt in 1 2; do
  $run "$@" >"$out" 2>"$err"
  status=$?
  if [ "$status" -eq 0 ] || [ -s "$out" ] || [ -s "$err" ]; then
    break
  fi
  [ "$attempt" -eq 1 ] && echo "wine-run: Wine exited with $status before the program started; starting it again" >&2
done
cat "$out"
cat "$err" >&2
exit "$status"
