#include "framework/timer.h"

#include "framework/table.h"

#include <algorithm>
#include <ctime>

namespace studio {

namespace {

double nowMilliseconds() {
    timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return double(time.tv_sec) * 1000 + double(time.tv_nsec) / 1e6;
}

struct Timer {
    std::int32_t period = 1000;
    std::int32_t mode = 0;
    double due = 0;
    const Method* handler = nullptr;
};

enum { kOff = 0, kSingle = 1, kMultiple = 2 };

Timer& timer(REALobject self) { return dataOf<Timer>(self); }
void restart(REALobject self) { timer(self).due = nowMilliseconds() + timer(self).period; }

// A subclass's own Action, or the Sub that AddHandler named.
void fire(REALobject self) {
    for (const Method* m : classOf(self).methodsNamed("Action"))
        if (m->routine && m->signature.parameters.empty()) {
            invoke(*m, self, nullptr);
            return;
        }
    if (const Method* handler = timer(self).handler) {
        Bits sender = Bits::of(self);
        invoke(*handler, nullptr, &sender);
    }
}

} // namespace

void setHandler(REALobject object, std::string_view event, const Method* handler) {
    if (!isA(object, "Timer") || !sameName(event, "Action"))
        raise("UnsupportedOperationException", classNameOf(object) + " has no event " + std::string(event));
    timer(object).handler = handler;
}

void TimerQueue::remove(REALobject timer) { std::erase(timers_, timer); }

void TimerQueue::fireDue() {
    // Handlers may start and drop timers: each that is due is held until all have fired.
    std::vector<ObjectRef> due;
    double now = nowMilliseconds();
    for (REALobject t : timers_)
        if (timer(t).mode != kOff && timer(t).due <= now) due.emplace_back(Heap::retain(t));
    for (REALobject t : due) {
        if (timer(t).mode == kOff) continue;
        if (timer(t).mode == kSingle) timer(t).mode = kOff;
        restart(t);
        fire(t);
    }
}

FrameworkClass timerClass() {
    FrameworkClass table = classWithData<Timer>("Timer");
    table.constructor = +[](REALobject self) {
        new (instanceData(self)) Timer();
        runtime().timers->add(self);
    };
    table.destructor = +[](REALobject self) { runtime().timers->remove(self); };
    table.properties = {
        property(
            "Period", "Integer", [](REALobject self) { return timer(self).period; },
            [](REALobject self, std::uint32_t, std::int32_t value) {
                timer(self).period = std::max(value, 1);
                restart(self);
            }),
        property(
            "Mode", "Integer", [](REALobject self) { return timer(self).mode; },
            [](REALobject self, std::uint32_t, std::int32_t value) {
                timer(self).mode = value;
                restart(self);
            }),
        property(
            "Enabled", "Boolean", [](REALobject self) { return timer(self).mode != kOff; },
            [](REALobject self, std::uint32_t, bool value) {
                timer(self).mode = value ? kMultiple : kOff;
                restart(self);
            }),
    };
    table.methods = {method("Reset", restart)};
    table.constants = {"ModeOff = 0", "ModeSingle = 1", "ModeMultiple = 2"};
    table.events = {"Action"};
    return table;
}

} // namespace studio
