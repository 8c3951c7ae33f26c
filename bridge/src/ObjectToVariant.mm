// Cocoa objects to host variants.
#include <bridge/arrays.h>
#include <bridge/dates.h>
#include <bridge/dictionaries.h>
#include <bridge/files.h>
#include <bridge/memoryblocks.h>
#include <bridge/numbers.h>
#include <bridge/structures.h>
#include <bridge/text.h>
#include <bridge/variants.h>
#include <bridge/wrapping.h>

#include <objc/runtime.h>

#include <cstdio>
#include <cstring>

@interface NSObject (KazObjectWrapper)
- (REALobject)unwrap;
@end

namespace {

REALobject variantOfString(NSString* text) {
    host::Held string(CFString2RBString((CFStringRef)text));
    return REALNewVariantString(string.get());
}

REALobject arrayOf(NSArray* elements) {
    host::Held array(REALCreateArray(kREALArrayObject, -1));
    if (!array) return nullptr;
    FillObjectArray(array.get(), elements, NewVariantFromNSObject);
    return host::asObject(array.release());
}

REALobject fileOrTextOf(NSURL* url) {
    if (REALfolderItem item = NSURLRBFile(url)) return host::asObject(item);
    return variantOfString([url absoluteString]);
}

// An object of the host class named after the object's class, or after the nearest superclass that has one.
// The wrapper registry is neither searched nor told.
REALobject wrappedByClassName(id object) {
    constexpr std::size_t longestName = 199;
    for (Class c = [object class]; c; c = class_getSuperclass(c)) {
        const char* name = class_getName(c);
        if (!name || std::strlen(name) > longestName) continue;
        char hostClass[longestName + 1]; // a name that does not fit is cut off
        std::snprintf(hostClass, sizeof hostClass, "%sKaz", name);
        if (REALobject wrapper = bridge::newWrapper(hostClass, object)) {
            [object retain];
            return wrapper;
        }
    }
    return nullptr;
}

} // namespace

REALobject NewVariantFromNSObject(id object) {
    // Naming a class costs a lookup, so each is named once.
    struct ObjectRule {
        Class kind;
        REALobject (*convert)(id object);
    };
    static const ObjectRule rules[] = {
        {[NSArray class], [](id o) { return arrayOf(o); }},
        {[NSString class], [](id o) { return variantOfString(o); }},
        {[NSData class], [](id o) { return host::asObject(NSDataRB(o)); }},
        {[NSNumber class], [](id o) { return bridge::newVariantOfNumber(o); }},
        {[NSDate class], [](id o) { return NSDateRB(o); }},
        {[NSDictionary class], [](id o) { return NSDictionaryRB(o); }},
        {[NSURL class], [](id o) { return fileOrTextOf(o); }},
        {[NSValue class], [](id o) { return bridge::newStructure(o); }},
    };
    static const id null = [NSNull null];

    if (!object || object == null) return nullptr;
    for (const ObjectRule& rule : rules)
        if ([object isKindOfClass:rule.kind]) return rule.convert(object);
    Class carrier = static_cast<Class>(objc_getClass("KazREALobjectWrapper"));
    if (carrier && [object isKindOfClass:carrier]) return [object unwrap];
    return wrappedByClassName(object);
}
