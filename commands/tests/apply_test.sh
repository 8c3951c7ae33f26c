#!/usr/bin/env bash
# apply_test.sh: what `./kaz apply` reads, does, writes and refuses.
source "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
apply="$KAZ_BIN/kaz_apply"

# The pictures to work on are made by the command itself.
expect 0 "" "$apply" CICheckerboardGenerator width=10 color0=red color1=#0000ff --size 60x40 -o in.png
[[ "$(png_size in.png)" == 60x40 ]] || fail "in.png is $(png_size in.png)"
expect 0 "" "$apply" CIStripesGenerator color0=black color1=white width=8 --size 60x40 -o stripes.png
same() { cmp -s "$1" "$2" || fail "$1 and $2 differ"; }
differ() { cmp -s "$1" "$2" && fail "$1 and $2 are alike"; }

# A chain is one filter after the other.
expect 0 "" "$apply" in.png CISepiaTone intensity=0.8 CIColorInvert -o chain.png
expect 0 "" "$apply" in.png CISepiaTone intensity=0.8 -o half.tiff --size 100%
expect 0 "" "$apply" in.png CISepiaTone intensity=0 -o plain.png
differ chain.png plain.png
expect 0 "" "$apply" in.png CIColorInvert CIColorInvert -o twice.png
same twice.png plain.png

# Keys with or without "input", in any case; values in every spelling.
expect 0 "" "$apply" in.png cisepiatone inputIntensity=0.8 -o a.png
expect 0 "" "$apply" in.png CISepiaTone INTENSITY=80% -o b.png
same a.png b.png
expect 0 "" "$apply" in.png CITwirlDistortion center=30,20 radius=20 angle=90deg -o a.png
expect 0 "" "$apply" in.png CITwirlDistortion center=center radius=50% angle=1.5707963267948966 -o b.png
expect 0 "" "$apply" in.png CITwirlDistortion center=50%,50% radius=20px angle=1.5707963267948966 -o c.png
same a.png b.png
same a.png c.png
expect 0 "" "$apply" in.png CIGaussianBlur radius=5% -o a.png
expect 0 "" "$apply" in.png CIGaussianBlur radius=2 -o b.png
same a.png b.png
for color in '#ffa500' orange '#FFA500ff' 1,0.6470588235294118,0; do
    expect 0 "" "$apply" CIConstantColorGenerator color="$color" --size 4x4 -o "color.png"
    [[ -f first.png ]] || cp color.png first.png
    same first.png color.png
done
expect 0 "" "$apply" in.png CIAffineTransform transform=scale:2+move:5,5 -o a.png
expect 0 "" "$apply" in.png CIAffineTransform transform=2,0,0,2,5,5 -o b.png
same a.png b.png
[[ "$(png_size a.png)" == 120x80 ]] || fail "a.png is $(png_size a.png)"
expect 0 "" "$apply" in.png CICrop rectangle=25%,0,50%,100% -o a.png
[[ "$(png_size a.png)" == 30x40 ]] || fail "the middle of in.png is $(png_size a.png)"
expect 0 "" "$apply" in.png CIBlendWithMask background=in.png mask=stripes.png -o a.png
same a.png plain.png
expect 0 "" "$apply" in.png CIColorInvert CIBlendWithMask backgroundImage=@ inputMaskImage=stripes.png -o b.png
differ a.png b.png

# Sizes: of the result, and of what has no end.
for pair in 30:30x20 30x30:30x20 50%:30x20 200%:120x80 90x40:60x40; do
    expect 0 "" "$apply" in.png --size "${pair%%:*}" -o a.png
    [[ "$(png_size a.png)" == "${pair#*:}" ]] || fail "--size ${pair%%:*} gives $(png_size a.png)"
done
expect 0 "" "$apply" in.png CIAffineClamp -o a.png
[[ "$(png_size a.png)" == 60x40 ]] || fail "an endless result is $(png_size a.png)"
expect 1 "has no end; give it a --size" "$apply" CIStripesGenerator -o a.png

# Standard input and output; types by name and by option; quality.
"$apply" - CIColorInvert -o - <in.png >a.png || fail "cannot read and write the standard streams"
expect 0 "" "$apply" in.png CIColorInvert -o b.png
same a.png b.png
"$apply" - --type jpeg -o - <in.png | head -c 2 | od -An -tx1 | grep -q 'ff d8' || fail "--type jpeg writes no JPEG"
photo="$KAZ_PHOTOS/coffee.png"
if [[ -f "$photo" ]]; then
    expect 0 "" "$apply" "$photo" --quality 20 -o low.jpg
    expect 0 "" "$apply" "$photo" --quality 95 -o high.jpg
    (($(stat -c %s low.jpg) * 3 < $(stat -c %s high.jpg))) || fail "--quality changes nothing"
