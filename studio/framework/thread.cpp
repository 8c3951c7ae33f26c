// Thread, Mutex, CriticalSection and Semaphore. Threads take turns: one runs until it yields, sleeps or ends,
// and the main program's yields let each of the others go on.
#include "clock.h"
#include "runtime/calls.h"
#include "runtime/delegates.h"
#include "table.h"

#include <pthread.h>

#include <algorithm>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>

namespace studio {

namespace {

enum State { kRunning = 0, kWaiting = 1, kSuspended = 2, kSleeping = 3, kNotRunning = 4 };

// Unwinds a thread that is killed. The language cannot catch it.
struct ThreadEnd {};

struct Worker {
    REALobject thread; // held while it runs
    std::unique_ptr<RoutineContext> context;
    pthread_t native = {};
    bool started = false, finished = false, killed = false, suspended = false;
    double wakeAt = 0; // microseconds; of a sleeping thread
    std::optional<Raised> unhandled;
    std::optional<QuitRequest> quit;
};

struct Thread {
    Worker* worker = nullptr; // null unless it runs
    REALobject handler = nullptr;
    std::int32_t priority = 5, stackSize = 0;
};
Thread& thread(REALobject self) { return dataOf<Thread>(self); }

// Who may run. Every change is announced, and everyone but the one named waits.
std::mutex baton;
std::condition_variable passed;
Worker* running = nullptr; // null: the main program
std::vector<std::unique_ptr<Worker>> workers;

void runBody(Worker& worker) {
    REALobject self = worker.thread;
    try {
        for (const Method* m : classOf(self).methodsNamed("event Run"))
            if (m->routine && m->signature.parameters.empty()) {
                invoke(*m, self, nullptr);
                return;
            }
        if (ObjectRef handler(Heap::retain(thread(self).handler)); handler) {
            Bits sender = Bits::of(self);
            invokeDelegate(handler, &sender);
        }
    } catch (const ThreadEnd&) {
    } catch (Raised& raised) {
        worker.unhandled = std::move(raised);
    } catch (const QuitRequest& request) {
        worker.quit = request;
    }
}

void* runNative(void* argument) {
    Worker& worker = *static_cast<Worker*>(argument);
    std::unique_lock lock(baton);
    passed.wait(lock, [&] { return running == &worker; });
    lock.unlock();
    runBody(worker);
    lock.lock();
    worker.finished = true;
    running = nullptr;
    passed.notify_all();
    return nullptr;
}

// Lets a worker run until it yields or ends. Called by the main program only.
void letRun(Worker& worker) {
    if (!worker.started) {
        // As much as the depth of calls may use, and room for what they call.
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstacksize(&attributes, 8u << 20);
        int failed = pthread_create(&worker.native, &attributes, runNative, &worker);
        pthread_attr_destroy(&attributes);
        if (failed) {
            worker.finished = true;
            return;
        }
        worker.started = true;
    }
    if (worker.context) runtime().exchangeContext(*worker.context);
    std::unique_lock lock(baton);
    running = &worker;
    passed.notify_all();
    passed.wait(lock, [] { return running == nullptr; });
    lock.unlock();
    if (worker.context) runtime().exchangeContext(*worker.context);
}

// Takes finished workers out; their threads' objects may go with them.
void bury(Worker* worker) {
    auto at = std::find_if(workers.begin(), workers.end(), [&](auto& w) { return w.get() == worker; });
    std::unique_ptr<Worker> gone = std::move(*at);
    workers.erase(at);
    if (gone->started) pthread_join(gone->native, nullptr);
    thread(gone->thread).worker = nullptr;
    heap().release(gone->thread);
    if (gone->quit) throw *gone->quit;
    if (gone->unhandled) throw std::move(*gone->unhandled);
}

bool isReady(const Worker& worker) {
    return !worker.suspended && (worker.killed || worker.wakeAt <= microseconds());
}

bool inWorker() { return running != nullptr; }

// Gives up the turn of the thread that calls.
void pauseWorker() {
    Worker& self = *running;
    std::unique_lock lock(baton);
    running = nullptr;
    passed.notify_all();
    passed.wait(lock, [&] { return running == &self; });
    lock.unlock();
    if (self.killed) throw ThreadEnd{};
}

// One turn for every thread that is ready.
void giveTurns() {
    if (inWorker() || heap().callDepth() > 0) return;
    std::vector<Worker*> ready;
    for (auto& worker : workers)
        if (isReady(*worker)) ready.push_back(worker.get());
    for (Worker* worker : ready) {
        letRun(*worker);
        if (worker->finished) bury(worker);
    }
}

// A plugin's call in progress is not left in the middle.
bool yieldWorker() {
    if (!inWorker()) return false;
    if (heap().callDepth() == 0) pauseWorker();
    return true;
}

void rest(double milliseconds) {
    double until = microseconds() + milliseconds * 1000;
    if (inWorker()) {
        running->wakeAt = until;
        pauseWorker();
        return;
    }
    do {
        runtime().yield();
        timespec nap = {0, 200'000};
        nanosleep(&nap, nullptr);
    } while (microseconds() < until);
}

void start(REALobject self) {
    Thread& t = thread(self);
    if (t.worker) {
        t.worker->suspended = false; // Run resumes, too
        return;
    }
    auto worker = std::make_unique<Worker>();
    worker->thread = Heap::retain(self);
    if (runtime().makeContext) worker->context = runtime().makeContext();
    t.worker = worker.get();
    workers.push_back(std::move(worker));
}

void kill(REALobject self) {
    Worker* worker = thread(self).worker;
    if (!worker) return;
    worker->killed = true;
    worker->suspended = false;
    if (worker == running) throw ThreadEnd{};
    if (!worker->started) worker->finished = true;
    if (inWorker()) return; // ends at its next turn
    if (!worker->finished) letRun(*worker);
    if (worker->finished) bury(worker);
}

// The program is over: what still runs is unwound.
void endAll() {
    while (!workers.empty()) {
        Worker* worker = workers.back().get();
        try {
            kill(worker->thread);
        } catch (const Raised&) { // nobody is left to hear of it
        } catch (const QuitRequest&) {
        }
    }
}

std::int32_t stateOf(REALobject self) {
    const Worker* worker = thread(self).worker;
    if (!worker || worker->finished) return kNotRunning;
    if (worker->suspended) return kSuspended;
    return worker->wakeAt > microseconds() ? kSleeping : kRunning;
}

/// Runs beside the program. Threads take turns: one runs until it yields, sleeps or ends. A subclass has an
/// event Run, or AddHandler gives one.
///     Sub CountFruits(sender As Thread)
///       App.YieldToNextThread
///     End Sub
///     Dim worker As New Thread
///     AddHandler worker.Run, AddressOf CountFruits
FrameworkClass threadClass() {
    workers.clear(); // an earlier host may have left some behind
    FrameworkClass table = classWithData<Thread>("Thread");
    table.destructor = +[](REALobject self) { heap().release(std::exchange(thread(self).handler, nullptr)); };
    table.properties = {
        /// What the thread does: one of the constants below.
        ///     Print Str(worker.State = Thread.NotRunning)
        property("State", "Integer", stateOf),
        /// A number that is kept but changes nothing, as every thread gets its turn; 5 at first.
        ///     worker.Priority = 8
        property(
            "Priority", "Integer", [](REALobject self) { return thread(self).priority; },
            [](REALobject self, std::uint32_t, std::int32_t value) { thread(self).priority = value; }),
        /// A number that is kept but changes nothing; the stack is 8 MB.
        ///     worker.StackSize = 65536
        property(
            "StackSize", "Integer", [](REALobject self) { return thread(self).stackSize; },
            [](REALobject self, std::uint32_t, std::int32_t value) { thread(self).stackSize = value; }),
    };
    table.methods = {
        /// Starts the thread, which first runs when the program yields; resumes one that is suspended.
        ///     worker.Run
        method("Run", start),
        /// Ends the thread; its Finally blocks run, but it cannot catch that.
        ///     worker.Kill
        method("Kill", kill),
        /// Lets the thread wait for this many milliseconds.
        ///     worker.Sleep(5)
        method("Sleep(milliseconds As Integer)",
               [](REALobject self, std::int32_t milliseconds) {
                   Worker* worker = thread(self).worker;
                   if (worker && worker == running) return rest(milliseconds);
                   if (worker) worker->wakeAt = microseconds() + milliseconds * 1000.0;
               }),
        /// Stops the thread until Resume or Run.
        ///     worker.Suspend
        method("Suspend",
               [](REALobject self) {
                   Worker* worker = thread(self).worker;
                   if (!worker) return;
                   worker->suspended = true;
                   if (worker == running) pauseWorker();
               }),
        /// Lets the thread go on after Suspend or Sleep.
        ///     worker.Resume
        method("Resume",
               [](REALobject self) {
                   if (Worker* worker = thread(self).worker) {
                       worker->suspended = false;
                       worker->wakeAt = 0;
                   }
               }),
    };
    table.constants = {
        /// It runs, or waits for its turn.
        "Running = 0",
        /// Not used here: a thread that waits for a lock sleeps.
        "Waiting = 1",
        /// It waits for Resume.
        "Suspended = 2",
        /// It waits for its time to come.
        "Sleeping = 3",
        /// It has not been started, or has ended.
        "NotRunning = 4",
    };
    table.events = {
        /// What the thread does. An exception that it does not catch ends the program.
        ///     AddHandler worker.Run, AddressOf CountFruits
        "Run",
    };
    table.setHandler = [](REALobject self, std::string_view, REALobject handler) {
        heap().release(std::exchange(thread(self).handler, Heap::retain(handler)));
    };
    table.atYield = giveTurns;
    runtime().yieldThread = yieldWorker;
    table.atEnd = endAll;
    return table;
}

// ---- locks -----------------------------------------------------------------------------------------------

// Held by at most `free` threads at a time. A thread may enter a lock that it holds again, unless it counts.
struct Lock {
    std::int32_t free = 1;
    Worker* owner = nullptr; // of a lock that does not count
    std::int32_t depth = 0;
    bool counts = false;
};
Lock& lockOf(REALobject self) { return dataOf<Lock>(self); }

bool tryEnter(REALobject self) {
    Lock& lock = lockOf(self);
    if (!lock.counts && lock.depth > 0 && lock.owner == running) {
        ++lock.depth;
        return true;
    }
    if (lock.free <= 0) return false;
    --lock.free;
    lock.owner = running;
    lock.depth = 1;
    return true;
}

void enter(REALobject self) {
    while (!tryEnter(self)) {
        bool othersRun = inWorker() || !workers.empty();
        if (!othersRun) raise("IllegalLockingException", "nobody is left who could leave this lock");
        rest(1);
    }
}

void leave(REALobject self) {
    Lock& lock = lockOf(self);
    if (!lock.counts) {
        if (lock.depth == 0 || lock.owner != running)
            raise("IllegalLockingException", "this thread does not hold the lock");
        if (--lock.depth > 0) return;
    }
    ++lock.free;
}

/// A lock that one thread holds at a time. That thread may enter it again and leaves it as often.
///     Dim lock As New Mutex("fruits")
FrameworkClass mutexClass() {
    FrameworkClass table = classWithData<Lock>("Mutex");
    table.methods = {
        /// Makes a lock. The name is for locks between programs, which there are none of here.
        ///     Dim other As New Mutex("pears")
        method("Constructor(name As String)", [](REALobject, REALstring) {}),
        /// Waits until the lock is free, and holds it. Raises IllegalLockingException if nobody is left who
        /// could leave it.
        ///     lock.Enter
        ///     lock.Leave
        method("Enter", enter),
        /// Holds the lock if it is free; returns False otherwise.
        ///     If lock.TryEnter Then lock.Leave
        method("TryEnter As Boolean", tryEnter),
        /// Lets go of the lock. Raises IllegalLockingException if this thread does not hold it.
        ///     lock.Enter
        ///     lock.Leave
        method("Leave", leave)};
    return table;
}

/// A lock that one thread holds at a time. That thread may enter it again and leaves it as often.
///     Dim lock As New CriticalSection
FrameworkClass criticalSectionClass() {
    FrameworkClass table = classWithData<Lock>("CriticalSection");
    table.methods = {
        /// Waits until the lock is free, and holds it. Raises IllegalLockingException if nobody is left who
        /// could leave it.
        ///     lock.Enter
        ///     lock.Leave
        method("Enter", enter),
        /// Holds the lock if it is free; returns False otherwise.
        ///     If lock.TryEnter Then lock.Leave
        method("TryEnter As Boolean", tryEnter),
        /// Lets go of the lock. Raises IllegalLockingException if this thread does not hold it.
        ///     lock.Enter
        ///     lock.Leave
        method("Leave", leave)};
    return table;
}

/// A lock that as many threads hold at a time as it has places.
///     Dim places As New Semaphore(2)
FrameworkClass semaphoreClass() {
    FrameworkClass table = classWithData<Lock>("Semaphore");
    table.methods = {
        /// Makes a semaphore with this many places.
        ///     Dim single As New Semaphore
        method("Constructor(count As Integer = 1)",
               [](REALobject self, std::int32_t count) {
                   lockOf(self).free = count;
                   lockOf(self).counts = true;
               }),
        /// Waits for a free place and takes it. Raises IllegalLockingException if nobody is left who could
        /// release one.
        ///     places.Signal
        ///     places.Release
        method("Signal", enter),
        /// Takes a place if one is free; returns False otherwise.
        ///     If places.TrySignal Then places.Release
        method("TrySignal As Boolean", tryEnter),
        /// Gives a place back.
        ///     places.Signal
        ///     places.Release
        method("Release", leave),
    };
    return table;
}

const Registrar registrar([] {
    return FrameworkPart{{threadClass(), mutexClass(), criticalSectionClass(), semaphoreClass(),
                          /// A lock is left by a thread that does not hold it, or waited for though nobody is
                          /// left to leave it.
                          exceptionClass("IllegalLockingException")}};
});

} // namespace

} // namespace studio
