#!/usr/bin/env bash
# filters_test.sh: what `./kaz filters` lists and shows.
source "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
filters="$KAZ_BIN/kaz_filters"

# One filter: what it does, and each input with its class, unit, range and default.
expect 0 "CISepiaTone: Sepia Tone" "$filters" CISepiaTone
expect 0 "Tints a picture brown like an old photograph." "$filters" cisepiatone
expect 0 "  intensity  NSNumber  Scalar  at least 0, slider 0 to 1  1" "$filters" SepiaTone
expect 0 "  radius  NSNumber  Distance, pixels" "$filters" CIBoxBlur
expect 0 "radius  NSNumber  Scalar, pixels" "$filters" CIGaussianBlur
expect 0 "center     CIVector  Position, pixels x,y" "$filters" CIVignetteEffect
expect 0 "color0  CIColor  Color         #4d0000" "$filters" CIFalseColor
expect 0 "150,150" "$filters" CITwirlDistortion
expect 0 "NSAffineTransform" "$filters" CIAffineTransform

# Lists: by category, by words in names, descriptions and categories, all of which have to fit.
expect 0 $'\nTransition\n  CIBarsSwipeTransition' "$filters"
expect 0 $'Geometry Adjustment\n  CICrop' "$filters" crop # which other filters have in their names, too
expect 0 "CICrop: Crop" "$filters" CICrop
expect 0 "CIComicEffect: Comic Effect" "$filters" comics
expect 0 "CIPhotoEffectNoir" "$filters" black-and-white high
[[ "$("$filters" black-and-white high)" == *CIPhotoEffectMono* ]] && fail "CIPhotoEffectMono is not of high contrast"
[[ "$("$filters" transition | grep -c '^  CI')" -ge 11 ]] || fail "fewer transitions than Core Image has"
[[ "$("$filters" | grep -c '^  CI')" -eq "$("$filters" --source | grep -c '^  CI')" ]] || fail "lists of different lengths"

# Where each formula comes from: every filter tells, fits with their residual.
while read -r line; do
    case "$line" in
    CI*" public definition: "?* | CI*" our own: "?* | CI*" fitted to Core Image's pictures"*": "?*) ;;
    CI*) fail "no source: $line" ;;
    esac
done < <("$filters" --source)
expect 0 "CIBoxBlur  fitted to Core Image's pictures, mean residual 0.23 of 255" "$filters" --source CIBoxBlur

# Mistakes.
expect 2 "did you mean 'CISepiaTone'?" "$filters" CISepaiTone
expect 2 "did you mean 'CISepiaTone'?" "$filters" SepaiTone
expect 2 "no filter has 'qqqqqqqq'" "$filters" qqqqqqqq
expect 2 "there is no option --sorce; did you mean '--source'?" "$filters" --sorce
finish
