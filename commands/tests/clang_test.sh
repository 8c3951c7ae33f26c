#!/usr/bin/env bash
# clang_test.sh: programs that ./kaz-clang compiles.
source "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
root="$(cd "$here/../.." && pwd)"
KAZ_PRESET="$(basename "$(dirname "$KAZ_BIN")")"
export KAZ_PRESET
clang="$root/kaz-clang"

# The example, with all warnings on, makes what './kaz apply' makes of the same picture.
expect 0 "" "$clang" "$root/examples/objective-c/main.m" -Wall -Wextra -Werror -o sepia
photo="$KAZ_PHOTOS/coffee.png"
expect 0 "" "$KAZ_BIN/kaz_apply" "$photo" CISepiaTone intensity=0.8 -o applied.png
mkdir "another folder"
mv sepia "another folder/"
expect 0 "" "another folder/sepia" "$photo" sepia.png
cmp -s sepia.png applied.png || fail "the example's picture is not that of './kaz apply'"
(cd / && "$scratch/another folder/sepia" "$photo" "$scratch/again.png") || fail "the example does not run from /"
cmp -s sepia.png again.png || fail "the example makes another picture in another folder"
expect 1 "cannot read none.png" "another folder/sepia" none.png out.png

# Files of each language, compiled one by one and linked: Cocoa's exceptions in Objective-C, C++'s in C++, an
# @autoreleasepool, literals, and Apple's umbrella headers.
cat >main.m <<'TEXT'
#import <ApplicationServices/ApplicationServices.h>
#import <Cocoa/Cocoa.h>
#import <QuartzCore/QuartzCore.h>
int sum(int a, int b);
int caught(void);
NSString* joined(NSArray* words);
int main(void) {
    @autoreleasepool {
        @try {
            [[CIFilter filterWithName:@"CISepiaTone"] setValue:@1 forKey:@"inputNone"];
        } @catch (NSException* e) {
            printf("%s\n", [[e name] UTF8String]);
        }
        CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
        printf("%d %d %s %d %d\n", sum(3, 4), caught(), [joined(@[ @"a", @"b" ]) UTF8String],
               (int)CGColorSpaceGetNumberOfComponents(space), [@YES isEqual:[NSNumber numberWithBool:YES]]);
        CGColorSpaceRelease(space);
    }
    return 0;
}
TEXT
cat >joined.mm <<'TEXT'
#import <Foundation/Foundation.h>
#include <string>
extern "C" NSString* joined(NSArray* words) {
    std::string all;
    for (NSString* word in words) all += [word UTF8String];
    return [NSString stringWithUTF8String:all.c_str()];
}
TEXT
cat >caught.cpp <<'TEXT'
#include <stdexcept>
extern "C" int caught() {
    try {
        throw std::runtime_error("a");
    } catch (const std::exception&) {
        return 1;
    }
}
TEXT
echo 'int sum(int a, int b) { return a + b; }' >sum.c
for source in main.m joined.mm caught.cpp sum.c; do
    [[ -z "$("$clang" -Wall -Wextra -Werror -c "$source" 2>&1)" ]] || fail "$source is not compiled in silence"
done
expect 0 "" "$clang" main.o joined.o caught.o sum.o -framework Cocoa -framework QuartzCore -o all
expect 0 "NSUnknownKeyException
7 1 ab 3 1" ./all
expect 0 "" "$clang" main.m joined.mm caught.cpp sum.c -o all
expect 0 "7 1 ab 3 1" ./all

# A program without Cocoa carries none of its libraries but the Foundation.
echo 'int main(void) { return 0; }' >plain.c
expect 0 "" "$clang" plain.c -o plain
expect 0 "" ./plain
grep -q libQuartzCore plain && fail "a program that uses no QuartzCore links it"

expect 2 "there is no framework 'Photos' here; there are AppKit " "$clang" main.m -framework Photos
expect 2 "clang needs a source" "$clang"
expect 1 "no such file or directory: 'none.m'" "$clang" none.m
finish
