// The filters that the program registered, beside the built-in ones.
#pragma once

#import <Foundation/Foundation.h>

/// What a program registered under a name.
@interface CIRegisteredFilter : NSObject {
  @private
    id _constructor;
    NSDictionary* _classAttributes;
}
/// Nil for a name that is not registered.
+ (CIRegisteredFilter*)filterNamed:(NSString*)name;
/// In no order.
+ (NSArray*)names;
/// A name that was registered before gets the new constructor.
+ (void)registerName:(NSString*)name constructor:(id)constructor classAttributes:(NSDictionary*)attributes;

- (id)constructor;
/// Empty rather than nil.
- (NSDictionary*)classAttributes;
@end
