#!/usr/bin/env bash
# reference.sh ROOT FILTERS: fails when docs/reference/ is not what ./kaz reference would write; FILTERS is kaz_filters.
#
# Also shows that the check can fail: without a sentence, without a line, with another count, with another page.
set -euo pipefail
root="$1" filters="$2"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT

"$root/tools/reference/reference.pl" "$root" "$scratch/pages" "$filters"
stale() { ! diff -r -q --exclude=programs "$1" "$scratch/pages"; }
if stale "$root/docs/reference"; then
    echo "docs/reference/ is stale; ./kaz reference writes it anew"
    exit 1
fi

# expect_refusal TEXT FILE SED: the generator refuses a copy of the sources so changed, with a message that has the TEXT.
expect_refusal() {
    local copy="$scratch/copy" output
    rm -rf "$copy"
    mkdir "$copy"
    (cd "$root" && cp -r --parents coreimage/src family/src plugin/src objects/include studio/framework \
        studio/language/expressions.cpp README.md CHANGELOG.md "$copy")
    sed -i "$3" "$copy/$2"
    if cmp -s "$copy/$2" "$root/$2"; then echo "$3 does not change $2"; exit 1; fi
    if output="$("$root/tools/reference/reference.pl" "$copy" "$scratch/refused" 2>&1)"; then
        echo "accepted: $3 in $2"
        exit 1
    fi
    if [[ "$output" != *"$1"* ]]; then echo "unexpected: $output"; exit 1; fi
}
expect_refusal "CIColorKaz: Alpha as Double has no sentence" coreimage/src/CIColorKaz.mm '/\/\/\/ Opacity/d'
expect_refusal "CIColorKaz: Alpha as Double has no line" coreimage/src/CIColorKaz.mm '/\/\/\/     Print Str(self.Alpha)/d'
expect_refusal "CIContextKaz: Handle as Integer has no sentence" objects/include/objects/wrapper.h '/\/\/\/ The address of/d'
expect_refusal "kCIAttributeMax" coreimage/src/CIFilterKaz.mm '/\/\/\/ .*the greatest value\.$/d'
expect_refusal "CGRectKaz: IsEmpty as boolean has no sentence" family/src/CGGeometryKaz.mm '/\/\/\/ Whether the width/d'
expect_refusal "NewCIVectorWithStringKaz" plugin/src/globals.cpp '/\/\/\/ Returns a vector of numbers in brackets/d'
expect_refusal "CIDetectorKaz has no sentence" coreimage/src/CIDetectorKaz.mm '/\/\/\/ Finds faces/d'
expect_refusal "Picture: Depth As Integer has no sentence" studio/framework/picture.cpp '/\/\/\/ The depth that/d'
expect_refusal "Picture: Depth As Integer has no line" studio/framework/picture.cpp '/\/\/\/     Print Str(photo.Depth)/d'
expect_refusal "Picture: SaveAsGIF = 4 has no sentence" studio/framework/picture.cpp '/\/\/\/ Saves as GIF/d'
expect_refusal "Timer: Action has no sentence" studio/framework/timer.cpp '/\/\/\/ What the timer does/d'
expect_refusal "Dictionary has no sentence" studio/framework/dictionary.cpp '/^\/\/\/ Values by their keys/d'
expect_refusal "JSONException has no sentence" studio/framework/json.cpp '/\/\/\/ The text is not JSON/d'
expect_refusal "Uppercase(s As String) As String has no sentence" studio/framework/strings.cpp '/\/\/\/ The text in capitals/d'
expect_refusal "Color functions has no sentence" studio/framework/color.cpp '/^\/\/\/ Making colours/d'
expect_refusal "Arrays: Pop As Element has no sentence" studio/language/expressions.cpp '/\/\/\/ Removes the last element/d'
expect_refusal "members are declared" studio/framework/timer.cpp 's/table.methods = {/table.methods.assign({/'
expect_refusal "README.md says ten" README.md 's/with eleven classes/with ten classes/'

cp -r "$root/docs/reference" "$scratch/edited"
sed -i 's/a /the /' "$scratch/edited/CIImageKaz.md"
stale "$scratch/edited" >/dev/null || { echo "a changed page is not seen"; exit 1; }
cp "$root/docs/reference/CIImageKaz.md" "$scratch/edited/"
stale "$scratch/edited" && { echo "an equal page counts as stale"; exit 1; }
touch "$scratch/edited/Gone.md"
stale "$scratch/edited" >/dev/null || { echo "a page too many is not seen"; exit 1; }
