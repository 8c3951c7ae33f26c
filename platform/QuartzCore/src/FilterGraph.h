// Filters that are connected with each other.
#pragma once

#import <QuartzCore/CIFilter.h>

/// An object on one end of a connection, which the graph retains, and its key; nil means the object itself.
@interface CIFilterEnd : NSObject {
  @public
    id object;
    NSString* key;
}
+ (CIFilterEnd*)endWithObject:(id)object key:(NSString*)key;
- (BOOL)isSameAs:(CIFilterEnd*)other;
/// What it gives: the value of the key, or the object.
- (id)value;
@end

/// Connections between filters, and keys that are exported under names.
@interface CIFilterGraph : NSObject {
  @private
    NSMutableArray* _sources; // the ends of connection i
    NSMutableArray* _targets;
    NSMutableArray* _names;         // exported, in their order
    NSMutableDictionary* _exported; // by name
}

- (void)connect:(CIFilterEnd*)source to:(CIFilterEnd*)target;
- (void)disconnect:(CIFilterEnd*)source from:(CIFilterEnd*)target;
- (NSArray*)sources;
- (NSArray*)targets;
/// Whether what `later` gives depends on `earlier`, or is it.
- (BOOL)object:(id)later dependsOn:(id)earlier;

- (void)export:(CIFilterEnd*)end as:(NSString*)name;
- (void)removeExported:(NSString*)name;
- (NSArray*)exportedNames;
- (CIFilterEnd*)exportedAs:(NSString*)name;

/// Every filter once, sources before what depends on them.
- (NSArray*)filters;
/// The same connections between copies of the filters. Autoreleased.
- (CIFilterGraph*)graphOfCopies;
/// The value of an exported key, after values have gone through all connections before it.
- (id)valueOf:(CIFilterEnd*)end;
@end
