// Instances and exceptions.
#include "framework/quit.h"
#include "runtime/runtime.h"
#include "runtime/text.h"

namespace studio {

// ---- strings ---------------------------------------------------------------------------------------------

std::string toUtf8(REALstring s) {
    return text::toUtf8(bytesOf(s), encodingOf(s)).value_or(std::string(bytesOf(s)));
}

REALstring makeString(std::string_view utf8) { return heap().newString(utf8, kREALTextEncodingUTF8); }

// ---- instances -------------------------------------------------------------------------------------------

namespace {

void construct(const Class& cls, REALobject object) {
    if (cls.superclass) construct(*cls.superclass, object);
    if (cls.initialize) cls.initialize(object);
    if (cls.constructor) callHook(cls.constructor, object, cls.name, cls.origin);
}

} // namespace

REALobject newInstance(Class& cls) {
    if (!cls.isDefined()) return nullptr;
    ObjectRef object(heap().allocate(cls, cls.instanceSize));
    if (!object) raise("OutOfMemoryException", "There is no memory for a " + cls.name + ".");
    construct(cls, object);
    return object.release();
}

REALobject newInstance(std::string_view className) {
    Class* cls = classes().find(className);
    return cls && cls->type ? newInstance(*cls) : nullptr;
}

// Called by the heap when the last reference is gone: methods named Destructor and the classes' destructors,
// subclass first. What they raise has nobody to go to but the next call.
void finalizeInstance(REALobject object) {
    Class& cls = classOf(object);
    for (Class* c = &cls; c; c = c->superclass) {
        try {
            for (auto& method : c->methods)
                if (sameName(method->signature.name, "Destructor") && method->signature.parameters.empty())
                    release(method->signature.result ? method->signature.result : simpleType(Kind::Void),
                            invoke(*method, object, nullptr));
            if (c->finalize) c->finalize(object);
            if (c->destructor) callHook(c->destructor, object, c->name, c->origin);
        } catch (const Raised& raised) {
            record(raised);
        }
    }
}

bool isA(REALobject object, std::string_view className) {
    Class* cls = classes().find(className);
    return object && cls && classOf(object).isA(cls);
}

std::string classNameOf(REALobject object) { return object ? classOf(object).name : std::string(); }

// ---- exceptions ------------------------------------------------------------------------------------------

REALobject makeException(std::string_view className, std::string_view message) {
    REALobject object = newInstance(className);
    const Property* property = classOf(object).property("Message");
    writeProperty(*property, object, Bits::of(makeString(message)));
    return object;
}

std::string exceptionMessage(REALobject exception) {
    const Property* property = exception ? classOf(exception).property("Message") : nullptr;
    if (!property) return {};
    StringRef message(readProperty(*property, exception).string);
    return toUtf8(message);
}

void raise(Value exception) {
    if (runtime().noteRaised) runtime().noteRaised(exception.object());
    throw Raised{std::move(exception)};
}

void raise(std::string_view className, std::string_view message) {
    raise(Value::adopt(makeException(className, message)));
}

void throwPending() {
    if (auto code = std::exchange(runtime().quit, std::nullopt)) throw QuitRequest{*code};
    if (REALobject exception = std::exchange(runtime().pending, nullptr)) raise(Value::adopt(exception));
}

void record(const Raised& raised) {
    Host::Impl& host = runtime();
    if (!host.pending) host.pending = Heap::retain(raised.exception.object());
}

} // namespace studio
