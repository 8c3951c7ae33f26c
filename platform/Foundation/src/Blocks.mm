// A run time for blocks, which GNUstep lacks. The layouts are those of Clang's "Block Implementation
// Specification".
#include <Block.h>

#import <Foundation/Foundation.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

extern "C" {
// What blocks say that they are. They are no Objective-C objects here: nothing can be sent to them.
void* _NSConcreteStackBlock[32];
void* _NSConcreteGlobalBlock[32];
void* _NSConcreteMallocBlock[32];
}

namespace {

// The flags of blocks and of shared variables. The lowest bits count references.
constexpr int counted = 0xffff, isHeap = 1 << 24, hasHelpers = 1 << 25, isGlobal = 1 << 28;

struct Block {
    struct Descriptor {
        unsigned long reserved, size;
        void (*copy)(Block* to, const Block* from); // these two only with helpers
        void (*dispose)(const Block*);
    };

    void* isa;
    int flags, reserved;
    void (*invoke)(void);
    const Descriptor* descriptor;
};

/// A variable that blocks share: __block.
struct Shared {
    void* isa;
    Shared* forwarding; ///< where it is now
    int flags, size;
    void (*keep)(Shared* to, Shared* from); // these two only with helpers
    void (*dispose)(Shared*);
};

/// The kinds of captured things, in the compiler's numbers. A helper of a shared variable adds `inShared`.
enum Kind { object = 3, block = 7, shared = 8, weak = 16, inShared = 128 };

void count(int& flags) { std::atomic_ref(flags).fetch_add(1); }
/// True when that was the last reference.
bool uncount(int& flags) { return (std::atomic_ref(flags).fetch_sub(1) & counted) == 1; }

Shared* keep(Shared* variable) {
    Shared* now = variable->forwarding;
    if (now->flags & isHeap) {
        count(now->flags);
        return now;
    }
    auto* copy = static_cast<Shared*>(std::malloc(static_cast<size_t>(variable->size)));
    if (!copy) std::abort();
    std::memcpy(copy, variable, static_cast<size_t>(variable->size));
    // One reference of the block's, and one of the scope's that the variable was declared in.
    copy->flags = (variable->flags & ~counted) | isHeap | 2;
    copy->forwarding = variable->forwarding = copy;
    if (copy->flags & hasHelpers) variable->keep(copy, variable);
    return copy;
}

void giveBack(Shared* variable) {
    variable = variable->forwarding;
    if (!(variable->flags & isHeap) || !uncount(variable->flags)) return;
    if (variable->flags & hasHelpers) variable->dispose(variable);
    std::free(variable);
}

} // namespace

void* _Block_copy(const void* original) {
    auto* from = static_cast<Block*>(const_cast<void*>(original));
    if (!from || from->flags & isGlobal) return from;
    if (from->flags & isHeap) {
        count(from->flags);
        return from;
    }
    auto* copy = static_cast<Block*>(std::malloc(from->descriptor->size));
    if (!copy) return nullptr;
    std::memcpy(copy, from, from->descriptor->size);
    copy->isa = _NSConcreteMallocBlock;
    copy->flags = (from->flags & ~counted) | isHeap | 1;
    if (copy->flags & hasHelpers) copy->descriptor->copy(copy, from);
    return copy;
}

void _Block_release(const void* copy) {
    auto* of = static_cast<Block*>(const_cast<void*>(copy));
    if (!of || of->flags & isGlobal || !(of->flags & isHeap) || !uncount(of->flags)) return;
    if (of->flags & hasHelpers) of->descriptor->dispose(of);
    std::free(of);
}

void _Block_object_assign(void* destination, const void* captured, const int kind) {
    auto to = static_cast<const void**>(destination);
    switch (kind & ~weak) {
    case object:
        *to = [(id)captured retain];
        break;
    case block:
        *to = _Block_copy(captured);
        break;
    case shared:
        *to = keep(static_cast<Shared*>(const_cast<void*>(captured)));
        break;
    default: // held by a shared variable, which does not retain
        *to = captured;
    }
}

void _Block_object_dispose(const void* captured, const int kind) {
    switch (kind & ~weak) {
    case object:
        [(id)captured release];
        break;
    case block:
        _Block_release(captured);
        break;
    case shared:
        giveBack(static_cast<Shared*>(const_cast<void*>(captured)));
        break;
    default:
        break;
    }
}
