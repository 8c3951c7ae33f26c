// CIFilterGenerator: a graph of filters, the filters made of it, and its property list.
#import <QuartzCore/CIFilterGenerator.h>

#include "FilterGraph.h"
#include "Internal.h"

static cg::LiveCount live("CIFilterGenerator");

struct CIFilterGeneratorState {
    CIFilterGraph* graph;
    /// Attributes that were set, by exported name.
    NSMutableDictionary* attributes;
    NSDictionary* classAttributes;
};

/// A filter made of a graph of its own.
@interface CIGeneratedFilter : CIFilter {
    CIFilterGraph* _graph;
    NSDictionary* _attributes; // by exported name
    NSDictionary* _classAttributes;
}
- (id)initWithGraph:(CIFilterGraph*)graph
         attributes:(NSDictionary*)attributes
    classAttributes:(NSDictionary*)classAttributes;
@end

namespace {

bool isOutput(NSString* key) { return [key hasPrefix:@"output"]; }

/// The attributes of an exported key: the filter's own, and those that were set.
NSDictionary* attributesOf(CIFilterEnd* end, NSDictionary* set) {
    NSMutableDictionary* all = [NSMutableDictionary dictionary];
    id own = [[(CIFilter*)end->object attributes] objectForKey:end->key];
    if ([own isKindOfClass:[NSDictionary class]]) [all addEntriesFromDictionary:own];
    if (set) [all addEntriesFromDictionary:set];
    return all;
}

// --- values in property lists -----------------------------------------------------------------------------

NSDictionary* typed(NSString* type, id value) {
    return [NSDictionary dictionaryWithObjectsAndKeys:type, @"class", value, @"value", nil];
}

/// Nil for a value that cannot be written.
id listOf(id value) {
    if ([value isKindOfClass:[NSNumber class]] || [value isKindOfClass:[NSString class]] ||
        [value isKindOfClass:[NSData class]])
        return value;
    if ([value isKindOfClass:[CIVector class]]) return typed(@"CIVector", [value stringRepresentation]);
    if ([value isKindOfClass:[CIColor class]]) return typed(@"CIColor", [value stringRepresentation]);
    if ([value isKindOfClass:[NSAffineTransform class]]) {
        NSAffineTransformStruct m = [(NSAffineTransform*)value transformStruct];
        CIVector* vector = [CIVector
            vectorWithCGAffineTransform:CGAffineTransformMake(m.m11, m.m12, m.m21, m.m22, m.tX, m.tY)];
        return typed(@"NSAffineTransform", [vector stringRepresentation]);
    }
    if ([value isKindOfClass:[CIImage class]] && [[value url] isFileURL])
        return typed(@"CIImage", [[value url] absoluteString]);
    return nil;
}

/// Nil for a list that is no value.
id valueIn(id list) {
    if (![list isKindOfClass:[NSDictionary class]]) return list;
    NSString* type = [list objectForKey:@"class"];
    id text = [list objectForKey:@"value"];
    if (![text isKindOfClass:[NSString class]]) return nil;
    if ([type isEqual:@"CIVector"]) return [CIVector vectorWithString:text];
    if ([type isEqual:@"CIColor"]) return [CIColor colorWithString:text];
    NSURL* url = [type isEqual:@"CIImage"] ? [NSURL URLWithString:text] : nil;
    if ([url isFileURL]) return [CIImage imageWithContentsOfURL:url];
    if (![type isEqual:@"NSAffineTransform"]) return nil;
    CIVector* m = [CIVector vectorWithString:text];
    if ([m count] != 6) return nil;
    NSAffineTransform* transform = [NSAffineTransform transform];
    auto f = [m](size_t i) { return [m valueAtIndex:i]; };
    [transform setTransformStruct:{f(0), f(1), f(2), f(3), f(4), f(5)}];
    return transform;
}

/// Every value of a dictionary by `convert`; nil if there is none for one of them.
NSDictionary* converted(NSDictionary* values, id (*convert)(id)) {
    NSMutableDictionary* all = [NSMutableDictionary dictionary];
    for (NSString* key in values) {
        id value = convert([values objectForKey:key]);
        if (!value) return nil;
        [all setObject:value forKey:key];
    }
    return all;
}

/// Whether a property list can hold an object and all that is in it.
bool canBeWritten(id object) {
    if ([object isKindOfClass:[NSDictionary class]]) {
        for (id key in object)
            if (![key isKindOfClass:[NSString class]] || !canBeWritten([object objectForKey:key]))
                return false;
        return true;
    }
    if ([object isKindOfClass:[NSArray class]]) {
        for (id element in object)
            if (!canBeWritten(element)) return false;
        return true;
    }
    return [object isKindOfClass:[NSNumber class]] || [object isKindOfClass:[NSString class]] ||
           [object isKindOfClass:[NSData class]] || [object isKindOfClass:[NSDate class]];
}

/// The object under a key if it is of that class.
id member(id list, NSString* key, Class wanted) {
    if (![list isKindOfClass:[NSDictionary class]]) return nil;
    id object = [list objectForKey:key];
    return [object isKindOfClass:wanted] ? object : nil;
}

} // namespace

