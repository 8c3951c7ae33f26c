# Sourced by commands: where the build is, and how to bring it up to date.
set -euo pipefail

build="$KAZ_ROOT/build/$KAZ_PRESET"
export KAZ_PHOTOS="${KAZ_PHOTOS:-$KAZ_ROOT/.kaz/photos}"
# The host counts references itself; GNUstep's caches would only fill the sanitizer's leak report.
export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=0}"

# build_targets [TARGET...]: sets everything up and builds these targets, or all.
build_targets() {
    "$KAZ_ROOT/tools/setup.sh"
    [[ -f "$build/build.ninja" ]] || (cd "$KAZ_ROOT" && cmake --preset "$KAZ_PRESET" >"$KAZ_ROOT/.kaz/configure.log" 2>&1) || {
        cat "$KAZ_ROOT/.kaz/configure.log" >&2
        exit 1
    }
    # Silent when there is nothing to do; grep's own result does not matter.
    NINJA_STATUS="kaz: building [%f/%t] " ninja -C "$build" "$@" |
        { grep --line-buffered -vE "Entering directory|Re-checking globbed|no work to do" || true; } >&2
}
