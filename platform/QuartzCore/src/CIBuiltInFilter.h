// The engine's filters as CIFilters, and what its catalogue says of them.
#pragma once

#import <QuartzCore/CIFilter.h>

#include <engine/engine.h>

namespace ci {

/// Null for an unknown name.
const engine::FilterInfo* builtInNamed(NSString* name);
/// Such as kCICategoryBlur.
NSArray* categoriesOf(const engine::FilterInfo& filter);

} // namespace ci

/// A filter of the engine and the values that are set, by key. Each filter has a subclass that bears its
/// name.
@interface CIBuiltInFilter : CIFilter {
    const engine::FilterInfo* _info;
    NSMutableDictionary* _values;
}
/// Autoreleased, with all inputs unset.
+ (CIFilter*)filterWithInfo:(const engine::FilterInfo*)info;
/// The filter's own keys among its attributes.
+ (NSDictionary*)classAttributesOf:(const engine::FilterInfo*)info;
@end
