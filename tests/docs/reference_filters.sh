#!/usr/bin/env bash
# reference_filters.sh ROOT APPLY: runs every call of the reference's page of filters; APPLY is kaz_apply.
set -euo pipefail
root="$1" apply="$2"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
"$apply" CIConstantColorGenerator 'color=#8060ff' --size 90x60 -o photo.jpg
"$apply" CICheckerboardGenerator width=10 --size 90x60 -o second.jpg
failed=0 count=0
while read -r line; do
    count=$((count + 1))
    rm -f out.png
    if ! eval "\"$apply\" ${line#./kaz apply }" >output 2>&1 || [[ ! -s out.png ]]; then
        echo "$line: $(tail -n 1 output)"
        failed=$((failed + 1))
    fi
done < <(grep '^\./kaz apply ' "$root/docs/reference/filters.md")
echo "$count filters, $failed of them with a call that fails"
((count > 0 && failed == 0))
