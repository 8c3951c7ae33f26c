// Says where its loader and its libraries come from.
#import <Foundation/Foundation.h>

#include <cstdio>

int main() {
    @autoreleasepool {
        std::puts([[NSString stringWithContentsOfFile:@"/proc/self/maps"] UTF8String]);
    }
}
