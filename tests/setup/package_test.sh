#!/usr/bin/env bash
# package_test.sh BUILD: packs the programs of a build, and runs them from a folder with spaces and quotes, with nothing but
# what the package holds.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
fail() { echo "FAILED: $*"; exit 1; }

# A checkout whose build is there, so that nothing is set up or built from within a test.
export KAZ_ROOT="$scratch/checkout" KAZ_PRESET=release
mkdir -p "$KAZ_ROOT/tools" "$KAZ_ROOT/build"
ln -s "$root/.kaz" "$root/kaz" "$root/examples" "$root/LICENSE" "$root/CMakeLists.txt" "$KAZ_ROOT/"
ln -s "$root/tools/commands" "$KAZ_ROOT/tools/"
cp "$root/tools/version.sh" "$KAZ_ROOT/tools/"
printf 'set -euo pipefail\nbuild=%q\nbuild_targets() { :; }\n' "$1" >"$KAZ_ROOT/tools/build.sh"

out="$scratch/a package.tar.gz"
"$KAZ_ROOT/tools/commands/package" --without-faces "$out" || fail "it does not pack"
[[ ! -e "$out.partial" && -z "$(ls "$KAZ_ROOT/build")" ]] || fail "it leaves something behind"
if "$KAZ_ROOT/tools/commands/package" out.zip 2>/dev/null; then fail "it takes any suffix"; fi

folder="$scratch/Anna's \"new\" folder"
mkdir "$folder"
tar -xzf "$out" -C "$folder" --strip-components=1
rm -rf "$KAZ_ROOT"
# Nothing is loaded from the checkout, nor from this machine.
for file in "$folder"/programs/* "$folder"/lib/*.so*; do
    while read -r path; do
        [[ "$(readlink -f "$path")" == "$folder"/* ]] || fail "$(basename "$file") needs $path"
    done < <("$folder/lib/ld-linux.so.2" --library-path "$folder/lib:$folder/Frameworks/ApplicationServices.framework" --list "$file" |
        sed -nE 's/^\t.* => (.*) \(0x[0-9a-f]+\)$/\1/p; s/^.*not found.*$/a missing library/p')
done
for file in libc6 libgnustep-base1.28 libicu72; do
    [[ -s "$folder/licences/$file.txt" ]] || fail "the licence of $file is missing"
done

cd "$scratch"
kaz() { env -i PATH=/usr/bin:/bin "$folder/kaz" "$@"; }
kaz run "$folder/examples/postcard.rbs" >said || fail "the example fails"
[[ -s postcard.png ]] || fail "the example wrote nothing"
kaz run "$folder/examples/caption.rbs" >said || fail "the example with text fails"
kaz help >said
if grep -q "sets everything up" said; then fail "the help speaks of a set-up"; fi
[[ "$(kaz --version)" == CoreImageKaz* ]] || fail "it has no version"
for command in "$folder"/tools/commands/*; do
    kaz help "$(basename "$command")" >said && [[ -s said ]] || fail "$(basename "$command") has no help"
done
kaz filters CISepiaTone >said || fail "filters fails"
grep -q intensity said || fail "filters shows no inputs"
kaz apply "$folder/photos/coffee.png" CISepiaTone intensity=0.8 -o sepia.png || fail "apply fails"
[[ -s sepia.png ]] || fail "apply wrote nothing"
kaz gallery --only CISepiaTone --size 64 gallery >said || fail "gallery fails"
[[ -s gallery/index.html ]] || fail "gallery wrote no page"