@implementation CIFilterGenerator

+ (CIFilterGenerator*)filterGenerator {
    return [[[self alloc] init] autorelease];
}

+ (CIFilterGenerator*)filterGeneratorWithContentsOfURL:(NSURL*)aURL {
    return [[[self alloc] initWithContentsOfURL:aURL] autorelease];
}

- (id)init {
    if (!(self = [super init])) return nil;
    if (!(_state = new (std::nothrow) CIFilterGeneratorState())) {
        [self release];
        return nil;
    }
    live.born();
    *_state = {[[CIFilterGraph alloc] init], [[NSMutableDictionary alloc] init], [[NSDictionary alloc] init]};
    return self;
}

- (void)dealloc {
    if (_state) {
        live.gone();
        [_state->graph release];
        [_state->attributes release];
        [_state->classAttributes release];
        delete _state;
    }
    [super dealloc];
}

- (id)copyWithZone:(NSZone*)zone {
    CIFilterGenerator* copy = [[[self class] allocWithZone:zone] init];
    [copy->_state->graph release];
    copy->_state->graph = [[_state->graph graphOfCopies] retain];
    [copy->_state->attributes setDictionary:_state->attributes];
    [copy setClassAttributes:_state->classAttributes];
    return copy;
}

// --- connections ------------------------------------------------------------------------------------------

static CIFilterEnd* sourceEnd(id object, NSString* key) {
    bool output = !key && [object isKindOfClass:[CIFilter class]];
    return [CIFilterEnd endWithObject:object key:output ? kCIOutputImageKey : key];
}

- (void)connectObject:(id)sourceObject
              withKey:(NSString*)sourceKey
             toObject:(id)targetObject
              withKey:(NSString*)targetKey {
    if (!sourceObject || ![targetObject isKindOfClass:[CIFilter class]] || !targetKey)
        [NSException raise:NSInvalidArgumentException
                    format:@"connectObject: a source is needed, and a filter with a key as the target"];
    if ([_state->graph object:sourceObject dependsOn:targetObject])
        [NSException raise:NSInvalidArgumentException
                    format:@"connectObject: the connection from %@ to %@ closes a circle", sourceObject,
                           targetObject];
    [_state->graph connect:sourceEnd(sourceObject, sourceKey)
                        to:[CIFilterEnd endWithObject:targetObject key:targetKey]];
}

- (void)disconnectObject:(id)sourceObject
                 withKey:(NSString*)sourceKey
                toObject:(id)targetObject
                 withKey:(NSString*)targetKey {
    [_state->graph disconnect:sourceEnd(sourceObject, sourceKey)
                         from:[CIFilterEnd endWithObject:targetObject key:targetKey]];
}

- (void)exportKey:(NSString*)key fromObject:(id)targetObject withName:(NSString*)exportedKeyName {
    if (!key || ![targetObject isKindOfClass:[CIFilter class]])
        [NSException raise:NSInvalidArgumentException format:@"exportKey: a key of a filter is needed"];
    NSString* name = exportedKeyName ? exportedKeyName : key;
    [_state->attributes removeObjectForKey:name];
    [_state->graph export:[CIFilterEnd endWithObject:targetObject key:key] as:name];
}

- (void)removeExportedKey:(NSString*)exportedKeyName {
    if (!exportedKeyName) return;
    [_state->attributes removeObjectForKey:exportedKeyName];
    [_state->graph removeExported:exportedKeyName];
}

- (NSDictionary*)exportedKeys {
    NSMutableDictionary* all = [NSMutableDictionary dictionary];
    for (NSString* name in [_state->graph exportedNames]) {
        CIFilterEnd* end = [_state->graph exportedAs:name];
        NSMutableDictionary* one = [NSMutableDictionary
            dictionaryWithDictionary:attributesOf(end, [_state->attributes objectForKey:name])];
        [one setObject:end->key forKey:kCIFilterGeneratorExportedKey];
        [one setObject:end->object forKey:kCIFilterGeneratorExportedKeyTargetObject];
        [one setObject:name forKey:kCIFilterGeneratorExportedKeyName];
        [all setObject:one forKey:name];
    }
    return all;
}

- (void)setAttributes:(NSDictionary*)attributes forExportedKey:(NSString*)exportedKeyName {
    if (attributes && exportedKeyName && [_state->graph exportedAs:exportedKeyName])
        [_state->attributes setObject:attributes forKey:exportedKeyName];
}

