#!/usr/bin/env bash
# build_test.sh: builds in a path with spaces and quotes, in a checkout that was moved, and two at once.
set -euo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
root="$(cd "$here/../.." && pwd)"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
fail() { echo "FAILED: $*"; cat "$scratch/said" 2>/dev/null; exit 1; }

# --- the compiler's and the linker's flags, in earnest ----------------------------------------------
checkout="$scratch/Anna's new  pictures"
mkdir "$checkout"
cp -r "$root/cmake" "$here/tiny/." "$checkout/"
ln -s "$(readlink -f "$root/.kaz")" "$checkout/.kaz"
cd "$checkout"
{ cmake -G Ninja -B build/release --toolchain cmake/toolchain-i386.cmake && ninja -C build/release; } >"$scratch/said" 2>&1 ||
    fail "it does not build in $checkout"
build/release/bin/tiny >"$scratch/said" 2>&1 || fail "the program does not start"
for file in ld-linux.so.2 libgnustep-base.so; do
    grep -qF "sysroot" <(grep -F "$file" "$scratch/said") || fail "$file is not the sysroot's"
done

# --- the commands, with a CMake and a ninja that only say what they do --------------------------------
checkout="$scratch/a checkout"
mkdir -p "$checkout/tools/commands" "$checkout/.kaz" "$scratch/bin"
cp "$root/kaz" "$checkout/"
cp "$root/tools/build.sh" "$checkout/tools/"
cp "$root/tools/commands/build" "$checkout/tools/commands/"
printf '#!/bin/sh\n' >"$checkout/tools/setup.sh"
cat >"$scratch/bin/cmake" <<'TEXT'
#!/bin/sh
echo cmake >>"$FAKE_LOG"
mkdir -p build/release
echo "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" >build/release/CMakeCache.txt
touch build/release/build.ninja
TEXT
cat >"$scratch/bin/ninja" <<'TEXT'
#!/bin/sh
echo begin >>"$FAKE_LOG"
sleep 0.3
echo end >>"$FAKE_LOG"
TEXT
chmod +x "$scratch/bin"/* "$checkout/tools/setup.sh"
export PATH="$scratch/bin:$PATH" FAKE_LOG="$scratch/log" KAZ_PRESET=release
log() { tr '\n' ' ' <"$FAKE_LOG"; }
build() { "$checkout/kaz" build >"$scratch/said" 2>&1 || fail "./kaz build failed"; }

build
build
[[ "$(log)" == "cmake begin end begin end " ]] || fail "a build that is there is configured again: $(log)"
mv "$checkout" "$scratch/a renamed checkout"
checkout="$scratch/a renamed checkout"
: >"$FAKE_LOG"
build
grep -q "was moved" "$scratch/said" || fail "it does not say that the checkout was moved"
[[ "$(log)" == "cmake begin end " ]] || fail "a build that was moved is not made anew: $(log)"

: >"$FAKE_LOG"
"$checkout/kaz" build >/dev/null 2>&1 &
build
wait $! || fail "one of two builds failed"
[[ "$(log)" == "begin end begin end " ]] || fail "two builds at once: $(log)"

# CMake and ninja work through a link where the path has characters that they cannot handle.
mv "$checkout" "$scratch/a \"quoted\" checkout"
checkout="$scratch/a \"quoted\" checkout"
link="/tmp/kaz-$UID-$(printf '%s' "$checkout" | sha256sum | cut -c -16)"
trap 'rm -rf "$scratch" "$link"' EXIT
: >"$FAKE_LOG"
build
build
[[ "$(log)" == "cmake begin end begin end " ]] || fail "the build in a path with quotes: $(log)"
grep -qFx "CMAKE_HOME_DIRECTORY:INTERNAL=$link" "$checkout/build/release/CMakeCache.txt" || fail "CMake sees the quotes"
rm "$link"
mkdir "$link"
if "$checkout/kaz" build >"$scratch/said" 2>&1; then fail "it builds where CMake cannot"; fi
grep -q "Rename the folder" "$scratch/said" || fail "it does not say what to do"
