#!/usr/bin/env bash
# reference_programs.sh ROOT STUDIO: runs every line of the reference's pages, page by page.
set -euo pipefail
root="$1" studio="$2"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
"$root/tools/reference/reference.pl" "$root" "$scratch/pages"
cd "$scratch"
failed=0 count=0
for program in pages/programs/*.rbs; do
    count=$((count + 1))
    if ! "$studio" "$program" >output 2>&1; then
        echo "$(basename "$program" .rbs): the page's lines fail:"
        tail -n 6 output
        failed=$((failed + 1))
    fi
done
echo "$count pages, $failed of them with a line that fails"
((count > 0 && failed == 0))
