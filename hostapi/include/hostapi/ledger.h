// What the scopes of a thread have yet to give back. On 32-bit Mac OS X a Cocoa exception is a longjmp: no
// destructor between the raise and its handler runs, and the frames are gone when the handler does. So
// whatever a scope owns is also entered in a ledger outside of all frames, and the handler gives back what
// the skipped scopes left in it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

namespace host {

// The ledger of one thread: a stack of lines, each a thing and the way to give it back.
class Ledger {
  public:
    struct Line {
        void (*giveBack)(const Line& line); // null when the line is closed
        alignas(void*) unsigned char thing[4 * sizeof(void*)];
    };

    // The calling thread's; null when there is no memory for one.
    static Ledger* ofThisThread();

    // The number of lines, closed ones below an open one included.
    std::uint32_t size() const { return count; }

    // Opens a line, which is then the last; false when there is no memory for it.
    bool open(const Line& line);

    // Closes a line by its number. Lines may be closed in any order.
    void close(std::uint32_t number);

    // Gives back what the lines from `number` on hold, the last one first.
    void settle(std::uint32_t number);

  private:
    static void discard(void* ledger);

    Line* lines;
    std::uint32_t count, capacity;
};

// Owns a thing for a scope and gives it back with `giveBack` at the scope's end, or when the scope is
// skipped. A thing is a few words that can be copied; the empty value owns nothing.
template <class Thing, void (*giveBack)(Thing)>
class Entry {
  public:
    explicit Entry(Thing owned) : thing(owned) {
        static_assert(std::is_trivially_copyable_v<Thing> && sizeof(Thing) <= sizeof(Ledger::Line::thing));
        if (!thing) return;
        Ledger::Line line = {[](const Ledger::Line& skipped) {
                                 Thing left;
                                 std::memcpy(&left, skipped.thing, sizeof left);
                                 giveBack(left);
                             },
                             {}};
        std::memcpy(line.thing, &thing, sizeof thing);
        ledger = Ledger::ofThisThread();
        if (!ledger) return;
        number = ledger->size();
        if (!ledger->open(line)) ledger = nullptr;
    }
    ~Entry() {
        if (Thing owned = release()) giveBack(owned);
    }
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

    Thing get() const { return thing; }
    explicit operator bool() const { return bool(thing); }

    // The thing, which is the caller's from now on.
    Thing release() {
        if (ledger) std::exchange(ledger, nullptr)->close(number);
        return std::exchange(thing, Thing());
    }

  private:
    Thing thing;
    Ledger* ledger = nullptr;
    std::uint32_t number = 0;
};

// A handler's own line, above which the scopes inside it enter what they own.
class LedgerMark {
  public:
    LedgerMark() : ledger(Ledger::ofThisThread()), number(ledger ? ledger->size() : 0) {
        if (ledger && !ledger->open({[](const Ledger::Line&) {}, {}})) ledger = nullptr;
    }
    ~LedgerMark() { settle(); }
    LedgerMark(const LedgerMark&) = delete;
    LedgerMark& operator=(const LedgerMark&) = delete;

    // Gives back what skipped scopes have left above the line.
    void settle() {
        if (ledger) std::exchange(ledger, nullptr)->settle(number);
    }

  private:
    Ledger* ledger;
    std::uint32_t number;
};

} // namespace host
