// Memory blocks against NSData.
#pragma once

#include <hostapi/handles.h>

@class NSData;

// A new memory block with a copy of the bytes; null for no bytes. Raises "OutOfMemoryException" when the host
// cannot make a block of that size.
REALmemoryBlock NSDataRB(NSData* data);

// An autoreleased copy of the block's bytes; empty for null.
NSData* NewNSData(REALmemoryBlock block);

// A view of a memory block's bytes. The block is locked while the view lives; data is null and length 0 when
// the host shows no bytes.
class rbData {
  public:
    explicit rbData(REALmemoryBlock block);

    const void* data() const { return bytes; }
    std::uint32_t length() const { return size; }

  private:
    host::Held<REALmemoryBlock> block;
    void* bytes = nullptr;
    std::uint32_t size = 0;
};
