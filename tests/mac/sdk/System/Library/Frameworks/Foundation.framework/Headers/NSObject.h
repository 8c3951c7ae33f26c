// The root class of Mac OS X 10.5, as far as the product uses it.
#pragma once

#include <objc/objc.h>

#ifdef __cplusplus
#define FOUNDATION_EXPORT extern "C"
#else
#define FOUNDATION_EXPORT extern
#endif

typedef int NSInteger; // on i386
typedef unsigned int NSUInteger;
typedef struct _NSZone NSZone;

@class NSString;

@protocol NSObject
- (BOOL)isEqual:(id)object;
- (NSUInteger)hash;
- (BOOL)isKindOfClass:(Class)aClass;
- (BOOL)respondsToSelector:(SEL)aSelector;
- (id)retain;
- (oneway void)release;
- (id)autorelease;
- (NSString*)description;
@end

@protocol NSCopying
- (id)copyWithZone:(NSZone*)zone;
@end

__attribute__((objc_root_class))
@interface NSObject<NSObject> {
    Class isa;
}
+ (id)alloc;
+ (Class)class;
+ (BOOL)respondsToSelector:(SEL)aSelector;
- (id)init;
- (void)dealloc;
- (Class)class;
@end
