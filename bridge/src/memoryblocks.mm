// Memory blocks against NSData.
#include <bridge/errors.h>
#include <bridge/memoryblocks.h>

#import <Foundation/Foundation.h>

#include <cstdio>
#include <cstring>

REALmemoryBlock NSDataRB(NSData* data) {
    const void* bytes = [data bytes];
    NSUInteger length = [data length];
    if (!bytes || length < 1) return nullptr;

    constexpr NSUInteger limit = 0x7FFFFFFF;
    if (length < limit) {
        if (host::Held block{REALNewMemoryBlock(static_cast<std::int32_t>(length))}) {
            void* destination = REALMemoryBlockGetPtr(block.get());
            if (!destination) return nullptr;
            std::memcpy(destination, bytes, length);
            return block.release();
        }
    }
    char message[200];
    std::snprintf(message, sizeof message, "Failed to allocate a memoryblock with %lld bytes in size.",
                  static_cast<long long>(length));
    RaiseException(bridge::kOutOfMemory, message);
    return nullptr;
}

NSData* NewNSData(REALmemoryBlock block) {
    rbData bytes(block);
    return [NSData dataWithBytes:bytes.data() length:bytes.length()];
}

rbData::rbData(REALmemoryBlock source) : block(host::locked(source)) {
    if (!block) return;
    std::int32_t measured = REALMemoryBlockGetSize(source);
    void* address = REALMemoryBlockGetPtr(source);
    if (!address) return;
    bytes = address;
    size = measured > 0 ? static_cast<std::uint32_t>(measured) : 0;
}
