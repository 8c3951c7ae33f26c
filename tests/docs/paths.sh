#!/usr/bin/env bash
# paths.sh ROOT: fails when a document under ROOT names a file, folder or command that is not there.
#
# Checked are relative links, `code` with a slash in it, and the commands of `./kaz`. A path is seen from the root, from
# the document's folder, or from a folder of headers; <name> stands for any name. Outside the rule are code blocks, and
# paths that begin with a slash or a dot, which lie outside the repository.
set -euo pipefail
shopt -s extglob
cd "$1"

mapfile -t documents < <(find . -name '.?*' -prune -o -name build -prune -o -name '*.md' -print)
mapfile -t headers < <(find . -name '.?*' -prune -o -name build -prune -o -type d -name include -print)

checked=0 missing=0
check() { # DOCUMENT NAME FOLDER...: the name must exist in one of the folders
    local document="$1" name="$2" pattern="${2//<+([^<>])>/*}" folder
    checked=$((checked + 1))
    for folder in "${@:3}"; do
        if compgen -G "$folder/${pattern%/}" >/dev/null; then return; fi
    done
    echo "$document: there is no $name"
    missing=$((missing + 1))
}

for document in "${documents[@]}"; do
    folder="$(dirname "$document")"
    prose="$(sed '/^ *```/,/^ *```/d' "$document")"
    while read -r name; do
        check "$document" "$name" . "$folder" "${headers[@]}"
    done < <(grep -oE '`<?[A-Za-z0-9_*<][A-Za-z0-9_.*<>+-]*/[A-Za-z0-9_.*<>/+-]*`' <<<"$prose" |
        sed -E 's/^`|`$//g; s/^<([^<>]*)>$/\1/' | sort -u)
    while read -r link; do
        check "$document" "$link" "$folder"
    done < <(grep -oE '\]\([^)]+\)' <<<"$prose" | sed -E 's/^\]\(|\)$//g; s/#.*//' | grep -vE '^$|^[a-z]+:' | sort -u)
    while read -r command; do
        check "$document" "$command" tools/commands
    done < <(grep -oE '\./kaz [a-z]+(-[a-z]+)*' "$document" | sed 's/.* //' | grep -vx help | sort -u)
done

echo "$checked names in ${#documents[@]} documents, $missing of them missing"
((checked > 0 && missing == 0))
