// The one Objective-C class of the opaque types.
#import <Foundation/Foundation.h>

#include <cg/object.h>

#include <objc/runtime.h>

@interface __NSCFType : NSObject {
  @public
    cg::Payload* payload;
}
@end

@implementation __NSCFType

- (void)dealloc {
    delete payload;
    [super dealloc];
}

- (BOOL)isEqual:(id)other {
    if (self == other) return YES;
    cg::Payload* theirs = cg::payloadOf(other);
    return theirs && payload->equals(*theirs);
}

- (NSUInteger)hash {
    return payload->hash();
}

- (id)copyWithZone:(NSZone*)zone {
    return [self retain];
}

- (NSString*)description {
    return [NSString stringWithFormat:@"<%s %p>%s", payload->typeName(), self, payload->detail().c_str()];
}

@end

namespace cg {

CFTypeRef makeObject(std::unique_ptr<Payload> payload) {
    __NSCFType* object = [[__NSCFType alloc] init];
    object->payload = payload.release();
    return object;
}

Payload* payloadOf(CFTypeRef object) {
    if (!object || object_getClass(static_cast<id>(const_cast<void*>(object))) != [__NSCFType class])
        return nullptr;
    return static_cast<const __NSCFType*>(object)->payload;
}

} // namespace cg
