// The running host, as its own parts see it.
#pragma once

#include "runtime/class_table.h"
#include "runtime/heap.h"

namespace studio {

// What the language keeps for the routines that are running.
struct RoutineContext {
    virtual ~RoutineContext() = default;
};

// One per process at a time. Floors above extend it through hooks.
struct Runtime {
    explicit Runtime(std::optional<double> version); // UsageError when there is one already
    ~Runtime();
    Runtime(const Runtime&) = delete;

    void yield(); // the hooks, then the handler; a handler that yields again has no effect

    std::optional<double> toldVersion; // none: the host keeps it secret
    Heap heap;
    ClassTable classes;
    std::optional<std::int32_t> recordVersion; // announced by the plugins
    REALobject pending = nullptr;              // raised, not thrown yet; one host reference
    REALobject outOfMemory = nullptr;          // the exception to raise when none can be made
    std::optional<int> quit;                   // Quit was called below a plugin's frame
    // The last call of a plugin that found nothing by a name: its type and its text, to explain a nil later
    // on.
    struct {
        const Type* type = nullptr;
        std::string call;
    } foundNothing;

    std::vector<std::function<void()>> yieldHooks; // the framework's
    std::vector<std::function<void()>> endHooks;   // the framework's: a program is over
    std::function<void()> yieldHandler;            // set by the user of Host
    // The language's, while a program runs: calls one of the program's routines.
    std::function<Bits(const Method&, REALobject, const Bits*)> runRoutine;
    std::function<void(REALobject)> noteRaised; // sees every exception first
    // For threads, while a program runs: a context for a thread, and its exchange for the running one.
    std::function<std::unique_ptr<RoutineContext>()> makeContext;
    std::function<void(RoutineContext&)> exchangeContext;
    // Gives up the turn of a thread of the program; false in the main program.
    std::function<bool()> yieldThread;

    bool exposesArrayStorage() const { return version() <= 2013.9; }
    double version() const { return toldVersion.value_or(0.0); }

  private:
    bool yielding_ = false;
};

Runtime& runtime(); // UsageError when there is no host
inline Heap& heap() { return runtime().heap; }
inline ClassTable& classes() { return runtime().classes; }

} // namespace studio
