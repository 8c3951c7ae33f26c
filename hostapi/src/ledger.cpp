// The ledgers, one for each thread that owns anything.
#include <hostapi/ledger.h>

#include <cstdlib>
#include <pthread.h>

namespace host {

namespace {

pthread_once_t keyMade = PTHREAD_ONCE_INIT;
pthread_key_t key;

} // namespace

Ledger* Ledger::ofThisThread() {
    pthread_once(&keyMade, [] { pthread_key_create(&key, discard); });
    if (void* known = pthread_getspecific(key)) return static_cast<Ledger*>(known);
    void* made = std::calloc(1, sizeof(Ledger));
    if (made) pthread_setspecific(key, made);
    return static_cast<Ledger*>(made);
}

void Ledger::discard(void* ledger) {
    std::free(static_cast<Ledger*>(ledger)->lines);
    std::free(ledger);
}

bool Ledger::open(const Line& line) {
    if (count == capacity) {
        std::uint32_t enlarged = capacity ? 2 * capacity : 64;
        void* moved = std::realloc(lines, enlarged * sizeof(Line));
        if (!moved) return false;
        lines = static_cast<Line*>(moved);
        capacity = enlarged;
    }
    lines[count++] = line;
    return true;
}

void Ledger::close(std::uint32_t number) {
    lines[number].giveBack = nullptr;
    while (count && !lines[count - 1].giveBack) --count;
}

void Ledger::settle(std::uint32_t number) {
    while (count > number) {
        Line last = lines[--count]; // a copy: giving back may open lines of its own
        if (last.giveBack) last.giveBack(last);
    }
}

} // namespace host
