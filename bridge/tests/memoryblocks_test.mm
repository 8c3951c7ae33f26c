// NSData as memory blocks, and the view of a block.
#include "conversion_test.h"

#include <bridge/memoryblocks.h>

#include <cstring>

// Data that claims to be longer than memory.
@interface EndlessData : NSData {
  @public
    NSUInteger claimed;
}
@end
@implementation EndlessData
- (const void*)bytes {
    return "never read";
}
- (NSUInteger)length {
    return claimed;
}
@end

namespace {

using studio::Value;

class MemoryBlocks : public OnEveryHost {
  protected:
    // The message of the exception that is pending, with its class.
    std::string raised() {
        Value exception = host.takePendingException();
        return exception.isNil() ? "(none)"
                                 : exception.className() + ": " + host.get(exception, "Message").text();
    }
};

TEST_P(MemoryBlocks, DataIsCopiedIntoAMemoryBlock) {
    for (NSUInteger length : {1u, 3u, 1000000u}) {
        NSMutableData* data = [NSMutableData dataWithLength:length];
        static_cast<char*>([data mutableBytes])[length - 1] = 'z';
        REALmemoryBlock handle = NSDataRB(data);
        Value block = Value::received(reinterpret_cast<REALobject>(handle));
        ASSERT_EQ(REALMemoryBlockGetSize(handle), static_cast<std::int32_t>(length));
        EXPECT_EQ(std::memcmp(REALMemoryBlockGetPtr(handle), [data bytes], length), 0);
        EXPECT_NE(REALMemoryBlockGetPtr(handle), [data bytes]);
    }
}

TEST_P(MemoryBlocks, NoDataAndDataOfNoLengthGiveNilAndNoError) {
    EXPECT_EQ(NSDataRB(nil), nullptr);
    EXPECT_EQ(NSDataRB([NSData data]), nullptr);
    EXPECT_EQ(NSDataRB([NSMutableData dataWithLength:0]), nullptr);
    EXPECT_EQ(raised(), "(none)");
}

TEST_P(MemoryBlocks, DataThatIsTooLongRaisesWithItsLength) {
    EndlessData* data = [[EndlessData alloc] autorelease];
    for (NSUInteger length : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        data->claimed = length;
        EXPECT_EQ(NSDataRB(data), nullptr);
        EXPECT_EQ(raised(), "OutOfMemoryException: Failed to allocate a memoryblock with " +
                                std::to_string(length) + " bytes in size.");
    }
}

TEST_P(MemoryBlocks, TheLongestBlockIsAskedFor) {
    static std::vector<std::int32_t> sizes;
    replace(
        "newMemoryBlock", +[](std::int32_t size) -> REALmemoryBlock {
            sizes.push_back(size);
            return nullptr;
        });
    EndlessData* data = [[EndlessData alloc] autorelease];
    for (NSUInteger length : {0x7FFFFFFEu, 0x7FFFFFFFu, 0x80000000u}) {
        data->claimed = length;
        EXPECT_EQ(NSDataRB(data), nullptr);
        EXPECT_EQ(raised(), "OutOfMemoryException: Failed to allocate a memoryblock with " +
                                std::to_string(length) + " bytes in size.");
    }
    EXPECT_EQ(sizes, std::vector<std::int32_t>{0x7FFFFFFE});
}

TEST_P(MemoryBlocks, ABlockOfUnknownSizeIsEmpty) {
    replace(
        "memoryBlockGetSize", +[](REALmemoryBlock) { return -1; });
    Value block = host.memoryBlock("bytes");
    EXPECT_EQ(rbData(reinterpret_cast<REALmemoryBlock>(block.object())).length(), 0u);
}

TEST_P(MemoryBlocks, ABlockThatTheHostDoesNotMakeRaises) {
    host.failService("newMemoryBlock");
    EXPECT_EQ(NSDataRB([NSData dataWithBytes:"abc" length:3]), nullptr);
    EXPECT_EQ(raised(), "OutOfMemoryException: Failed to allocate a memoryblock with 3 bytes in size.");
}

TEST_P(MemoryBlocks, ABlockThatDoesNotShowItsBytesGivesNilAndNoError) {
    host.failService("memoryBlockGetPtr");
    EXPECT_EQ(NSDataRB([NSData dataWithBytes:"abc" length:3]), nullptr);
    EXPECT_EQ(raised(), "(none)");
}

INSTANTIATE_TEST_SUITE_P(Hosts, MemoryBlocks, testing::ValuesIn(kHostVersions),
                         [](const auto& info) { return info.param.name; });

class WithoutMemoryBlocks : public Without {
  protected:
    WithoutMemoryBlocks() : Without({"newMemoryBlock"}) {}
};
TEST_F(WithoutMemoryBlocks, DataRaises) {
    EXPECT_EQ(NSDataRB([NSData dataWithBytes:"abcd" length:4]), nullptr);
    Value exception = host.takePendingException();
    EXPECT_EQ(exception.className(), "OutOfMemoryException");
    EXPECT_EQ(host.get(exception, "Message").text(),
              "Failed to allocate a memoryblock with 4 bytes in size.");
}

// --- the view ---------------------------------------------------------------------------------------------

class MemoryBlockView : public BridgeTest {
  protected:
    explicit MemoryBlockView(std::set<std::string> withheld = {})
        : BridgeTest({.withheld = std::move(withheld)}) {}

    static REALmemoryBlock handle(const Value& block) {
        return reinterpret_cast<REALmemoryBlock>(block.object());
    }
};

TEST_F(MemoryBlockView, ShowsTheBytesAndLocksTheBlock) {
    Value block = host.memoryBlock("bytes");
    {
        rbData view(handle(block));
        block = {}; // the view keeps it
        EXPECT_EQ(std::string(static_cast<const char*>(view.data()), view.length()), "bytes");
    }
    expectClean();
}

TEST_F(MemoryBlockView, NullIsEmpty) {
    rbData view(nullptr);
    EXPECT_EQ(view.data(), nullptr);
    EXPECT_EQ(view.length(), 0u);
}

class MemoryBlockViewWithoutPointer : public MemoryBlockView {
  protected:
    MemoryBlockViewWithoutPointer() : MemoryBlockView({"memoryBlockGetPtr"}) {}
};

TEST_F(MemoryBlockViewWithoutPointer, IsEmptyAndStillUnlocks) {
    {
        Value block = host.memoryBlock("bytes");
        rbData view(handle(block));
        EXPECT_EQ(view.data(), nullptr);
        EXPECT_EQ(view.length(), 0u);
    }
    expectClean();
}

} // namespace
