// On a Mac a number remembers the C type it was made from; GNUstep folds the small integer types into int.
// The objCType of a Boolean, char or short decides what it becomes in the host, so they are kept apart here.
#import <Foundation/Foundation.h>
#include <objc/runtime.h>

@interface NSNumber (KazTypes)
@end

namespace {

const char* boolType(id, SEL) { return "c"; }

} // namespace

@implementation NSNumber (KazTypes)

+ (void)load {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    Class boolean = [[NSNumber numberWithBool:YES] class];
    // Replacing the method is safe only while Booleans have a class of their own.
    if (boolean != [[NSNumber numberWithInt:1] class])
        class_replaceMethod(boolean, @selector(objCType), reinterpret_cast<IMP>(boolType), "r*8@0:4");
    [pool release];
}

@end
