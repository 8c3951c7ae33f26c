// Filters that are connected with each other.
#include "FilterGraph.h"

static bool isFilter(id object) { return [object isKindOfClass:[CIFilter class]]; }

@implementation CIFilterEnd

+ (CIFilterEnd*)endWithObject:(id)object key:(NSString*)key {
    CIFilterEnd* end = [[[self alloc] init] autorelease];
    end->object = [object retain];
    end->key = [key copy];
    return end;
}

- (void)dealloc {
    [object release];
    [key release];
    [super dealloc];
}

- (BOOL)isSameAs:(CIFilterEnd*)other {
    return object == other->object && (key == other->key || [key isEqualToString:other->key]);
}

- (id)value {
    return key ? [object valueForKey:key] : object;
}

@end

@implementation CIFilterGraph

- (id)init {
    if (!(self = [super init])) return nil;
    _sources = [[NSMutableArray alloc] init];
    _targets = [[NSMutableArray alloc] init];
    _names = [[NSMutableArray alloc] init];
    _exported = [[NSMutableDictionary alloc] init];
    return self;
}

- (void)dealloc {
    [_sources release];
    [_targets release];
    [_names release];
    [_exported release];
    [super dealloc];
}

- (void)connect:(CIFilterEnd*)source to:(CIFilterEnd*)target {
    for (NSUInteger i = [_targets count]; i-- > 0;)
        if ([target isSameAs:[_targets objectAtIndex:i]]) [self removeConnection:i];
    [_sources addObject:source];
    [_targets addObject:target];
}

- (void)disconnect:(CIFilterEnd*)source from:(CIFilterEnd*)target {
    for (NSUInteger i = [_targets count]; i-- > 0;)
        if ([source isSameAs:[_sources objectAtIndex:i]] && [target isSameAs:[_targets objectAtIndex:i]])
            [self removeConnection:i];
}

- (void)removeConnection:(NSUInteger)index {
    [_sources removeObjectAtIndex:index];
    [_targets removeObjectAtIndex:index];
}

- (NSArray*)sources {
    return _sources;
}

- (NSArray*)targets {
    return _targets;
}

- (NSArray*)sourcesOf:(id)target {
    NSMutableArray* objects = [NSMutableArray array];
    for (NSUInteger i = 0; i < [_targets count]; ++i)
        if (((CIFilterEnd*)[_targets objectAtIndex:i])->object == target)
            [objects addObject:((CIFilterEnd*)[_sources objectAtIndex:i])->object];
    return objects;
}

- (BOOL)object:(id)later dependsOn:(id)earlier {
    NSMutableArray* open = [NSMutableArray arrayWithObject:later];
    NSMutableArray* seen = [NSMutableArray array];
    while ([open count]) {
        id object = [open lastObject];
        if (object == earlier) return YES;
        [open removeLastObject];
        if ([seen indexOfObjectIdenticalTo:object] != NSNotFound) continue;
        [seen addObject:object];
        [open addObjectsFromArray:[self sourcesOf:object]];
    }
    return NO;
}

- (void)export:(CIFilterEnd*)end as:(NSString*)name {
    [self removeExported:name];
    [_names addObject:name];
    [_exported setObject:end forKey:name];
}

- (void)removeExported:(NSString*)name {
    [_names removeObject:name];
    [_exported removeObjectForKey:name];
}

- (NSArray*)exportedNames {
    return _names;
}

- (CIFilterEnd*)exportedAs:(NSString*)name {
    return [_exported objectForKey:name];
}

- (NSArray*)filters {
    NSMutableArray* open = [NSMutableArray array];
    for (CIFilterEnd* end in _targets) [open addObject:end->object];
    for (CIFilterEnd* end in _sources) [open addObject:end->object];
    for (NSString* name in _names) [open addObject:[self exportedAs:name]->object];
    NSMutableArray* found = [NSMutableArray array];
    // A filter comes when all that it reads has come; the one on top waits for them.
    while ([open count]) {
        id object = [open lastObject];
        NSUInteger waiting = [open count];
        if (isFilter(object) && [found indexOfObjectIdenticalTo:object] == NSNotFound) {
            for (id source in [self sourcesOf:object])
                if (isFilter(source) && [found indexOfObjectIdenticalTo:source] == NSNotFound)
                    [open addObject:source];
            if ([open count] > waiting) continue;
            [found addObject:object];
        }
        [open removeLastObject];
    }
    return found;
}

- (CIFilterGraph*)graphOfCopies {
    NSArray* filters = [self filters];
    NSMutableArray* copies = [NSMutableArray array];
    for (CIFilter* filter in filters) [copies addObject:[[filter copy] autorelease]];
    auto copied = [&](CIFilterEnd* end) {
        NSUInteger index = [filters indexOfObjectIdenticalTo:end->object];
        return index == NSNotFound ? end
                                   : [CIFilterEnd endWithObject:[copies objectAtIndex:index] key:end->key];
    };
    CIFilterGraph* graph = [[[CIFilterGraph alloc] init] autorelease];
    for (NSUInteger i = 0; i < [_sources count]; ++i) {
        [graph->_sources addObject:copied([_sources objectAtIndex:i])];
        [graph->_targets addObject:copied([_targets objectAtIndex:i])];
    }
    for (NSString* name in _names) [graph export:copied([self exportedAs:name]) as:name];
    return graph;
}

- (id)valueOf:(CIFilterEnd*)end {
    for (CIFilter* filter in [self filters]) {
        for (NSUInteger i = 0; i < [_targets count]; ++i) {
            CIFilterEnd* target = [_targets objectAtIndex:i];
            if (target->object == filter)
                [filter setValue:[[_sources objectAtIndex:i] value] forKey:target->key];
        }
        if (filter == end->object) break;
    }
    return [end value];
}

@end
