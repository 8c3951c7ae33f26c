#!/usr/bin/env bash
# kaz_test.sh: the launcher's own words. Nothing here builds anything.
source "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
root="$(cd "$here/../.." && pwd)"
kaz="$root/kaz"
version="$(sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")"

# Each command has a help of its own, short, and the list of commands shows its first lines.
for file in "$root"/tools/commands/*; do
    command="$(basename "$file")"
    help="$("$kaz" "$command" --help)" || fail "$command --help fails"
    [[ "$help" == "$command"* ]] || fail "the help of $command is about something else: $help"
    [[ "$help" == "$("$kaz" help "$command")" ]] || fail "two helps of $command"
    (($(wc -l <<<"$help") <= 30)) || fail "the help of $command is long"
    expect 0 "  $command" "$kaz" help
    expect 0 "$version" "$kaz" "$command" --version
done
expect 0 "$version" "$kaz" --version
expect 0 "usage: ./kaz COMMAND" "$kaz"
expect 2 "unknown command 'aply'; ./kaz help lists the commands" "$kaz" aply
expect 2 "unknown command 'aply'" "$kaz" help aply
finish
