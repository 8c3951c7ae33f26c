// Numbers that remember the C type they were made from, as on a Mac: their objCType decides what they become
// in the host. GNUstep keeps an integer in the smallest of int, long long and unsigned long long that holds
// it, so integers of other types than int get a class of their own here.
#import <Foundation/Foundation.h>
#include <objc/runtime.h>

#include <climits>
#include <cstring>

// GNUstep's own classes, which calculate, compare and hash.
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

// An integer of any type whose value fits into a long long.
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

// Looked up once: each mention of a class by its name is a lookup.
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

// NSNumber is a class cluster: the initialiser replaces the placeholder from [NSNumber alloc] with a number
// of a concrete class. A program's own subclass makes its numbers from the bytes.
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
