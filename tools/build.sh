# Sourced by commands: where the build is, and how to bring it up to date.
set -euo pipefail

# CMake and ninja cannot handle these characters in a path. A checkout that has one is built through a link.
checkout="$KAZ_ROOT"
if [[ "$KAZ_ROOT" == *[\"\\\$\`\;:]* || "$KAZ_ROOT" == *$'\n'* ]]; then
    checkout="/tmp/kaz-$UID-$(printf '%s' "$KAZ_ROOT" | sha256sum | cut -c -16)"
    # Nobody else's link is followed.
    if [[ "$(readlink "$checkout")" != "$KAZ_ROOT" || "$(stat -c %u "$checkout")" != "$UID" ]]; then
        ln -sfT "$KAZ_ROOT" "$checkout" 2>/dev/null || {
            echo "kaz: CMake cannot build in $KAZ_ROOT, and $checkout cannot become a link to it. Rename the folder:" \
                "without \" \\ \$ \` ; : in its path" >&2
            exit 1
        }
    fi
fi
build="$checkout/build/$KAZ_PRESET"
export KAZ_PHOTOS="${KAZ_PHOTOS:-$KAZ_ROOT/.kaz/photos}"
# The host counts references itself; GNUstep's caches would only fill the sanitizer's leak report.
export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=0}"

# parts_of [TARGET...]: what the set-up must bring for these targets; all of it for all targets, and for tests.
parts_of() {
    local target
    [[ $# -gt 0 ]] || echo all
    for target in "$@"; do
        case "$target" in
        vision | kaz_bench) echo faces ;;
        programs | platform | kaz_* | build.ninja) echo run ;;
        *) echo all ;;
        esac
    done
    if [[ "$KAZ_PRESET" == sanitize ]]; then echo sanitize; fi
}

# Brings CMake's files up to date where needed. A build knows its own path and that of the checkout, so one that was moved
# is made anew; nothing is fetched for it.
configure() {
    local log="$KAZ_ROOT/.kaz/configure.log" home
    if [[ -f "$build/CMakeCache.txt" ]]; then
        home="$(sed -n 's/^CMAKE_HOME_DIRECTORY:INTERNAL=//p' "$build/CMakeCache.txt")"
        if [[ "$home" != "$checkout" ]]; then
            echo "kaz: the checkout was moved from $home; building anew" >&2
            rm -rf "$build"
        fi
    fi
    [[ -f "$build/build.ninja" ]] && return
    (cd "$checkout" && cmake --preset "$KAZ_PRESET" >"$log" 2>&1) || {
        cat "$log" >&2
        exit 1
    }
}

# build_targets [TARGET...]: sets up what these targets need, or everything, and builds them, or all.
build_targets() {
    local parts lock
    # Whoever may not write here runs what its owner built.
    if [[ -d "$build/bin" && ! -w "$build" ]]; then return; fi
    mapfile -t parts < <(parts_of "$@" | sort -u)
    "$KAZ_ROOT/tools/setup.sh" "${parts[@]}"
    # ninja itself would let two builds write the same files.
    exec {lock}>"$KAZ_ROOT/.kaz/build.lock"
    if ! flock -n "$lock"; then
        echo "kaz: another build is at work in $KAZ_ROOT; waiting for it ..." >&2
        flock "$lock"
    fi
    configure
    # Silent when there is nothing to do; grep's own result does not matter.
    NINJA_STATUS="kaz: building [%f/%t] " ninja -C "$build" "$@" |
        { grep --line-buffered -vE "Entering directory|Re-checking globbed|no work to do" || true; } >&2
    exec {lock}>&-
}
