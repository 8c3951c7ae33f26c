#include "runtime/delegates.h"

#include "runtime/calls.h"
#include "runtime/exceptions.h"
#include "runtime/references.h"

namespace studio {

namespace {

DelegateData& dataOf(REALobject delegate) { return *reinterpret_cast<DelegateData*>(instanceData(delegate)); }

} // namespace

void makeDelegateClass(Class& cls, const Signature& signature) {
    cls.delegate = signature;
    classes().define(cls, Origin::Program, nullptr, sizeof(DelegateData));
    cls.finalize = [](REALobject delegate) {
        heap().release(std::exchange(dataOf(delegate).self, nullptr));
        Heap::release(std::exchange(dataOf(delegate).weak, nullptr));
    };
}

REALobject newDelegate(Class& cls, const Method& method, REALobject self, bool weak) {
    REALobject result = heap().allocate(cls, cls.instanceSize);
    if (!result) raise("OutOfMemoryException", "There is no memory for a " + cls.name + ".");
    dataOf(result).method = &method;
    if (weak)
        dataOf(result).weak = Heap::weakReference(self);
    else
        dataOf(result).self = Heap::retain(self);
    return result;
}

DelegateData delegateTarget(REALobject delegate) {
    if (!delegate) raise("NilObjectException", "the delegate to invoke is nil");
    DelegateData target = dataOf(delegate);
    if (target.weak && !target.weak->object)
        raise("NilObjectException", "the object of this delegate is gone");
    target.self = Heap::retain(target.weak ? target.weak->object : target.self);
    return target;
}

Bits invokeDelegate(REALobject delegate, const Bits* arguments) {
    DelegateData target = delegateTarget(delegate);
    ObjectRef self(target.self);
    return invoke(*target.method, self, arguments);
}

} // namespace studio
