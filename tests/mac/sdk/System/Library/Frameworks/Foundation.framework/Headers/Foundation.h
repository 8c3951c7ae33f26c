// Foundation of Mac OS X 10.5, as far as the product uses it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/NSObject.h>

typedef float CGFloat; // on i386

FOUNDATION_EXPORT void NSLog(NSString* format, ...);
FOUNDATION_EXPORT Class NSClassFromString(NSString* aClassName);

typedef double NSTimeInterval;

typedef struct _NSPoint {
    CGFloat x, y;
} NSPoint;
typedef struct _NSSize {
    CGFloat width, height;
} NSSize;
typedef struct _NSRect {
    NSPoint origin;
    NSSize size;
} NSRect;
typedef struct _NSRange {
    NSUInteger location, length;
} NSRange;
static inline NSPoint NSMakePoint(CGFloat x, CGFloat y) {
    NSPoint p;
    p.x = x;
    p.y = y;
    return p;
}
static inline NSSize NSMakeSize(CGFloat w, CGFloat h) {
    NSSize s;
    s.width = w;
    s.height = h;
    return s;
}
static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat w, CGFloat h) {
    NSRect r;
    r.origin = NSMakePoint(x, y);
    r.size = NSMakeSize(w, h);
    return r;
}
FOUNDATION_EXPORT NSString* NSStringFromPoint(NSPoint aPoint);
FOUNDATION_EXPORT NSString* NSStringFromSize(NSSize aSize);
FOUNDATION_EXPORT NSString* NSStringFromRect(NSRect aRect);
FOUNDATION_EXPORT NSString* NSStringFromRange(NSRange range);

@class NSArray, NSDictionary, NSURL;

@interface NSAutoreleasePool : NSObject
@end

FOUNDATION_EXPORT NSString* const NSInvalidArgumentException;

@interface NSException : NSObject <NSCopying>
+ (void)raise:(NSString*)name format:(NSString*)format, ...;
- (NSString*)name;
- (NSString*)reason;
- (NSDictionary*)userInfo;
@end

@interface NSEnumerator : NSObject
- (id)nextObject;
@end

@interface NSString : NSObject <NSCopying>
+ (id)stringWithUTF8String:(const char*)nullTerminatedCString;
- (id)initWithUTF8String:(const char*)nullTerminatedCString;
- (NSUInteger)length;
- (BOOL)isEqualToString:(NSString*)aString;
+ (id)stringWithFormat:(NSString*)format, ...;
- (const char*)UTF8String;
- (NSString*)lastPathComponent;
- (NSString*)lowercaseString;
- (NSString*)pathExtension;
@end

@interface NSValue : NSObject <NSCopying>
+ (NSValue*)valueWithBytes:(const void*)value objCType:(const char*)type;
+ (NSValue*)valueWithPoint:(NSPoint)point;
+ (NSValue*)valueWithRange:(NSRange)range;
+ (NSValue*)valueWithRect:(NSRect)rect;
+ (NSValue*)valueWithSize:(NSSize)size;
- (void)getValue:(void*)value;
- (const char*)objCType;
- (NSPoint)pointValue;
- (NSRange)rangeValue;
- (NSRect)rectValue;
- (NSSize)sizeValue;
@end

@interface NSNumber : NSValue
+ (NSNumber*)numberWithBool:(BOOL)value;
+ (NSNumber*)numberWithDouble:(double)value;
+ (NSNumber*)numberWithFloat:(float)value;
+ (NSNumber*)numberWithLong:(long)value;
+ (NSNumber*)numberWithLongLong:(long long)value;
- (BOOL)boolValue;
- (double)doubleValue;
- (float)floatValue;
- (int)intValue;
- (long)longValue;
- (long long)longLongValue;
- (short)shortValue;
- (unsigned char)unsignedCharValue;
- (unsigned int)unsignedIntValue;
- (unsigned long)unsignedLongValue;
- (unsigned short)unsignedShortValue;
@end

@interface NSNull : NSObject <NSCopying>
+ (NSNull*)null;
@end

@interface NSArray : NSObject <NSCopying>
- (NSUInteger)count;
- (id)objectAtIndex:(NSUInteger)index;
- (NSEnumerator*)objectEnumerator;
@end

@interface NSMutableArray : NSArray
+ (id)array;
+ (id)arrayWithCapacity:(NSUInteger)numItems;
- (void)addObject:(id)anObject;
@end

@interface NSDictionary : NSObject <NSCopying>
+ (id)dictionary;
+ (id)dictionaryWithObject:(id)object forKey:(id)key;
- (NSArray*)allKeys;
- (NSEnumerator*)keyEnumerator;
- (id)objectForKey:(id)aKey;
@end

@interface NSMutableDictionary : NSDictionary
+ (id)dictionaryWithCapacity:(NSUInteger)numItems;
- (void)setObject:(id)anObject forKey:(id)aKey;
@end

@interface NSData : NSObject <NSCopying>
+ (id)dataWithBytes:(const void*)bytes length:(NSUInteger)length;
+ (id)dataWithBytesNoCopy:(void*)bytes length:(NSUInteger)length freeWhenDone:(BOOL)b;
- (const void*)bytes;
- (NSUInteger)length;
@end

@interface NSURL : NSObject <NSCopying>
+ (id)fileURLWithPath:(NSString*)path isDirectory:(BOOL)isDir;
- (NSString*)absoluteString;
- (NSString*)path;
@end

@interface NSTimeZone : NSObject <NSCopying>
+ (NSTimeZone*)localTimeZone;
@end

@interface NSDate : NSObject <NSCopying>
- (id)initWithTimeIntervalSinceReferenceDate:(NSTimeInterval)secsToBeAdded;
- (NSTimeInterval)timeIntervalSinceReferenceDate;
@end

@interface NSCalendarDate : NSDate
+ (id)dateWithYear:(NSInteger)year
             month:(NSUInteger)month
               day:(NSUInteger)day
              hour:(NSUInteger)hour
            minute:(NSUInteger)minute
            second:(NSUInteger)second
          timeZone:(NSTimeZone*)aTimeZone;
- (NSInteger)dayOfMonth;
- (NSInteger)hourOfDay;
- (NSInteger)minuteOfHour;
- (NSInteger)monthOfYear;
- (NSInteger)secondOfMinute;
- (NSInteger)yearOfCommonEra;
@end

typedef struct _NSAffineTransformStruct {
    CGFloat m11, m12, m21, m22, tX, tY;
} NSAffineTransformStruct;

@interface NSAffineTransform : NSObject <NSCopying>
+ (NSAffineTransform*)transform;
- (void)appendTransform:(NSAffineTransform*)transform;
- (void)invert;
- (void)rotateByDegrees:(CGFloat)angle;
- (void)scaleXBy:(CGFloat)scaleX yBy:(CGFloat)scaleY;
- (void)setTransformStruct:(NSAffineTransformStruct)transformStruct;
- (NSPoint)transformPoint:(NSPoint)aPoint;
- (NSAffineTransformStruct)transformStruct;
- (void)translateXBy:(CGFloat)deltaX yBy:(CGFloat)deltaY;
@end

@interface NSObject (NSKeyValueCoding)
- (id)valueForKey:(NSString*)key;
- (void)setValue:(id)value forKey:(NSString*)key;
@end
