#include "runtime/calls.h"

#include "runtime/arrays.h"
#include "runtime/autorelease_pool.h"
#include "runtime/exceptions.h"
#include "runtime/references.h"
#include "runtime/strings.h"
#include "runtime/variants.h"

#include <ffi.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace studio {

namespace {

ffi_type* ffiType(const Type* type) {
    if (!type) return &ffi_type_void;
    switch (type->kind) {
    case Kind::Void:
        return &ffi_type_void;
    case Kind::Boolean:
    case Kind::UInt8:
        return &ffi_type_uint8;
    case Kind::Int8:
        return &ffi_type_sint8;
    case Kind::Int16:
        return &ffi_type_sint16;
    case Kind::UInt16:
        return &ffi_type_uint16;
    case Kind::Int32:
        return &ffi_type_sint32;
    case Kind::UInt32:
    case Kind::Color:
        return &ffi_type_uint32;
    case Kind::Int64:
        return &ffi_type_sint64;
    case Kind::UInt64:
        return &ffi_type_uint64;
    case Kind::Single:
        return &ffi_type_float;
    case Kind::Double:
        return &ffi_type_double;
    default:
        return &ffi_type_pointer;
    }
}

// libffi widens small integer results to a word.
Bits resultBits(const Type* type, const void* memory) {
    Bits bits;
    if (!type) return bits;
    ffi_arg word;
    std::memcpy(&word, memory, sizeof word);
    switch (type->kind) {
    case Kind::Boolean:
        return Bits::of((word & 0xFF) != 0);
    case Kind::UInt8:
        return Bits::of(std::int32_t(std::uint8_t(word)));
    case Kind::Int8:
        return Bits::of(std::int32_t(std::int8_t(word)));
    case Kind::UInt16:
        return Bits::of(std::int32_t(std::uint16_t(word)));
    case Kind::Int16:
        return Bits::of(std::int32_t(std::int16_t(word)));
    case Kind::Int64:
    case Kind::UInt64:
    case Kind::Double:
        std::memcpy(&bits, memory, 8);
        return bits;
    default:
        std::memcpy(&bits, memory, 4);
        return bits;
    }
}

} // namespace

struct CallPlan {
    ffi_cif cif;
    std::vector<ffi_type*> types;
    bool hasSelf;
    const Type* result;
    std::vector<const Type*> parameters;
    // Made when a plugin asks for the method.
    ffi_closure* closure = nullptr;
    void* code = nullptr;
    void* function = nullptr;
    std::string name;

    ~CallPlan() {
        if (closure) ffi_closure_free(closure);
    }
};

namespace {

std::shared_ptr<CallPlan> makePlan(const Signature& signature, bool hasSelf, std::string name) {
    auto plan = std::make_shared<CallPlan>();
    plan->hasSelf = hasSelf;
    plan->result = signature.result;
    plan->name = std::move(name);
    if (hasSelf) plan->types.push_back(&ffi_type_pointer);
    for (const Parameter& p : signature.parameters) {
        plan->parameters.push_back(p.type);
        plan->types.push_back(p.byRef ? &ffi_type_pointer : ffiType(p.type));
    }
    ffi_prep_cif(&plan->cif, FFI_DEFAULT_ABI, unsigned(plan->types.size()), ffiType(plan->result),
                 plan->types.data());
    return plan;
}

const CallPlan& planOf(const Method& method, bool setter) {
    auto& plan = setter ? method.setterPlan : method.plan;
    if (!plan)
        plan =
            makePlan(setter ? method.setterSignature() : method.signature, !method.shared, method.fullName());
    return *plan;
}

Bits callFunction(const CallPlan& plan, void* function, REALobject self, const Bits* arguments) {
    constexpr std::size_t kMost = 32;
    void* values[kMost + 1];
    std::size_t count = 0;
    if (plan.hasSelf) values[count++] = &self;
    for (std::size_t i = 0; i < plan.parameters.size() && count < kMost; ++i)
        values[count++] = const_cast<Bits*>(&arguments[i]);
    alignas(8) char result[16] = {};
    ffi_call(const_cast<ffi_cif*>(&plan.cif), FFI_FN(function), result, values);
    return resultBits(plan.result, result);
}

// Around each call into a plugin: its name for messages, and a pool for what it autoreleases.
struct PluginCall {
    Heap::CallScope scope;
    std::optional<AutoreleasePool> pool;

