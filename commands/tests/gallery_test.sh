#!/usr/bin/env bash
# gallery_test.sh: the page of `./kaz gallery`, used in a browser without a window.
source "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
gallery="$KAZ_BIN/kaz_gallery"
command -v chromium >/dev/null || { echo "Chromium is missing: apt-get install chromium"; exit 1; }

# What the browser finds is in `found`, what it complains of in `console`.
browse() {
    cp "$here/gallery.html" .
    HOME="$scratch" timeout 120 chromium --headless=new --no-sandbox --disable-gpu --disable-dev-shm-usage \
        --user-data-dir="$scratch/profile" --allow-file-access-from-files --virtual-time-budget=120000 --enable-logging=stderr \
        --dump-dom "file://$scratch/gallery.html" >dom 2>log
    sed -n '/<pre id="found">/,/<\/pre>/p' dom | sed -e 's/<pre id="found">//; s/<\/pre>.*//; s/&lt;/</g; s/&gt;/>/g; s/&amp;/\&/g' >found
    grep 'CONSOLE' log >console
}

expect 0 "filters; open" "$gallery" --size 96 gallery/
[[ "$(grep -c '"name": "CI' gallery/filters.js)" -eq "$("$KAZ_BIN/kaz_filters" | grep -c '^  CI')" ]] || fail "not every filter is in the gallery"
browse
grep -q '^done$' found || fail "the page was not used to the end: $(head -c 500 found)"
grep '^FAIL' found && fail "the page does not do what it should"
[[ -s console ]] && fail "the console says: $(cat console)"
[[ "$(sed -n 's/^pictures //p' found)" -gt 500 ]] || fail "$(grep '^pictures' found) are few"

# The codes to copy work: each command, and a program for each kind of input.
mkdir work && cd work && cp ../gallery/*.jpg ../gallery/*.png .
while read -r _ name command; do
    rm -f out.png
    bash -c "${command/.\/kaz apply/\'$KAZ_BIN/kaz_apply\'}" 2>&1 || fail "the command of $name fails: $command"
    [[ -s out.png ]] || fail "the command of $name writes nothing"
done < <(grep '^command ' ../found)
for name in CISepiaTone CITwirlDistortion CIBlendWithMask CIRippleTransition CIQRCodeGenerator CIStripesGenerator CIAreaAverage; do
    rm -f out.png
    sed -n "s/^program $name //p" ../found >program.rbs
    "$KAZ_BIN/studio" program.rbs || fail "the program of $name fails"
    [[ -s out.png ]] || fail "the program of $name writes nothing"
done
cd ..

# A picture that fails to load is noticed.
rm gallery/pictures/CISepiaTone-1.jpg
browse
grep -q '^FAIL picture pictures/CISepiaTone-1.jpg' found || fail "a missing picture is not noticed"

# Without photographs the pictures are drawn.
expect 0 "2 filters" env -u KAZ_PHOTOS "$gallery" --size 64 --only CISepiaTone,CIColorInvert drawn/
[[ -s drawn/photo.jpg && -s drawn/pictures/CIColorInvert-0.jpg ]] || fail "no picture is drawn"
expect 2 "a folder to write to is missing" "$gallery"
expect 2 "cannot write nowhere/gallery: no such folder" "$gallery" nowhere/gallery
expect 2 "did you mean '--photo'?" "$gallery" --foto x out
finish
