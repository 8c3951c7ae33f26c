// Blocks: copies, and what they capture.
#include <Block.h>

#import <Foundation/Foundation.h>

#include <gtest/gtest.h>

#include <memory>

typedef int (^Count)(void);

TEST(Blocks, ACopyOutlivesItsScope) {
    Count copy;
    {
        int value = 20;
        Count here = ^{
            return value + 1;
        };
        copy = Block_copy(here);
        EXPECT_NE(copy, here);
        value = 50;
    }
    EXPECT_EQ(copy(), 21);
    EXPECT_EQ(Block_copy(copy), copy); // a second reference
    Block_release(copy);
    EXPECT_EQ(copy(), 21);
    Block_release(copy);
}

TEST(Blocks, ABlockThatCapturesNothingStaysWhereItIs) {
    Count one = ^{
        return 1;
    };
    EXPECT_EQ(Block_copy(one), one);
    Block_release(one);
    EXPECT_EQ(one(), 1);
    EXPECT_EQ(_Block_copy(nullptr), nullptr);
    _Block_release(nullptr);
}

TEST(Blocks, ACopyHoldsObjectsBlocksAndValues) {
    NSObject* object = [[NSObject alloc] init];
    auto value = std::make_shared<int>(4);
    Count inner = ^{
        return int([object retainCount]);
    };
    Count copy;
    { // in which the block on the stack lives
        copy = Block_copy(^{
            return inner() + *value;
        });
    }
    EXPECT_EQ([object retainCount], 2u);
    EXPECT_EQ(value.use_count(), 2);
    EXPECT_EQ(copy(), 6);
    Block_release(copy);
    EXPECT_EQ([object retainCount], 1u);
    EXPECT_EQ(value.use_count(), 1);
    [object release];
}

TEST(Blocks, CopiesShareTheirVariablesWithTheScope) {
    __block int shared = 1;
    __block auto value = std::make_shared<int>(3);
    std::weak_ptr<int> held = value;
    Count one = Block_copy(^{
        return ++shared + *value;
    });
    Count two = Block_copy(^{
        return shared *= 10;
    });
    EXPECT_EQ(one(), 5);
    EXPECT_EQ(two(), 20);
    EXPECT_EQ(shared, 20);
    shared = 7;
    EXPECT_EQ(one(), 11);
    Block_release(one);
    EXPECT_EQ(two(), 80);
    Block_release(two);
    EXPECT_EQ(shared, 80);
    EXPECT_EQ(*held.lock(), 3);
}
