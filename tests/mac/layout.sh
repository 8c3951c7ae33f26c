#!/usr/bin/env bash
# Compares the Mac's objects with the ones that the tests run: every declaration, name and type encoding in the former
# is, letter for letter, in the latter, and every table and record has the same size.
#
#   layout.sh MAC_OBJECTS BUILD      what check.sh left in KAZ_MAC_OBJECTS, and a build folder
set -euo pipefail
mac="$1" build="$2"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

mapfile -t mac_objects < <(find "$mac" -name '*.o' | sort)
mapfile -t elf_objects < <(find "$build"/{hostapi,bridge,objects,coreimage,plugin,family}/CMakeFiles -name '*.o' | sort)
((${#mac_objects[@]} && ${#elf_objects[@]})) || { echo "layout: no objects" >&2; exit 2; }

# --- text --------------------------------------------------------------------------------------------------------
# BOOL is a signed char on the Mac and an unsigned one in GNUstep; a zone is nobody's business there.
apple_only='^(c12@0:4@8|@12@0:4\^\{_NSZone=\}8)$'
llvm-readobj --string-dump=__cstring "${mac_objects[@]}" 2>/dev/null | sed -n 's/^\[ *[0-9a-f]*\] //p' |
    sort -u | grep -vE "$apple_only" >"$work/mac.texts"
llvm-strings -a -n 1 "${elf_objects[@]}" | sort -u >"$work/elf.texts"
# A newline ends a text in the one tool and is a dot in the other.
awk 'FNR == NR { there[$0] = 1; next }
    !($0 in there) { cut = $0; sub(/\.$/, "", cut); if (!(cut in there)) { print; bad = 1 } }
    END { exit bad }' "$work/elf.texts" "$work/mac.texts" >"$work/missing" || {
    echo "layout: only the Mac's objects have these texts:" >&2
    cat "$work/missing" >&2
    exit 1
}

# --- tables and records -------------------------------------------------------------------------------------------
# Symbols of data, with sizes. Mach-O has none, so the next address bounds them, which is up to
# 15 bytes late.
hex='function hex(digits,  value, i) {
    for (i = 1; i <= length(digits); ++i) value = 16 * value + index("123456789abcdef", substr(digits, i, 1))
    return value + 0
}
'
tables='^_?_ZN(9coreimage|6family|12_GLOBAL__N_1|6bridge).*(KazClass|[pP]roperties|[mM]ethods|[cC]onstants|table|Rules|[cC]lasses)E$'
for object in "${mac_objects[@]}"; do
    llvm-nm -n "$object" | awk -v tables="$tables" "$hex"'
        function known(section) { return section ~ /^[bBdDsS]$/ }
        last != "" { print last, hex($1) - from; last = "" }
        known($2) && $3 ~ tables { last = substr($3, 2); from = hex($1) }'
done | sort -u >"$work/mac.sizes"
for object in "${elf_objects[@]}"; do
    llvm-nm -S "$object" | awk -v tables="$tables" "$hex"'$3 ~ /^[bBdDrR]$/ && $4 ~ tables { print $4, hex($2) }'
done | sort -u >"$work/elf.sizes"
awk '
    FNR == NR { sizes[$1] = sizes[$1] " " $2; next }
    $1 in sizes {
        n = split(sizes[$1], of, " "); fits = 0
        for (i = 1; i <= n; ++i) if ($2 >= of[i] && $2 < of[i] + 16) fits = 1
        if (!fits) { print "layout: " $1 " has" sizes[$1] " bytes here and " $2 " on the Mac"; bad = 1 }
        ++compared
    }
    END { if (bad || compared < 60) { print "layout: " compared + 0 " tables and records compared"; exit 1 }
          print compared }' "$work/elf.sizes" "$work/mac.sizes" >"$work/compared" || { cat "$work/compared" >&2; exit 1; }
echo "layout: $(wc -l <"$work/mac.texts") texts and $(cat "$work/compared") tables and records are the same"