- (NSDictionary*)classAttributes {
    return _state->classAttributes;
}

- (void)setClassAttributes:(NSDictionary*)attributes {
    NSDictionary* old = _state->classAttributes;
    _state->classAttributes = attributes ? [attributes copy] : [[NSDictionary alloc] init];
    [old release];
}

// --- filters ----------------------------------------------------------------------------------------------

- (CIFilter*)filter {
    return [[[CIGeneratedFilter alloc] initWithGraph:[_state->graph graphOfCopies]
                                          attributes:_state->attributes
                                     classAttributes:_state->classAttributes] autorelease];
}

- (CIFilter*)filterWithName:(NSString*)name {
    CIFilter* filter = [self filter];
    [filter setName:name];
    return filter;
}

- (void)registerFilterName:(NSString*)name {
    [CIFilter registerFilterName:name
                     constructor:[[self copy] autorelease]
                 classAttributes:_state->classAttributes];
}

// --- property lists ---------------------------------------------------------------------------------------

- (BOOL)writeToURL:(NSURL*)aURL atomically:(BOOL)flag {
    if (!canBeWritten(_state->classAttributes)) return NO;
    NSArray* filters = [_state->graph filters];
    /// The number of a filter among `filters`, or a value; nil if it cannot be written.
    auto endOf = [&](CIFilterEnd* end) -> NSDictionary* {
        NSUInteger index = [filters indexOfObjectIdenticalTo:end->object];
        id object = index == NSNotFound ? listOf([end value]) : [NSNumber numberWithUnsignedInteger:index];
        if (!object) return nil;
        return index == NSNotFound
                   ? [NSDictionary dictionaryWithObject:object forKey:@"value"]
                   : [NSDictionary dictionaryWithObjectsAndKeys:object, @"filter", end->key, @"key", nil];
    };
    NSMutableArray* filterLists = [NSMutableArray array];
    for (CIFilter* filter in filters) {
        NSMutableDictionary* values = [NSMutableDictionary dictionary];
        for (NSString* key in [filter inputKeys]) {
            // What comes through a connection is computed again.
            bool connected = false;
            for (CIFilterEnd* target in [_state->graph targets])
                connected = connected || (target->object == filter && [target->key isEqualToString:key]);
            id value = connected ? nil : [filter valueForKey:key];
            if (!value) continue;
            id list = listOf(value);
            if (!list) return NO;
            [values setObject:list forKey:key];
        }
        [filterLists addObject:[NSDictionary dictionaryWithObjectsAndKeys:[filter name], @"name", values,
                                                                          @"values", nil]];
    }
    NSMutableArray* connections = [NSMutableArray array];
    for (NSUInteger i = 0; i < [[_state->graph sources] count]; ++i) {
        NSDictionary* source = endOf([[_state->graph sources] objectAtIndex:i]);
        if (!source) return NO;
        [connections addObject:[NSDictionary dictionaryWithObjectsAndKeys:source, @"source",
                                                                          endOf([[_state->graph targets]
                                                                              objectAtIndex:i]),
                                                                          @"target", nil]];
    }
    NSMutableArray* exported = [NSMutableArray array];
    for (NSString* name in [_state->graph exportedNames]) {
        NSDictionary* set = [_state->attributes objectForKey:name];
        NSDictionary* attributes = converted(set ? set : [NSDictionary dictionary], listOf);
        if (!attributes) return NO;
        [exported
            addObject:[NSDictionary dictionaryWithObjectsAndKeys:name, @"name",
                                                                 endOf([_state->graph exportedAs:name]),
                                                                 @"of", attributes, @"attributes", nil]];
    }
    NSDictionary* all = [NSDictionary
        dictionaryWithObjectsAndKeys:filterLists, @"filters", connections, @"connections", exported,
                                     @"exportedKeys", _state->classAttributes, @"classAttributes", nil];
    NSData* data = [NSPropertyListSerialization dataFromPropertyList:all
                                                              format:NSPropertyListXMLFormat_v1_0
                                                    errorDescription:nullptr];
    return data && [data writeToURL:aURL atomically:flag];
}

/// One end of a connection, as it was written; nil for anything else.
static CIFilterEnd* endIn(id list, NSArray* filters) {
    if (id number = member(list, @"filter", [NSNumber class])) {
        NSString* key = member(list, @"key", [NSString class]);
        NSUInteger index = [number unsignedIntegerValue];
        return key && index < [filters count]
                   ? [CIFilterEnd endWithObject:[filters objectAtIndex:index] key:key]
                   : nil;
    }
    id value = valueIn(member(list, @"value", [NSObject class]));
    return value ? [CIFilterEnd endWithObject:value key:nil] : nil;
}