    explicit PluginCall(std::string_view name) : scope(heap(), name) {
        if (heap().callDepth() == 1) pool.emplace();
    }
};

// A plugin's result is on the plugins' account until the host takes it over.
Bits takeOverResult(const Type* type, Bits bits) {
    if (!type) return bits;
    if (type->kind == Kind::String)
        bits.string = heap().takeOver(bits.string);
    else if (type->isObject())
        bits.object = heap().takeOver(bits.object);
    return bits;
}

Bits callByOrigin(const CallPlan& plan, void* function, Origin origin, REALobject self,
                  const Bits* arguments) {
    if (origin != Origin::Plugin) return callFunction(plan, function, self, arguments);
    Bits result;
    {
        PluginCall call(plan.name);
        result = takeOverResult(plan.result, callFunction(plan, function, self, arguments));
    }
    if (runtime().pending || runtime().quit) {
        if (plan.result) release(plan.result, result);
        throwPending();
    }
    return result;
}

/// Remembers a call that looked something up by its name and found nothing, until one of that type finds
/// something.
void noteWhatWasFound(const Method& method, const Bits* arguments, Bits result) {
    const std::vector<Parameter>& parameters = method.signature.parameters;
    bool byName = method.origin == Origin::Plugin && method.signature.result && !parameters.empty() &&
                  method.signature.result->kind == Kind::Object && parameters[0].type->kind == Kind::String;
    if (!byName) return;
    auto& note = runtime().foundNothing;
    if (!result.object)
        note = {method.signature.result, method.fullName() + "(\"" + toUtf8(arguments[0].string) + "\")"};
    else if (note.type == method.signature.result)
        note = {};
}

} // namespace

Bits invoke(const Method& method, REALobject self, const Bits* arguments) {
    if (method.routine) // runRoutine is empty when an object outlives its program
        return runtime().runRoutine ? runtime().runRoutine(method, self, arguments) : Bits();
    Bits result = callByOrigin(planOf(method, false), method.function, method.origin, self, arguments);
    noteWhatWasFound(method, arguments, result);
    return result;
}

void invokeSetter(const Method& method, REALobject self, const Bits* arguments) {
    callByOrigin(planOf(method, true), method.setter, method.origin, self, arguments);
}

void callHook(void* function, REALobject self, std::string_view name, Origin origin) {
    if (origin != Origin::Plugin) return reinterpret_cast<void (*)(REALobject)>(function)(self);
    {
        PluginCall call(name);
        reinterpret_cast<void (*)(REALobject)>(function)(self);
    }
    throwPending();
}

// ---- properties ------------------------------------------------------------------------------------------

namespace {

const CallPlan& accessorPlan(const Property& property, bool setter) {
    static std::map<std::tuple<const Type*, bool, bool>, std::shared_ptr<CallPlan>> plans;
    auto& plan = plans[{property.type, setter, property.shared}];
    if (!plan) {
        Signature signature;
        Parameter parameter;
        parameter.type = simpleType(Kind::UInt32);
        signature.parameters.push_back(parameter);
        if (setter) {
            parameter.type = property.type;
            signature.parameters.push_back(parameter);
        } else {
            signature.result = property.type;
        }
        plan = makePlan(signature, !property.shared, "");
    }
    return *plan;
}

} // namespace

Bits readProperty(const Property& property, REALobject self) {
    if (property.standardGetter()) {
        const void* field =
            &dataAt<char>(self, property.owner->dataOffset + std::int32_t(property.parameter));
        Bits bits;
        switch (property.type->kind) {
        case Kind::Boolean:
        case Kind::UInt8:
            bits = Bits::of(std::int32_t(*static_cast<const std::uint8_t*>(field)));
            break;
        case Kind::Int64:
        case Kind::UInt64:
        case Kind::Double:
            std::memcpy(&bits, field, 8);
            break;
        default:
            std::memcpy(&bits, field, 4);
            break;
        }
        if (property.type->isObject() && !heap().check(bits.object, property.name)) bits.object = nullptr;
        return retain(property.type, bits);
    }
    Bits arguments[1] = {Bits::of(property.parameter)};
    if (property.owner->origin != Origin::Plugin)
        return callFunction(accessorPlan(property, false), property.getter, self, arguments);
    std::string name = property.owner->name + "." + property.name;
    Bits result;
    {
        PluginCall call(name);
        result = takeOverResult(
            property.type, callFunction(accessorPlan(property, false), property.getter, self, arguments));
    }
    if (runtime().pending || runtime().quit) {
        release(property.type, result);
        throwPending();
    }
    return result;
}

void writeProperty(const Property& property, REALobject self, Bits value) {
    if (property.standardSetter()) {
        // A plain store: the field holds no reference, so this one is released.
        void* field = &dataAt<char>(self, property.owner->dataOffset + std::int32_t(property.parameter));
        std::memcpy(field, &value, std::size_t(elementSize(property.type)));
        release(property.type, value);
        return;
    }
    Held released(property.type, value);
    Bits arguments[2] = {Bits::of(property.parameter), value};
    std::string name = property.owner->name + "." + property.name;
    {
        PluginCall call(name);
        callFunction(accessorPlan(property, true), property.setter, self, arguments);
    }
    if (property.owner->origin == Origin::Plugin) throwPending();
}

// ---- the host's methods for plugins ----------------------------------------------------------------------

