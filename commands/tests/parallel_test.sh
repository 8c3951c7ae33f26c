#!/usr/bin/env bash
# parallel_test.sh: a hundred pictures through GNU parallel, as docs/apply.md shows it.
source "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
command -v parallel >/dev/null || { echo "GNU parallel is missing: apt-get install parallel"; exit 1; }
apply="$KAZ_BIN/kaz_apply"
mkdir in out
for i in $(seq 100); do echo "$i"; done |
    parallel --will-cite "$apply" CIStripesGenerator width={} color0=navy --size 40x30 -o in/{}.png || fail "parallel makes no pictures"
[[ "$(ls in | wc -l)" -eq 100 ]] || fail "there are $(ls in | wc -l) pictures"

# Batches of pictures: each process starts once for 25 of them.
find in -name '*.png' -print0 | parallel --will-cite -0 -N25 --joblog log "$apply" {} CISepiaTone -o out/ --jobs 1 ||
    fail "parallel fails"
[[ "$(ls out | wc -l)" -eq 100 ]] || fail "$(ls out | wc -l) of 100 pictures were written"
[[ "$(tail -n +2 log | wc -l)" -eq 4 ]] || fail "parallel ran $(tail -n +2 log | wc -l) processes, not 4"
"$apply" in/7.png CISepiaTone -o seven.png && cmp -s seven.png out/7.png || fail "parallel gives another picture"

# A picture that fails is one in the log, and --resume-failed tries its batch again.
echo broken >in/7.png
rm -r out log && mkdir out
find in -name '*.png' -print0 | sort -z | parallel --will-cite -0 -N25 --joblog log "$apply" {} CISepiaTone -o out/ 2>errors
[[ $? -eq 1 ]] || fail "parallel does not count one failed batch"
grep -q 'cannot read in/7.png' errors || fail "the failure is not told: $(cat errors)"
[[ "$(ls out | wc -l)" -eq 99 ]] || fail "$(ls out | wc -l) of 99 pictures were written"
cp in/8.png in/7.png
find in -name '*.png' -print0 | sort -z | parallel --will-cite -0 -N25 --joblog log --resume-failed "$apply" {} CISepiaTone -o out/ ||
    fail "the second try fails"
[[ -f out/7.png ]] || fail "the failed picture was not tried again"
finish