- (BOOL)readList:(id)list {
    NSMutableArray* filters = [NSMutableArray array];
    for (id one in member(list, @"filters", [NSArray class])) {
        CIFilter* filter = [CIFilter filterWithName:member(one, @"name", [NSString class])];
        NSDictionary* values = converted(member(one, @"values", [NSDictionary class]), valueIn);
        if (!filter || !values) return NO;
        for (NSString* key in values) [filter setValue:[values objectForKey:key] forKey:key];
        [filters addObject:filter];
    }
    for (id one in member(list, @"connections", [NSArray class])) {
        CIFilterEnd* source = endIn(member(one, @"source", [NSDictionary class]), filters);
        CIFilterEnd* target = endIn(member(one, @"target", [NSDictionary class]), filters);
        if (!source || !target) return NO;
        [self connectObject:source->object withKey:source->key toObject:target->object withKey:target->key];
    }
    for (id one in member(list, @"exportedKeys", [NSArray class])) {
        CIFilterEnd* end = endIn(member(one, @"of", [NSDictionary class]), filters);
        NSString* name = member(one, @"name", [NSString class]);
        NSDictionary* attributes = converted(member(one, @"attributes", [NSDictionary class]), valueIn);
        if (!end || !name || !attributes) return NO;
        [self exportKey:end->key fromObject:end->object withName:name];
        if ([attributes count]) [self setAttributes:attributes forExportedKey:name];
    }
    [self setClassAttributes:member(list, @"classAttributes", [NSDictionary class])];
    return [filters count] > 0;
}

- (id)initWithContentsOfURL:(NSURL*)aURL {
    if (!(self = [self init])) return nil;
    NSData* data = aURL ? [NSData dataWithContentsOfURL:aURL] : nil;
    id list = nil;
    BOOL read = NO;
    // A file that someone else wrote may have anything in it.
    @try {
        list = data ? [NSPropertyListSerialization propertyListFromData:data
                                                       mutabilityOption:NSPropertyListImmutable
                                                                 format:nullptr
                                                       errorDescription:nullptr]
                    : nil;
        read = [self readList:list];
    } @catch (NSException*) {
        read = NO;
    }
    if (read) return self;
    [self release];
    return nil;
}

@end

@implementation CIGeneratedFilter

- (id)initWithGraph:(CIFilterGraph*)graph
         attributes:(NSDictionary*)attributes
    classAttributes:(NSDictionary*)classAttributes {
    if (!(self = [super init])) return nil;
    _graph = [graph retain];
    _attributes = [attributes copy];
    _classAttributes = [classAttributes copy];
    return self;
}

+ (BOOL)accessInstanceVariablesDirectly {
    return NO;
}

- (void)dealloc {
    [_graph release];
    [_attributes release];
    [_classAttributes release];
    [super dealloc];
}

- (id)copyWithZone:(NSZone*)zone {
    CIFilter* copy = [[[self class] allocWithZone:zone] initWithGraph:[_graph graphOfCopies]
                                                           attributes:_attributes
                                                      classAttributes:_classAttributes];
    [copy setName:[self name]];
    return copy;
}

- (NSArray*)keysThatAre:(bool)output {
    NSMutableArray* keys = [NSMutableArray array];
    for (NSString* name in [_graph exportedNames])
        if (isOutput([_graph exportedAs:name]->key) == output) [keys addObject:name];
    return keys;
}

- (NSArray*)inputKeys {
    return [self keysThatAre:false];
}

- (NSArray*)outputKeys {
    return [self keysThatAre:true];
}

- (NSDictionary*)attributes {
    NSMutableDictionary* all = [NSMutableDictionary dictionaryWithDictionary:[super attributes]];
    [all removeObjectForKey:kCIOutputImageKey];
    [all addEntriesFromDictionary:_classAttributes];
    [all setObject:[self name] forKey:kCIAttributeFilterName];
    for (NSString* name in [_graph exportedNames])
        [all setObject:attributesOf([_graph exportedAs:name], [_attributes objectForKey:name]) forKey:name];
    return all;
}

- (CIImage*)outputImage {
    CIFilterEnd* end = [_graph exportedAs:kCIOutputImageKey];
    return end ? [_graph valueOf:end] : nil;
}

- (id)valueForKey:(NSString*)key {
    CIFilterEnd* end = key ? [_graph exportedAs:key] : nil;
    if (!end) return [super valueForKey:key];
    return isOutput(end->key) ? [_graph valueOf:end] : [end value];
}

- (void)setValue:(id)value forKey:(NSString*)key {
    CIFilterEnd* end = key ? [_graph exportedAs:key] : nil;
    if (end && !isOutput(end->key))
        [end->object setValue:value forKey:end->key];
    else
        [self setValue:value forUndefinedKey:key];
}

@end
