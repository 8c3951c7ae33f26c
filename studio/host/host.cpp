#include <studio/host.h>

#include "framework/framework.h"
#include "framework/memoryblock.h"
#include "runtime/arrays.h"
#include "runtime/autorelease_pool.h"
#include "runtime/calls.h"
#include "runtime/exceptions.h"
#include "runtime/objects.h"
#include "runtime/references.h"
#include "runtime/strings.h"
#include "runtime/variants.h"
#include "services/services.h"
#include "syntax/source_error.h"

#include <dlfcn.h>

#include <algorithm>

namespace studio {

// ---- lifetime --------------------------------------------------------------------------------------------

namespace {

Host* theHost = nullptr;

} // namespace

struct Host::Impl {
    explicit Impl(HostOptions given)
        : options(std::move(given)), runtime(options.version), services(options.withheld) {}

    HostOptions options;
    Runtime runtime;
    Services services;
};

Host::Host(HostOptions options) : impl_(std::make_unique<Impl>(std::move(options))) {
    theHost = this;
    defineFramework(impl_->runtime.classes);
    prepareForNoMemory();
}

Host::~Host() {
    takePendingException();
    theHost = nullptr;
}

Host& Host::current() {
    if (!theHost) throw UsageError("there is no host");
    return *theHost;
}

const HostOptions& Host::options() const { return impl_->options; }
double Host::version() const { return impl_->runtime.version(); }

// ---- plugins ---------------------------------------------------------------------------------------------

void Host::loadPlugin(PluginEntry entry) {
    AutoreleasePool pool;
    entry(resolver());
}

void Host::loadPlugin(const std::string& path) {
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (!library) throw UsageError(std::string("cannot load the plugin: ") + dlerror());
    auto entry = reinterpret_cast<PluginEntry>(dlsym(library, "REALPluginMain"));
    if (!entry) throw UsageError(path + " is not a plugin: it has no REALPluginMain");
    loadPlugin(entry);
}

REALResolver Host::resolver() const { return &Services::resolve; }
std::optional<std::int32_t> Host::recordVersion() const { return impl_->runtime.recordVersion; }
std::vector<std::string> Host::requestedServices() const { return impl_->services.requested(); }
std::vector<std::string> Host::serviceNames() { return Services::names(); }

// ---- what is registered ----------------------------------------------------------------------------------

const Class* Host::findClass(std::string_view name) const { return impl_->runtime.classes.find(name); }

std::vector<const Class*> Host::pluginClasses() const {
    std::vector<const Class*> result;
    for (const Class* cls : impl_->runtime.classes.definitionOrder())
        if (cls->origin == Origin::Plugin) result.push_back(cls);
    return result;
}

std::vector<const Method*> Host::pluginFunctions() const {
    std::vector<const Method*> result;
    for (auto& function : impl_->runtime.classes.functions())
        if (function->origin == Origin::Plugin) result.push_back(function.get());
    return result;
}

// ---- programs in C++ -------------------------------------------------------------------------------------

namespace {

// Translates exceptions of the language into those for C++.
template <class Body>
auto translated(Body body) {
    try {
        return body();
    } catch (const Raised& raised) {
        REALobject object = raised.exception.object();
        throw HostException(raised.exception, classNameOf(object), exceptionMessage(object));
    } catch (const SourceError& error) {
        throw UsageError(error.what());
    }
}

Class& classNamed(std::string_view name) {
    Class* cls = classes().find(name);
    if (!cls) throw UsageError("there is no class " + std::string(name));
    return *cls;
}

// The arguments as the parameters' types, defaults filled in.
class Arguments {
  public:
    Arguments(const Signature& signature, const std::vector<Value>& given) {
        types_.reserve(signature.parameters.size()); // so that add() keeps what it is given
        bits_.reserve(signature.parameters.size());
        for (std::size_t i = 0; i < signature.parameters.size(); ++i) {
            const Parameter& p = signature.parameters[i];
            if (p.paramArray && (given.size() != i + 1 || given[i].type() != p.type)) {
                ObjectRef rest(newArray(p.type->element));
                for (std::size_t k = i; k < given.size(); ++k)
                    arrayAppend(arrayOf(rest), convert(given[k].type(), p.type->element,
                                                       retain(given[k].type(), given[k].bits())));
                add(p.type, Bits::of(rest.release()));
            } else if (i < given.size())
                add(p.type, convert(given[i].type(), p.type, retain(given[i].type(), given[i].bits())));
            else if (p.defaultValue && p.defaultValue->type->kind == Kind::String)
                add(p.type,
                    convert(p.defaultValue->type, p.type, Bits::of(makeString(p.defaultValue->text))));
            else if (p.defaultValue)
                add(p.type, convert(p.defaultValue->type, p.type, p.defaultValue->bits));
            else
                throw UsageError(signature.name + " needs the argument " + p.name);
        }
    }
    ~Arguments() {
        for (std::size_t i = 0; i < bits_.size(); ++i) release(types_[i], bits_[i]);
    }
    const Bits* data() const { return bits_.data(); }

