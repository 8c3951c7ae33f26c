// On a Mac a number remembers the C type it was made from, and its objCType decides what it becomes in the
// host. GNUstep keeps an integer in the smallest of int, long long and unsigned long long that holds it, so
// here integers of other types than int get a class that remembers.
#import <Foundation/Foundation.h>
#include <objc/runtime.h>

#include <climits>
#include <cstring>

// GNUstep's own, which do the arithmetic, the comparing and the hashing.
@interface NSSignedIntegerNumber : NSNumber
@end
@interface NSLongLongNumber : NSSignedIntegerNumber {
  @public
    long long value;
}
@end
@interface NSUnsignedLongLongNumber : NSNumber {
  @public
    unsigned long long value;
}
@end

// An integer of any type whose value long long can hold.
@interface KazTypedNumber : NSLongLongNumber {
  @public
    const char* type;
    std::size_t size;
}
@end

@implementation KazTypedNumber

- (const char*)objCType {
    return type;
}

- (void)getValue:(void*)out {
    std::memcpy(out, &value, size); // the low bytes come first
}

@end

namespace {

// Looked up once: by its name it would be looked up wherever it is named.
Class numberClass() {
    static const Class c = [NSNumber class];
    return c;
}

// Owned by the caller.
template <class T>
NSNumber* newNumber(T value) {
    if constexpr (std::is_same_v<T, unsigned long long>) {
        if (value > LLONG_MAX) {
            NSUnsignedLongLongNumber* large = [NSUnsignedLongLongNumber alloc];
            large->value = value;
            return large;
        }
    }
    static const Class typed = [KazTypedNumber class];
    KazTypedNumber* number = [typed alloc];
    number->value = static_cast<long long>(value);
    number->type = @encode(T);
    number->size = sizeof value;
    return number;
}

// NSNumber is a class cluster: what [NSNumber alloc] gives is exchanged for a number of a concrete class by
// the initialiser. A subclass of a program's own is left to make its numbers from the bytes.
template <class T>
id numberWith(Class self, SEL, T value) {
    if (self == numberClass()) return [newNumber(value) autorelease];
    return [[[self alloc] initWithBytes:&value objCType:@encode(T)] autorelease];
}

template <class T>
id initWith(NSNumber* self, SEL, T value) {
    if (object_getClass(self) != numberClass()) return [self initWithBytes:&value objCType:@encode(T)];
    [self release];
    return newNumber(value);
}

id (*foundationInitWithBytes)(id, SEL, const void*, const char*);

template <class T>
bool initFromBytes(NSNumber*& self, SEL selector, const void* bytes, const char* type) {
    if (std::strcmp(type, @encode(T)) != 0) return false;
    T value;
    std::memcpy(&value, bytes, sizeof value);
    self = initWith(self, selector, value);
    return true;
}

template <class... Types>
id initWithBytes(NSNumber* self, SEL selector, const void* bytes, const char* type) {
    if (object_getClass(self) == numberClass() && bytes && type &&
        (initFromBytes<Types>(self, selector, bytes, type) || ...))
        return self;
    return foundationInitWithBytes(self, selector, bytes, type);
}

id initWithBool(NSNumber* self, SEL, BOOL value) {
    [self release];
    return [[NSNumber numberWithBool:value] retain];
}

const char* boolType(id, SEL) { return "c"; }

template <class Function>
IMP replace(Class c, SEL selector, Function* function) {
    Method method = class_getInstanceMethod(c, selector);
    return class_replaceMethod(c, selector, reinterpret_cast<IMP>(function), method_getTypeEncoding(method));
}

template <class T>
void replaceMakers(SEL maker, SEL initialiser) {
    replace(object_getClass(numberClass()), maker, numberWith<T>);
    replace(numberClass(), initialiser, initWith<T>);
}

} // namespace

@interface NSNumber (KazTypes)
@end

@implementation NSNumber (KazTypes)

+ (void)load {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    replaceMakers<signed char>(@selector(numberWithChar:), @selector(initWithChar:));
    replaceMakers<unsigned char>(@selector(numberWithUnsignedChar:), @selector(initWithUnsignedChar:));
    replaceMakers<short>(@selector(numberWithShort:), @selector(initWithShort:));
    replaceMakers<unsigned short>(@selector(numberWithUnsignedShort:), @selector(initWithUnsignedShort:));
    replaceMakers<unsigned>(@selector(numberWithUnsignedInt:), @selector(initWithUnsignedInt:));
    replaceMakers<unsigned>(@selector(numberWithUnsignedInteger:), @selector(initWithUnsignedInteger:));
    replaceMakers<long>(@selector(numberWithLong:), @selector(initWithLong:));
    replaceMakers<unsigned long>(@selector(numberWithUnsignedLong:), @selector(initWithUnsignedLong:));
    replaceMakers<long long>(@selector(numberWithLongLong:), @selector(initWithLongLong:));
    replaceMakers<unsigned long long>(@selector(numberWithUnsignedLongLong:),
                                      @selector(initWithUnsignedLongLong:));
    replace([NSNumber class], @selector(initWithBool:), initWithBool);
    foundationInitWithBytes = reinterpret_cast<decltype(foundationInitWithBytes)>(
        replace([NSNumber class], @selector(initWithBytes:objCType:),
                initWithBytes<signed char, unsigned char, short, unsigned short, unsigned, long,
                              unsigned long, long long, unsigned long long>));
    replace([[NSNumber numberWithBool:YES] class], @selector(objCType), boolType);
    [pool release];
}

@end
