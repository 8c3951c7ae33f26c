#!/usr/bin/env bash
# Compiles the product as i386 Mach-O objects against the stub headers and compares what they leave undefined with
# symbols.txt. Files named are compiled and compared as if they were part of the product.
#
#   check.sh [FILE...]
#
# KAZ_MAC_OBJECTS names a folder to leave the objects in, a folder for each of the two plugins.
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
root="$(cd "$here/../.." && pwd)"
cd "$root"
objects="${KAZ_MAC_OBJECTS:-}"
if [[ -z "$objects" ]]; then
    objects="$(mktemp -d)"
    trap 'rm -rf "$objects"' EXIT
fi

library=.kaz/sysroot/usr/lib/llvm-14/include/c++/v1
[[ -d "$library" ]] || { echo "mac-check: the C++ library's headers are missing. Run: ./kaz build" >&2; exit 2; }
flags=(--target=i386-apple-macosx10.5 -isysroot "$here/sdk" -nostdinc++ -isystem "$library"
    $(sed 's/#.*//' "$root/cmake/mac-flags.txt") -O2 -Wall -Wextra -Werror -Wno-unused-parameter
    -Ihostapi/include -Ibridge/include -Iobjects/include -Icoreimage/include)
objcxx=(-fobjc-runtime=macosx-fragile-10.5 -fobjc-exceptions)

# compile FILE OBJECT
compile() {
    local language=()
    if [[ "$1" == *.mm ]]; then language=("${objcxx[@]}"); fi
    clang++ "${flags[@]}" "${language[@]}" -c "$1" -o "$2"
}

failed=0
# The headers that came with C++20: no library that still has i386 brings them.
late='^ *# *include <(barrier|bit|compare|concepts|coroutine|format|latch|numbers|ranges|semaphore|source_location|span|stop_token|syncstream|version)>'
if grep -nE "$late" -r hostapi/{include,src} bridge/{include,src} objects/{include,src} coreimage/{include,src} plugin/src family/src; then
    echo "mac-check: a header of C++20 (above)" >&2
    failed=1
fi

# --- objects -------------------------------------------------------------------------------------------------------
shared=(hostapi/src/*.cpp bridge/src/*.mm objects/src/*.mm)
declare -A sources=(
    [CoreImageKaz]="${shared[*]} $(echo coreimage/src/*.mm plugin/src/*.cpp) $*"
    [FamilyKaz]="${shared[*]} $(echo family/src/*.mm family/src/*.cpp)"
)
files=0
for plugin in CoreImageKaz FamilyKaz; do
    mkdir -p "$objects/$plugin"
    for file in ${sources[$plugin]}; do
        object="$objects/$plugin/${file//\//_}.o"
        other="$objects/CoreImageKaz/$(basename "$object")"
        if [[ "$plugin" == FamilyKaz && -f "$other" ]]; then
            cp "$other" "$object"
            continue
        fi
        files=$((files + 1))
        while (($(jobs -r | wc -l) >= $(nproc))); do wait -n || failed=1; done
        compile "$file" "$object" &
    done
    while (($(jobs -r | wc -l))); do wait -n || failed=1; done
    wait || failed=1
    for file in ${sources[$plugin]}; do
        [[ -f "$objects/$plugin/${file//\//_}.o" ]] || { echo "mac-check: $file does not compile" >&2; failed=1; }
    done
done
((failed == 0)) || exit 1
echo "mac-check: $files files compiled as i386 Mach-O"

# --- symbols -------------------------------------------------------------------------------------------------------
# undefined PLUGIN: what no object of the plugin defines, "weak" or "hard" before each.
undefined() {
    llvm-nm -m "$objects/$1"/*.o | awk '
        /\(undefined/ { asked[$NF] = asked[$NF] (/ weak external/ ? " weak" : " hard"); next }
        NF > 1 { defined[$NF] = 1 }
        END { for (name in asked) if (!(name in defined)) print (asked[name] ~ /hard/ ? "hard" : "weak"), name }' | sort -k2
}
for plugin in CoreImageKaz FamilyKaz; do undefined "$plugin" | sed "s/^/$plugin /"; done >"$objects/undefined"

awk -v least=10.5 '
    function later(version,  part) { split(version, part, "."); return part[2] + 0 > 5 }
    FNR == NR { if (!/^#/ && NF) { library[$3] = $1; since[$3] = $2 } next }
    {
        plugin = $1; kind = $2; name = $3; used[name] = 1
        if (name in library) {
            count[library[name] " " plugin]++
            libraries[library[name]] = 1
            if (later(since[name]) != (kind == "weak")) {
                printf "mac-check: %s came with %s and is linked %s\n", name, since[name], kind == "weak" ? "weakly" : "hard"
                bad = 1
            }
        } else {
            if (name ~ /^(__Z(n[wa]|d[la]|N?K?St|T[ISV]|N10__cxxabi)|___cxa_|___gxx_|__Unwind_|__ZTVN10)/)
                why = "belongs to the C++ run-time library, which the product does without"
            else why = "is not among the symbols of a " least " system in tests/mac/symbols.txt"
            printf "mac-check: %s: %s %s\n", plugin, name, why
            bad = 1
        }
    }
    END {
        for (name in library) if (!(name in used)) { print "mac-check: " name " is in tests/mac/symbols.txt and not used"; bad = 1 }
        if (bad) exit 1
        printf "%-20s %12s %10s\n", "symbols of", "CoreImageKaz", "FamilyKaz"
        for (l in libraries) printf "%-20s %12d %10d\n", l, count[l " CoreImageKaz"], count[l " FamilyKaz"] | "sort"
    }' "$here/symbols.txt" "$objects/undefined" || exit 1