fi

# A picture comes upright, whatever its orientation (here 6, a quarter turn to the right), and its metadata come along on
# demand: a JPEG gets a block with the maker's name.
expect 0 "" "$apply" in.png -o plain.jpg
{
    head -c 2 plain.jpg
    printf '\xff\xe1\x00\x40Exif\x00\x00MM\x00\x2a\x00\x00\x00\x08\x00\x02'
    printf '\x01\x0f\x00\x02\x00\x00\x00\x0e\x00\x00\x00\x26\x01\x12\x00\x03\x00\x00\x00\x01\x00\x06\x00\x00\x00\x00\x00\x00'
    printf 'Camera Makers\x00\x00\x00\x00\x00'
    tail -c +3 plain.jpg
} >turned.jpg
expect 0 "" "$apply" turned.jpg --keep-metadata -o a.png
[[ "$(png_size a.png)" == 40x60 ]] || fail "a turned picture is $(png_size a.png)"
grep -q 'Camera Makers' a.png || fail "--keep-metadata loses the maker"
expect 0 "" "$apply" a.png --keep-metadata -o b.jpg
expect 0 "" "$apply" b.jpg -o c.png
[[ "$(png_size c.png)" == 40x60 ]] || fail "what was turned upright is turned again"
grep -q 'Camera Makers' b.jpg || fail "--keep-metadata loses the maker in a JPEG"
grep -q 'Camera Makers' c.png && fail "metadata are kept without being asked for"

# IPTC's fields go through XMP into the formats that have no other place for them.
{
    head -c 2 plain.jpg
    printf '\xff\xed\x00\x30Photoshop 3.0\x008BIM\x04\x04\x00\x00\x00\x00\x00\x12'
    printf '\x1c\x02\x50\x00\x0dAnna Ancher  '
    tail -c +3 plain.jpg
} >byline.jpg
expect 0 "" "$apply" byline.jpg --keep-metadata -o a.png
expect 0 "" "$apply" a.png --keep-metadata -o b.webp
expect 0 "" "$apply" b.webp --keep-metadata -o c.jpg
for file in a.png b.webp c.jpg; do grep -q 'Anna Ancher' $file || fail "--keep-metadata loses the byline in $file"; done
grep -q 'Photoshop 3.0' c.jpg || fail "the byline is not where JPEG files have it"
expect 0 "" "$apply" byline.jpg -o a.png
grep -q 'Anna Ancher' a.png && fail "a byline is kept without being asked for"

# WebP, without loss at the best quality.
expect 0 "" "$apply" in.png --quality 100 -o a.webp
expect 0 "" "$apply" a.webp -o a.png
same a.png plain.png

# Several pictures: to a folder and to a pattern, one line for each failure, the others written.
mkdir out
echo broken >broken.png
expect 1 "cannot read broken.png" "$apply" in.png broken.png stripes.png CIColorInvert -o out/
same out/in.png b.png
[[ -f out/stripes.png && ! -e out/broken.png ]] || fail "one failure keeps other pictures from being written"
expect 1 "1 of 3 pictures failed" "$apply" in.png broken.png stripes.png -o out
expect 0 "" "$apply" in.png stripes.png CIColorInvert -o 'out/%-inverted.jpg' --jobs 2
[[ -f out/in-inverted.jpg && -f out/stripes-inverted.jpg ]] || fail "a pattern does not name the pictures"

