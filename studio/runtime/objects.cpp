#include "runtime/objects.h"

#include "runtime/calls.h"
#include "runtime/exceptions.h"
#include "runtime/references.h"
#include "syntax/names.h"

namespace studio {

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
    construct(cls, object);
    return object.release();
}

REALobject newInstance(std::string_view className) {
    Class* cls = classes().find(className);
    return cls && cls->type ? newInstance(*cls) : nullptr;
}

// Methods named Destructor and the classes' destructors. Only the next call can receive what they raise.
void finalizeInstance(REALobject object) {
    Class& cls = classOf(object);
    for (Class* c = &cls; c; c = c->superclass) {
        leavingPending([&] {
            for (auto& method : c->methods)
                if (sameName(method->signature.name, "Destructor") && method->signature.parameters.empty())
                    release(method->signature.result ? method->signature.result : simpleType(Kind::Void),
                            invoke(*method, object, nullptr));
            if (c->finalize) c->finalize(object);
            if (c->destructor) callHook(c->destructor, object, c->name, c->origin);
        });
    }
}

bool isA(REALobject object, std::string_view className) {
    Class* cls = classes().find(className);
    return object && cls && classOf(object).isA(cls);
}

std::string classNameOf(REALobject object) { return object ? classOf(object).name : std::string(); }

const Property* findProperty(REALobject object, std::string_view name) {
    if (const Property* property = classOf(object).property(name)) return property;
    return classes().named("Variant")->property(name);
}

void setHandler(REALobject object, std::string_view event, REALobject handler) {
    for (const Class* c = &classOf(object); c; c = c->superclass)
        for (const std::string& declared : c->events)
            if (c->setHandler && sameName(declared, event)) return c->setHandler(object, event, handler);
    raise("UnsupportedOperationException", classNameOf(object) + " has no event " + std::string(event));
}

} // namespace studio
