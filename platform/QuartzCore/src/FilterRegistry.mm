// The filters that the program registered: a table by name, which any thread may use.
#include "FilterRegistry.h"

@implementation CIRegisteredFilter

+ (NSMutableDictionary*)table {
    static NSMutableDictionary* table = [[NSMutableDictionary alloc] init];
    return table;
}

+ (CIRegisteredFilter*)filterNamed:(NSString*)name {
    if (!name) return nil;
    @synchronized(self) {
        return [[[[self table] objectForKey:name] retain] autorelease];
    }
}

+ (NSArray*)names {
    @synchronized(self) {
        return [[self table] allKeys];
    }
}

+ (void)registerName:(NSString*)name constructor:(id)constructor classAttributes:(NSDictionary*)attributes {
    CIRegisteredFilter* filter = [[[self alloc] init] autorelease];
    filter->_constructor = [constructor retain];
    filter->_classAttributes = attributes ? [attributes copy] : [[NSDictionary alloc] init];
    @synchronized(self) {
        [[self table] setObject:filter forKey:name];
    }
}

- (void)dealloc {
    [_constructor release];
    [_classAttributes release];
    [super dealloc];
}

- (id)constructor {
    return _constructor;
}

- (NSDictionary*)classAttributes {
    return _classAttributes;
}

@end
