// The entry of test programs that need an autorelease pool around their tests.
#import <Foundation/Foundation.h>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    @autoreleasepool {
        return RUN_ALL_TESTS();
    }
}
