#!/usr/bin/env bash
# Runs the tests of a test program under helgrind, and fails when it reports anything that helgrind.supp does not
# explain. They share a process, since starting one takes longer than most tests; a test that needs a process of its own,
# and every test after a race or a crash, is run again alone.
#
#   races.sh PROGRAM [GTEST_FILTER]
#
# Lock orders are not tracked: GNUstep leaves a lock of its start-up held for the life of the process, against which
# every later lock would count as taken in the wrong order.
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
program="$1"
filter="${2:-*}"
valgrind=(valgrind --tool=helgrind --track-lockorders=no --error-exitcode=99 --quiet
    "--suppressions=$here/helgrind.supp")
log="$(mktemp)"
trap 'rm -f "$log"' EXIT

mapfile -t tests < <("$program" --gtest_list_tests "--gtest_filter=$filter" |
    awk '/^[^ ]+\.$/ {suite = $1} /^  / {print suite $1}')
((${#tests[@]})) || {
    echo "races: $program has no test that matches $filter" >&2
    exit 2
}

number=${#tests[@]}
# Without the history of accesses helgrind finds the same races faster; a race is then reported with it.
quick=("${valgrind[@]}" --history-level=none)
# Exit code 1 means that tests failed without a race.
if "${quick[@]}" "$program" "--gtest_filter=$filter" >"$log" 2>&1; then
    tests=()
elif (($? == 1)); then
    mapfile -t tests < <(sed -n 's/^\[  FAILED  \] \([A-Za-z0-9_/]*\.[^ ,]*\).*ms)$/\1/p' "$log")
    ((${#tests[@]})) || { cat "$log"; exit 1; }
fi
echo "no race: $((number - ${#tests[@]})) tests in one process"

failed=0
for test in "${tests[@]}"; do
    if "${quick[@]}" "$program" "--gtest_filter=$test" >"$log" 2>&1; then
        echo "no race: $test"
    else
        echo "FAILED (exit code $?, 99 means a race): $test"
        "${valgrind[@]}" "$program" "--gtest_filter=$test" >"$log" 2>&1 || true
        cat "$log"
        failed=$((failed + 1))
    fi
done
echo "$((number - failed)) passed, $failed failed"
((failed == 0))
