# Sourced by the tests of the commands: a scratch folder to work in, and what to expect of a command.
#
# KAZ_BIN is the folder of the programs, KAZ_PHOTOS that of the photographs.
set -uo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1
failed=0

fail() { echo "FAIL: $*"; failed=$((failed + 1)); }

# expect CODE TEXT COMMAND...: the command ends with this code, and its output (both streams) contains the text.
expect() {
    local code="$1" text="$2" found output
    shift 2
    output="$("$@" 2>&1 </dev/null)"
    found=$?
    ((found == code)) || fail "'$*' ended with $found, not $code: $output"
    [[ "$output" == *"$text"* ]] || fail "'$*' does not say '$text', but: $output"
}

# The width and height of a PNG, "600x400".
png_size() { od -An -tu1 -j16 -N8 "$1" | awk '{print $1 * 16777216 + $2 * 65536 + $3 * 256 + $4 "x" $5 * 16777216 + $6 * 65536 + $7 * 256 + $8}'; }

finish() {
    ((failed == 0)) && echo "all as expected"
    exit $((failed > 0))
}