namespace {

void serveClosure(ffi_cif*, void* result, void** values, void* user) {
    const CallPlan& plan = *static_cast<CallPlan*>(user);
    Bits bits = leavingPending([&] {
        std::size_t at = 0;
        bool sound = true;
        REALobject self = nullptr;
        if (plan.hasSelf) {
            self = *static_cast<REALobject*>(values[at++]);
            sound = self && heap().check(self, plan.name);
        }
        std::vector<Bits> arguments(plan.parameters.size());
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            const Type* type = plan.parameters[i];
            std::size_t size = ffiType(type)->size;
            std::memcpy(&arguments[i], values[at++], size);
            if (type->kind == Kind::String) sound &= heap().check(arguments[i].string, plan.name);
            if (type->isObject()) sound &= heap().check(arguments[i].object, plan.name);
        }
        Bits bits;
        if (sound) bits = callFunction(plan, plan.function, self, arguments.data());
        if (plan.result && plan.result->kind == Kind::String) heap().handOut(bits.string);
        if (plan.result && plan.result->isObject()) heap().handOut(bits.object);
        return bits;
    });
    if (!plan.result) return;
    ffi_type* type = ffiType(plan.result);
    if (type->size < sizeof(ffi_arg)) {
        *static_cast<ffi_arg*>(result) = bits.u32;
    } else {
        std::memcpy(result, &bits, type->size);
    }
}

} // namespace

void* functionForPlugins(const Method& method, bool setter) {
    if (method.routine) return nullptr;
    void* function = setter ? method.setter : method.function;
    if (!function || method.origin == Origin::Plugin) return function;
    CallPlan& plan = const_cast<CallPlan&>(planOf(method, setter));
    if (!plan.closure) {
        plan.function = function;
        plan.closure = static_cast<ffi_closure*>(ffi_closure_alloc(sizeof(ffi_closure), &plan.code));
        if (!plan.closure ||
            ffi_prep_closure_loc(plan.closure, &plan.cif, serveClosure, &plan, plan.code) != FFI_OK)
            return nullptr;
    }
    return plan.code;
}

// ---- overloads -------------------------------------------------------------------------------------------

namespace {

std::string listTypes(const std::vector<const Type*>& types) {
    std::string result;
    for (const Type* type : types) result += (result.empty() ? "" : ", ") + type->name;
    return "(" + result + ")";
}

// The cost of a call; -1 when the arguments do not fit.
int callCost(const Signature& signature, const std::vector<const Type*>& arguments) {
    std::size_t fixed = signature.parameters.size();
    bool open = fixed > 0 && signature.parameters.back().paramArray;
    if (open) --fixed;
    if (arguments.size() < signature.requiredCount() + signature.assigns() ||
        (arguments.size() > fixed && !open))
        return -1;
    int total = 0;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const Parameter& p = signature.parameters[std::min(i, signature.parameters.size() - 1)];
        const Type* type = open && i >= fixed ? p.type->element : p.type;
        int cost = conversionCost(arguments[i], type);
        // A variable passed by reference must have exactly the parameter's type.
        if (cost < 0 || (p.byRef && arguments[i] != type)) return -1;
        total += cost + (open && i >= fixed ? 1 : 0);
    }
    // Of two equally good fits, the one that needs fewer defaults wins; a ParamArray counts as one.
    std::size_t defaults = (fixed > arguments.size() ? fixed - arguments.size() : 0) + open;
    return total * 8 + int(std::min<std::size_t>(7, defaults));
}

} // namespace

Choice chooseOverload(const std::vector<const Method*>& candidates, const std::vector<const Type*>& arguments,
                      std::string_view name, bool withSetterValue) {
    int best = std::numeric_limits<int>::max();
    std::vector<const Method*> winners;
    for (const Method* m : candidates) {
        if (withSetterValue && !m->setter && !m->signature.assigns()) continue;
        int cost = callCost(withSetterValue && m->setter ? m->setterSignature() : m->signature, arguments);
        if (cost < 0 || cost > best) continue;
        if (cost < best) winners.clear();
        best = cost;
        winners.push_back(m);
    }
    // A program's own function beats an equally good one of the framework.
    if (std::any_of(winners.begin(), winners.end(),
                    [](const Method* m) { return m->origin == Origin::Program; }))
        std::erase_if(winners, [](const Method* m) { return m->origin != Origin::Program; });
    if (winners.size() == 1) return {winners[0], {}};
    std::string problem;
    if (winners.empty()) {
        problem = std::string(name) + " does not take " +
                  (arguments.empty() ? "no arguments" : listTypes(arguments)) + "; expected ";
        winners = candidates;
    } else {
        problem = "this call of " + std::string(name) + " is ambiguous; it may be ";
    }
    for (std::size_t i = 0; i < winners.size(); ++i)
        problem += (i ? " or " : "") + (withSetterValue && winners[i]->setter ? winners[i]->setterSignature()
                                                                              : winners[i]->signature)
                                           .text();
    return {nullptr, problem};
}

} // namespace studio
