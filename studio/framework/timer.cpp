// Timer: fires its Action whenever the program yields and it is due.
#include "clock.h"
#include "runtime/calls.h"
#include "runtime/delegates.h"
#include "table.h"

#include <algorithm>

namespace studio {

namespace {

struct Timer {
    std::int32_t period = 1000;
    std::int32_t mode = 0;
    double due = 0;               // microseconds
    REALobject handler = nullptr; // a delegate
};

enum { kOff = 0, kSingle = 1, kMultiple = 2 };

Timer& timer(REALobject self) { return dataOf<Timer>(self); }
void restart(REALobject self) { timer(self).due = microseconds() + timer(self).period * 1000.0; }

// Calls a subclass's own Action, or else the Sub given to AddHandler.
void fire(REALobject self) {
    for (const Method* m : classOf(self).methodsNamed("Action"))
        if (m->routine && m->signature.parameters.empty()) {
            invoke(*m, self, nullptr);
            return;
        }
    if (ObjectRef handler(Heap::retain(timer(self).handler)); handler) {
        Bits sender = Bits::of(self);
        invokeDelegate(handler, &sender);
    }
}

// The running host's. They hold no reference: a timer's destructor takes it out.
std::vector<REALobject> timers;

void fireDue() {
    // Handlers may start and drop timers, so each that is due is held until all have fired.
    std::vector<ObjectRef> due;
    double now = microseconds();
    for (REALobject t : timers)
        if (timer(t).mode != kOff && timer(t).due <= now) due.emplace_back(Heap::retain(t));
    for (REALobject t : due) {
        if (timer(t).mode == kOff) continue;
        if (timer(t).mode == kSingle) timer(t).mode = kOff;
        restart(t);
        fire(t);
    }
}

/// Fires its Action whenever the program yields and it is due. A subclass has a method Action, or
/// AddHandler gives one.
///     Sub Tick(sender As Timer)
///       sender.Mode = Timer.ModeOff
///     End Sub
///     Dim clock As New Timer
///     AddHandler clock.Action, AddressOf Tick
FrameworkClass timerClass() {
    timers.clear(); // an earlier host may have left some behind
    FrameworkClass table = classWithData<Timer>("Timer");
    table.constructor = +[](REALobject self) {
        new (instanceData(self)) Timer();
        timers.push_back(self);
    };
    table.destructor = +[](REALobject self) {
        std::erase(timers, self);
        heap().release(std::exchange(timer(self).handler, nullptr));
    };
    table.properties = {
        /// The time between two actions in milliseconds, at least 1; 1000 at first. Setting it starts the
        /// time anew.
        ///     clock.Period = 5
        property(
            "Period", "Integer", [](REALobject self) { return timer(self).period; },
            [](REALobject self, std::uint32_t, std::int32_t value) {
                timer(self).period = std::max(value, 1);
                restart(self);
            }),
        /// One of the constants below; ModeOff at first. Setting it starts the time anew.
        ///     clock.Mode = Timer.ModeSingle
        property(
            "Mode", "Integer", [](REALobject self) { return timer(self).mode; },
            [](REALobject self, std::uint32_t, std::int32_t value) {
                timer(self).mode = value;
                restart(self);
            }),
        /// Whether the timer runs. True makes it fire again and again.
        ///     clock.Enabled = True
        property(
            "Enabled", "Boolean", [](REALobject self) { return timer(self).mode != kOff; },
            [](REALobject self, std::uint32_t, bool value) {
                timer(self).mode = value ? kMultiple : kOff;
                restart(self);
            }),
    };
    table.methods = {
        /// Starts the time anew.
        ///     clock.Reset
        method("Reset", restart),
    };
    table.constants = {
        /// Never fires.
        "ModeOff = 0",
        /// Fires once.
        "ModeSingle = 1",
        /// Fires again and again.
        "ModeMultiple = 2",
    };
    table.events = {
        /// What the timer does when it is due.
        ///     clock.Mode = Timer.ModeSingle
        ///     DoEvents(10)
        "Action",
    };
    table.setHandler = [](REALobject self, std::string_view, REALobject handler) {
        heap().release(std::exchange(timer(self).handler, Heap::retain(handler)));
    };
    table.atYield = fireDue;
    return table;
}

const Registrar registrar([] { return FrameworkPart{{timerClass()}}; });

} // namespace

} // namespace studio