# A process that dies takes no other picture along. Pictures of this size keep their processes busy for a while.
rm -f out/*
"$apply" in.png stripes.png CIGaussianBlur --size 3000x2000 -o out/ --jobs 2 2>errors &
for _ in $(seq 100); do victim="$(pgrep -P $! | head -n 1)" && [[ -n "$victim" ]] && break; sleep 0.05; done
kill -KILL "$victim"
wait $! && fail "a process that died is no failure"
grep -qE '(in|stripes).png: its process ended: Killed' errors || fail "a process that died is not told: $(cat errors)"
grep -q '1 of 2 pictures failed' errors || fail "a process that died takes others along: $(cat errors)"
[[ "$(ls out)" == in.png || "$(ls out)" == stripes.png ]] || fail "a process that died leaves $(ls out)"

# An interruption leaves no half files.
timeout -s INT 0.7 "$apply" in.png stripes.png CIGaussianBlur --size 3000x2000 -o 'out/%-large.png' 2>/dev/null
[[ -z "$(find out -name '.*')" ]] || fail "an interruption leaves $(find out -name '.*')"

# On a terminal there is a bar, in a pipe none.
if command -v script >/dev/null; then
    script -qec "'$apply' in.png stripes.png CIColorInvert -o out/" /dev/null | grep -q '2 of 2' || fail "no progress bar on a terminal"
fi
[[ -z "$("$apply" in.png stripes.png CIColorInvert -o out/ 2>&1)" ]] || fail "a bar in a pipe"

# Listing and planning write nothing.
expect 0 $'in.png -> new.png\nCISepiaTone\n  intensity=0.5' "$apply" in.png CISepiaTone intensity=0.5 --list -o new.png
expect 0 "2 passes, 3 steps" "$apply" in.png CIGaussianBlur radius=3 CIColorInvert --plan
[[ ! -e new.png ]] || fail "--list writes"

# A file appears when it is whole; what was there stays when it cannot be.
cp in.png kept.png
expect 1 "cannot read broken.png" "$apply" broken.png -o kept.png
same kept.png in.png
expect 0 "" "$apply" in.png CIColorInvert -o kept.png
[[ -z "$(find . -name '.*.png*')" ]] || fail "unfinished files stay: $(find . -name '.*.png*')"
(umask 022 && "$apply" in.png -o mode.png) && [[ "$(stat -c %a mode.png)" == 644 ]] || fail "mode.png has the mode $(stat -c %a mode.png)"

# Mistakes name what was probably meant, and nothing is written.
expect 2 "there is no filter 'CISepaiTone'; did you mean 'CISepiaTone'?" "$apply" in.png CISepaiTone -o a.png
expect 2 "has no input 'intensty'; did you mean 'intensity'?" "$apply" in.png CISepiaTone intensty=1 -o a.png
expect 2 "its inputs are image, intensity" "$apply" in.png CISepiaTone qqq=1 -o a.png
expect 2 "'many' is not a number" "$apply" in.png CISepiaTone intensity=many -o a.png
expect 2 "did you mean 'orange'?" "$apply" in.png CIFalseColor color0=oragne -o a.png
expect 2 "is not 2 numbers" "$apply" in.png CITwirlDistortion center=1,2,3 -o a.png
expect 2 "intensity is given twice" "$apply" in.png CISepiaTone intensity=1 inputIntensity=1 -o a.png
expect 2 "cannot write nowhere/a.png: no such folder" "$apply" in.png -o nowhere/a.png
expect 2 "cannot write nowhere/at/all/in.png: no such folder" "$apply" in.png -o nowhere/at/all/
expect 1 "cannot write /proc/a.png: no such folder" "$apply" in.png -o /proc/a.png
expect 1 "cannot write the standard output: No space left on device" bash -c '"$0" in.png -o - >/dev/full' "$apply"

# A folder that is named with its slash is made, once.
expect 0 "" "$apply" in.png -o made/
expect 0 "" "$apply" in.png -o made/
[[ -s made/in.png ]] || fail "made/in.png is missing"
expect 0 "" "$apply" in.png -o listed/ --list
[[ ! -e listed ]] || fail "--list makes a folder"
expect 2 "its name must end in .png, .jpg, .tiff or .webp" "$apply" in.png -o a.gif
expect 2 "would overwrite a picture that is read" "$apply" in.png -o in.png
expect 2 "two pictures would be written to out/in.png" "$apply" in.png out/in.png -o out
expect 2 "several pictures need a folder or a pattern" "$apply" in.png stripes.png -o a.png
expect 2 "where to write is missing" "$apply" in.png CISepiaTone
expect 2 "CISepiaTone needs a picture" "$apply" CISepiaTone -o a.png
expect 2 "has to come first" "$apply" in.png CIStripesGenerator -o a.png
expect 2 "there is no option --qality; did you mean '--quality'?" "$apply" in.png --qality 3 -o a.png
expect 2 "expected a number from 1 to 100" "$apply" in.png --quality 300 -o a.png
expect 2 "expected 800x600, 800 or 50%" "$apply" in.png --size 0x3 -o a.png
expect 1 "CIBlendWithMask makes no picture; it may need maskImage" "$apply" in.png CIBlendWithMask background=in.png -o a.png
expect 1 "no such file" "$apply" missing.png -o a.png
expect 0 "./kaz help apply explains this command" "$apply" in.png --help
finish
