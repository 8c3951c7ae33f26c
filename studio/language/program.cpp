#include "language/program.h"

#include "framework/exceptions.h"
#include "runtime/arrays.h"
#include "runtime/calls.h"
#include "runtime/delegates.h"
#include "runtime/exceptions.h"
#include "runtime/references.h"
#include "runtime/strings.h"
#include "syntax/names.h"

#include <algorithm>

namespace studio {

namespace {

constexpr std::size_t kNativeStackBytes = 5u << 20;

// Measures the depth of the thread's native stack from its first call.
bool nativeStackIsUsedUp() {
    static thread_local const char* base = nullptr;
    char here;
    if (!base || &here > base) base = &here;
    return std::size_t(base - &here) > kNativeStackBytes;
}

} // namespace

struct Program::Context : RoutineContext {
    std::vector<Bits> stack = std::vector<Bits>(1 << 16);
    std::size_t top = 0;
    std::vector<Place> callers;
    std::vector<REALobject> kept;
    Place at;
};

void Program::exchange(Context& other) {
    std::swap(stack_, other.stack);
    std::swap(top_, other.top);
    std::swap(callers_, other.callers);
    std::swap(kept_, other.kept);
    std::swap(at, other.at);
}

Program::~Program() {
    end();
    for (REALstring literal : literals) heap().freePermanent(literal);
    runtime().runRoutine = nullptr;
    runtime().noteRaised = nullptr;
    runtime().makeContext = nullptr;
    runtime().exchangeContext = nullptr;
}

void Program::begin(const std::vector<std::string>& arguments) {
    runtime().runRoutine = [this](const Method& method, REALobject self, const Bits* arguments) {
        const Signature& signature = method.signature;
        std::vector<Bits> copies;
        for (std::size_t i = 0; i < signature.parameters.size(); ++i)
            copies.push_back(retain(signature.parameters[i].type, arguments[i]));
        Bits result = call(*method.routine, self, copies.data());
        for (std::size_t i = 0; i < copies.size(); ++i)
            if (method.routine->byRef[i]) release(signature.parameters[i].type, copies[i]);
        return result;
    };
    runtime().noteRaised = [this](REALobject exception) { noteRaised(exception); };
    runtime().makeContext = [] { return std::make_unique<Context>(); };
    runtime().exchangeContext = [this](RoutineContext& other) { exchange(static_cast<Context&>(other)); };
    Global& args = globals.front(); // declared by the compiler
    args.bits = Bits::of(newArray(simpleType(Kind::String)));
    for (const std::string& argument : arguments)
        arrayAppend(arrayOf(args.bits.object), Bits::of(makeString(argument)));
    run(prepare);
    run(main);
}

void Program::run(const Routine& routine) {
    Bits none;
    call(routine, nullptr, &none);
}

void Program::end() {
    for (const auto& hook : runtime().endHooks) hook();
    for (Global& global : globals) release(global.type, std::exchange(global.bits, Bits()));
}

// A destructor may run code that keeps objects of its own.
void Program::releaseKept(std::size_t bottom) {
    while (kept_.size() > bottom) {
        REALobject last = kept_.back();
        kept_.pop_back();
        heap().release(last);
    }
}

std::vector<const Routine*> Program::tests() const {
    std::vector<const Routine*> result;
    for (const Routine& routine : routines)
        if (!routine.owner && routine.parameters.empty() && !routine.method->signature.result &&
            routine.method->signature.name.size() > 4 &&
            sameName(routine.method->signature.name.substr(0, 4), "Test"))
            result.push_back(&routine);
    return result;
}

Bits Program::call(const Routine& routine, REALobject self, Bits* arguments) {
    std::size_t count = std::size_t(routine.slotCount);
    std::size_t given = routine.parameters.size();
    if (top_ + count > stack_.size() || nativeStackIsUsedUp()) {
        for (std::size_t i = 0; i < given; ++i)
            release(routine.parameters[i], std::exchange(arguments[i], Bits()));
        raise("StackOverflowException", "the calls are nested too deeply");
    }
    struct Call {
        Program& program;
        const Routine& routine;
        std::size_t bottom;
        Call(Program& program, const Routine& routine, std::size_t count)
            : program(program), routine(routine), bottom(program.top_) {
            program.top_ += count;
            program.callers_.push_back(program.at);
        }
        ~Call() {
            for (std::size_t i = 0; i < routine.parameters.size(); ++i)
                release(routine.parameters[i], program.stack_[bottom + i]);
            program.top_ = bottom;
            program.at = program.callers_.back();
            program.callers_.pop_back();
        }
    } call(*this, routine, count);

    Frame frame{&stack_[call.bottom], self, {}, 0};
    std::copy(arguments, arguments + given, frame.slots);
    std::fill(frame.slots + given, frame.slots + count, Bits());
    try {
        inMemory([&] {
            if (routine.body) routine.body(frame);
        });
    } catch (...) { // a Finally that throws may leave a result behind
        if (routine.method && routine.method->signature.result)
            release(routine.method->signature.result, frame.result);
        throw;
    }
    for (std::size_t i = 0; i < given; ++i)
        arguments[i] = routine.byRef[i] ? std::exchange(frame.slots[i], Bits()) : Bits();
    return frame.result;
}

Bits Program::callDelegate(REALobject delegate, Bits* arguments) {
    DelegateData target = delegateTarget(delegate);
    ObjectRef self(target.self);
    const Method& method = *target.method;
    if (method.routine) return call(*method.routine, self, arguments);
    struct Release {
        const Signature& signature;
        Bits* arguments;
        ~Release() {
            for (std::size_t i = 0; i < signature.parameters.size(); ++i)
                release(signature.parameters[i].type, std::exchange(arguments[i], Bits()));
        }
    } releaseAtEnd{method.signature, arguments};
    return invoke(method, self, arguments);
}

const Routine& Program::dispatch(const Routine& routine, REALobject self) {
    const Class* cls = &classOf(self);
    if (cls == routine.owner) return routine;
    auto [entry, fresh] = overrides_.try_emplace({&routine, cls}, &routine);
    if (fresh) {
        for (const Method* candidate : cls->methodsNamed(routine.method->signature.name)) {
            if (!candidate->routine || candidate->routine->parameters != routine.parameters) continue;
            entry->second = candidate->routine;
            break;
        }
    }
    return *entry->second;
}

void Program::noteRaised(REALobject exception) {
    std::vector<std::string>& places = exceptionData(exception).places;
    if (!places.empty()) return;
    auto add = [&](Place place) {
        if (place.line > 0)
            places.push_back(files[std::size_t(place.file)] + ":" + std::to_string(place.line));
    };
    add(at);
    constexpr std::size_t kMostPlaces = 20;
    for (auto caller = callers_.rbegin(); caller != callers_.rend() && places.size() < kMostPlaces; ++caller)
        add(*caller);
}

} // namespace studio