  private:
    void add(const Type* type, Bits bits) {
        types_.push_back(type);
        bits_.push_back(bits);
    }
    std::vector<const Type*> types_;
    std::vector<Bits> bits_;
};

std::vector<const Type*> typesOf(const std::vector<Value>& values) {
    std::vector<const Type*> result;
    for (const Value& value : values) result.push_back(value.type());
    return result;
}

bool isDeclaration(std::string_view name) { return name.find_first_of("( ") != std::string_view::npos; }

std::string_view nameOf(std::string_view declaration) {
    return declaration.substr(0, declaration.find_first_of("( "));
}

const Method& select(const std::vector<const Method*>& candidates, std::string_view name,
                     const std::vector<Value>& arguments, bool setter) {
    if (candidates.empty()) throw UsageError("there is no method " + std::string(name));
    if (isDeclaration(name)) {
        Signature wanted = classes().parse(name);
        for (const Method* m : candidates)
            if (m->declaration == name || sameSignature(m->signature, wanted)) return *m;
        throw UsageError("there is no method " + std::string(name));
    }
    Choice choice = chooseOverload(candidates, typesOf(arguments), name, setter);
    if (!choice.method) throw UsageError(choice.problem);
    return *choice.method;
}

Value run(const Method& method, REALobject self, const std::vector<Value>& given) {
    Arguments arguments(method.signature, given);
    Bits result = invoke(method, self, arguments.data());
    return method.signature.result ? Value::adopt(method.signature.result, result) : Value();
}

REALobject requireObject(const Value& value) {
    if (value.isNil() || !value.object()) throw UsageError("expected an object, found " + value.type()->name);
    return value.object();
}

} // namespace

Value Host::create(std::string_view className, std::vector<Value> arguments) {
    return translated([&] {
        Class& cls = classNamed(className);
        std::vector<const Method*> constructors = cls.constructors();
        Value object = Value::adopt(newInstance(cls));
        bool plain = arguments.empty() &&
                     std::none_of(constructors.begin(), constructors.end(),
                                  [](const Method* m) { return m->signature.requiredCount() == 0; });
        if (plain) return object;
        if (constructors.empty()) throw UsageError(cls.name + " has no Constructor");
        run(select(constructors, "Constructor", arguments, false), object.object(), arguments);
        return object;
    });
}

Value Host::instantiate(std::string_view className) {
    return translated([&] { return Value::adopt(newInstance(classNamed(className))); });
}

Value Host::call(const Value& object, std::string_view method, std::vector<Value> arguments) {
    return translated([&] {
        REALobject self = requireObject(object);
        return run(select(classOf(self).methodsNamed(nameOf(method)), method, arguments, false), self,
                   arguments);
    });
}

void Host::assign(const Value& object, std::string_view method, std::vector<Value> arguments, Value value) {
    translated([&] {
        REALobject self = requireObject(object);
        arguments.push_back(std::move(value));
        const Method& chosen = select(classOf(self).methodsNamed(nameOf(method)), method, arguments, true);
        if (!chosen.setter) {
            run(chosen, self, arguments);
            return 0;
        }
        Arguments converted(chosen.setterSignature(), arguments);
        invokeSetter(chosen, self, converted.data());
        return 0;
    });
}

Value Host::shared(std::string_view className, std::string_view method, std::vector<Value> arguments) {
    return translated([&] {
        return run(select(classNamed(className).sharedMethodsNamed(nameOf(method)), method, arguments, false),
                   nullptr, arguments);
    });
}

Value Host::function(std::string_view name, std::vector<Value> arguments) {
    return translated([&] {
        return run(select(impl_->runtime.classes.functionsNamed(nameOf(name)), name, arguments, false),
                   nullptr, arguments);
    });
}

Value Host::constant(std::string_view className, std::string_view name) {
    const Constant* found = classNamed(className).constant(name);
    if (!found) throw UsageError("there is no constant " + std::string(name));
    if (found->value.type->kind == Kind::String) return Value(found->value.text);
    return Value::adopt(found->value.type, found->value.bits);
}

Value Host::get(const Value& object, std::string_view property) {
    return translated([&] {
        REALobject self = requireObject(object);
        const Property* found = findProperty(self, property);
        if (!found || !found->getter) throw UsageError("there is no property " + std::string(property));
        Bits bits = readProperty(*found, self);
        return found->type->isObject() ? Value::adopt(bits.object) : Value::adopt(found->type, bits);
    });
}

void Host::set(const Value& object, std::string_view property, Value value) {
    translated([&] {
        REALobject self = requireObject(object);
        const Property* found = findProperty(self, property);
        if (!found || !found->setter)
            throw UsageError("there is no property to set: " + std::string(property));
        Bits bits = convert(value.type(), found->type, retain(value.type(), value.bits()));
        writeProperty(*found, self, bits);
        return 0;
    });
}

Value Host::array(std::string_view elementType, std::vector<Value> elements) {
    return translated([&] {
        const Type* element = impl_->runtime.classes.typeNamed(elementType);
        Value result = Value::adopt(newArray(element));
        ArrayObject& array = arrayOf(result.object());
        for (Value& value : elements)
            arrayAppend(array, convert(value.type(), element, retain(value.type(), value.bits())));
        return result;
    });
}

Value Host::dictionary(std::vector<std::pair<Value, Value>> entries) {
    Value result = instantiate("Dictionary");
    for (auto& [key, value] : entries) assign(result, "Value", {key}, value);
    return result;
}

Value Host::memoryBlock(std::string_view bytes) {
    return translated([&] { return Value::adopt(newMemoryBlock(bytes)); });
}

Value Host::takePendingException() { return Value::adopt(std::exchange(impl_->runtime.pending, nullptr)); }

// ---- yielding --------------------------------------------------------------------------------------------

std::function<void()> Host::onYield(std::function<void()> handler) {
    return std::exchange(impl_->runtime.yieldHandler, std::move(handler));
}

void Host::yield() { impl_->runtime.yield(); }

// ---- faults ----------------------------------------------------------------------------------------------

void Host::failService(std::string_view service, int afterGoodCalls) {
    impl_->services.fail(service, afterGoodCalls);
}
void Host::failAllocation(int afterGoodCalls) { impl_->services.failAllocation(afterGoodCalls); }
bool Host::allocationFailed() const { return impl_->services.allocationFailed(); }
void Host::stopFailing() { impl_->services.stopFailing(); }

// ---- the log ---------------------------------------------------------------------------------------------

std::vector<ServiceCall> Host::callsDuring(const std::function<void()>& work) {
    impl_->services.startLog();
    work();
    return impl_->services.takeLog();
}

// ---- reports ---------------------------------------------------------------------------------------------

Report Host::report() const { return impl_->runtime.heap.report(); }
void Host::clearRecords() { impl_->runtime.heap.clearRecords(); }

} // namespace studio
