#!/usr/bin/env bash
# Fails unless mac-check refuses what the files in refused/ ask for, and nothing else.
set -euo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
if said="$("$here/check.sh" "$here/refused/cxx_runtime.cpp" "$here/refused/later_function.cpp" 2>&1)"; then
    echo "mac-check accepted the files of tests/mac/refused" >&2
    exit 1
fi
for line in "mac-check: CoreImageKaz: __Znwm belongs to the C++ run-time library, which the product does without" \
    "mac-check: CoreImageKaz: _strnlen is not among the symbols of a 10.5 system in tests/mac/symbols.txt"; do
    grep -qxF "$line" <<<"$said" || { printf 'missing: %s\nin:\n%s\n' "$line" "$said" >&2; exit 1; }
done
[[ "$(grep -c '^mac-check: .*Kaz: ' <<<"$said")" == 2 ]] || { printf 'more was refused:\n%s\n' "$said" >&2; exit 1; }
