#!/usr/bin/env bash
# check.sh STUDIO EXAMPLES CHECK.rbs: runs an example as its check says, and tests what came out.
#
# The check's own lines make what the example works on and print commands, which run in a scratch folder: `example NAME
# [ARGS]` runs one and keeps its text in printed.txt. Then the check's Subs test what there is.
set -uo pipefail
studio="$1" examples="$2" check="$3"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1

example() {
    local name="$1" code=0
    shift
    "$studio" "$examples/$name.rbs" "$@" >printed.txt || code=$?
    echo "$code" >code.txt
}

commands="$("$studio" "$check")" || exit 1
eval "$commands" || { echo "a command of $check failed: $commands"; exit 1; }
"$studio" --test "$check"
