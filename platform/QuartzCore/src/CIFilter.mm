// CIFilter: the catalogue of filters by name, and what a filter that a program wrote inherits.
#import <QuartzCore/CIFilter.h>

#include "CIBuiltInFilter.h"
#include "FilterRegistry.h"
#include "Internal.h"

#include <objc/runtime.h>

#include <cstdarg>
#include <functional>
#include <string_view>

static cg::LiveCount live("CIFilter");

namespace {

/// "Tile Effect" for kCICategoryTileEffect; nil for an unknown category.
NSString* categoryName(NSString* category) {
    static NSDictionary* names = [[NSDictionary alloc]
        initWithObjectsAndKeys:@"Distortion Effect", kCICategoryDistortionEffect, @"Geometry Adjustment",
                               kCICategoryGeometryAdjustment, @"Composite Operation",
                               kCICategoryCompositeOperation, @"Halftone Effect", kCICategoryHalftoneEffect,
                               @"Color Adjustment", kCICategoryColorAdjustment, @"Color Effect",
                               kCICategoryColorEffect, @"Transition", kCICategoryTransition, @"Tile Effect",
                               kCICategoryTileEffect, @"Generator", kCICategoryGenerator, @"Reduction",
                               kCICategoryReduction, @"Gradient", kCICategoryGradient, @"Stylize",
                               kCICategoryStylize, @"Sharpen", kCICategorySharpen, @"Blur", kCICategoryBlur,
                               @"Video", kCICategoryVideo, @"Still Image", kCICategoryStillImage,
                               @"Interlaced", kCICategoryInterlaced, @"Non-Square Pixels",
                               kCICategoryNonSquarePixels, @"High Dynamic Range", kCICategoryHighDynamicRange,
                               @"Built-In", kCICategoryBuiltIn, @"Filter Generator",
                               kCICategoryFilterGenerator, nil];
    return category ? [names objectForKey:category] : nil;
}

/// The keys of the whole filter; nil for an unknown name.
NSDictionary* classAttributesOf(NSString* name) {
    if (const engine::FilterInfo* info = ci::builtInNamed(name))
        return [CIBuiltInFilter classAttributesOf:info];
    return [[CIRegisteredFilter filterNamed:name] classAttributes];
}

/// The categories among the keys of a filter; nil unless they are an array.
NSArray* categoriesIn(NSDictionary* classAttributes) {
    id categories = [classAttributes objectForKey:kCIAttributeFilterCategories];
    return [categories isKindOfClass:[NSArray class]] ? categories : nil;
}

/// The classes that a program derived from CIFilter, from the eldest to the object's own.
void eachDerived(Class derived, const std::function<void(Class)>& body) {
    if (!derived || derived == [CIFilter class]) return;
    eachDerived(class_getSuperclass(derived), body);
    body(derived);
}

/// Calls `body` for each variable that is an input: `inputRadius` or `_inputRadius`.
void eachInput(Class derived, const std::function<void(Ivar, std::string_view key)>& body) {
    eachDerived(derived, [&](Class own) {
        unsigned count = 0;
        Ivar* variables = class_copyIvarList(own, &count);
        for (unsigned i = 0; i < count; ++i) {
            std::string_view key = ivar_getName(variables[i]);
            if (key.starts_with("_")) key.remove_prefix(1);
            if (key.starts_with("input")) body(variables[i], key);
        }
        free(variables);
    });
}

NSString* text(std::string_view s) { return [NSString stringWithUTF8String:std::string(s).c_str()]; }

/// "CIImage" for a variable of that class, NSNumber for one of a C type; nil for `id`.
NSString* classNameOf(Ivar variable) {
    std::string_view type = ivar_getTypeEncoding(variable);
    if (!type.starts_with("@")) return @"NSNumber";
    if (type.size() < 4 || type[1] != '"') return nil;
    return text(type.substr(2, type.find('"', 2) - 2));
}

} // namespace

@implementation CIFilter

// --- the catalogue ----------------------------------------------------------------------------------------

+ (CIFilter*)filterWithName:(NSString*)name {
    if (const engine::FilterInfo* info = ci::builtInNamed(name)) return [CIBuiltInFilter filterWithInfo:info];
    id constructor = [[CIRegisteredFilter filterNamed:name] constructor];
    // A class that registered itself and left this method to CIFilter makes filters in the plain way.
    CIFilter* filter =
        constructor == self ? [[[self alloc] init] autorelease] : [constructor filterWithName:name];
    [filter setName:name];
    return filter;
}

+ (CIFilter*)filterWithName:(NSString*)name keysAndValues:(id)key0, ... {
    CIFilter* filter = [self filterWithName:name];
    [filter setDefaults];
    va_list rest;
    va_start(rest, key0);
    for (id key = key0; key; key = va_arg(rest, id)) [filter setValue:va_arg(rest, id) forKey:key];
    va_end(rest);
    return filter;
}

+ (NSArray*)filterNamesInCategory:(NSString*)category {
    return [self filterNamesInCategories:category ? [NSArray arrayWithObject:category] : nil];
}

+ (NSArray*)filterNamesInCategories:(NSArray*)categories {
    NSMutableArray* names = [NSMutableArray array];
    NSSet* wanted = [NSSet setWithArray:categories ? categories : [NSArray array]];
    auto addIfIn = [&](NSString* name, NSArray* own) {
        if ([wanted isSubsetOfSet:[NSSet setWithArray:own ? own : [NSArray array]]]) [names addObject:name];
    };
    for (const engine::FilterInfo* info : engine::allFilters()) {
        if (info->categories.empty()) continue; // those of automatic adjustment are not listed
        addIfIn(text(info->name), ci::categoriesOf(*info));
    }
    for (NSString* name in [CIRegisteredFilter names]) addIfIn(name, categoriesIn(classAttributesOf(name)));
    [names sortUsingSelector:@selector(compare:)];
    return names;
}

+ (void)registerFilterName:(NSString*)name
               constructor:(id)anObject
           classAttributes:(NSDictionary*)attributes {
    if (!name || !anObject)
        [NSException raise:NSInvalidArgumentException
                    format:@"registerFilterName: a %s is needed", name ? "constructor" : "name"];
    if (ci::builtInNamed(name))
        [NSException raise:NSInvalidArgumentException
                    format:@"registerFilterName: %@ is a built-in filter", name];
    [CIRegisteredFilter registerName:name constructor:anObject classAttributes:attributes];
}

+ (NSString*)localizedNameForFilterName:(NSString*)filterName {
    NSDictionary* attributes = classAttributesOf(filterName);
    NSString* displayName = [attributes objectForKey:kCIAttributeFilterDisplayName];
    return attributes && !displayName ? filterName : displayName;
}

+ (NSString*)localizedNameForCategory:(NSString*)category {
    if (NSString* name = categoryName(category)) return name;
    for (NSString* filter in [CIRegisteredFilter names])
        if ([categoriesIn(classAttributesOf(filter)) containsObject:category]) return category;
    return nil;
}

+ (NSString*)localizedDescriptionForFilterName:(NSString*)filterName {
    return [classAttributesOf(filterName) objectForKey:kCIAttributeDescription];
}

+ (NSURL*)localizedReferenceDocumentationForFilterName:(NSString*)filterName {
    return [classAttributesOf(filterName) objectForKey:kCIAttributeReferenceDocumentation];
}

// --- a filter -------------------------------------------------------------------------------------------

- (id)init {
    if ([self class] == [CIFilter class]) {
        [self release];
        return nil;
    }
    if (!(self = [super init])) return nil;
    live.born();
    _name = [NSStringFromClass([self class]) copy];
    return self;
}

- (void)dealloc {
    if (_name) live.gone();
    [_name release];
    // A class that has a dealloc of its own releases what it holds there.
    SEL sel = @selector(dealloc);
    if ([self methodForSelector:sel] == [CIFilter instanceMethodForSelector:sel])
        eachInput([self class], [&](Ivar variable, std::string_view) {
            if (ivar_getTypeEncoding(variable)[0] == '@') [object_getIvar(self, variable) release];
        });
    [super dealloc];
}

- (id)copyWithZone:(NSZone*)zone {
    CIFilter* copy = [[[self class] allocWithZone:zone] init];
    for (NSString* key in [self inputKeys]) [copy setValue:[self valueForKey:key] forKey:key];
    [copy setName:_name];
    return copy;
}

- (NSString*)name {
    return _name;
}

- (void)setName:(NSString*)name {
    NSString* old = _name;
    _name = [name copy];
    [old release];
}

- (NSArray*)inputKeys {
    NSMutableArray* keys = [NSMutableArray array];
    eachInput([self class], [&](Ivar, std::string_view key) { [keys addObject:text(key)]; });
    return keys;
}

- (NSArray*)outputKeys {
    return [NSArray arrayWithObject:kCIOutputImageKey];
}

- (NSDictionary*)customAttributes {
    id own = [self class];
    return [own respondsToSelector:_cmd] ? [own customAttributes] : nil;
}

- (void)setDefaults {
    NSDictionary* attributes = [self attributes];
    for (NSString* key in [self inputKeys])
        if (id value = [[attributes objectForKey:key] objectForKey:kCIAttributeDefault])
            [self setValue:value forKey:key];
}

- (NSDictionary*)attributes {
    NSMutableDictionary* attributes = [NSMutableDictionary
        dictionaryWithObjectsAndKeys:_name, kCIAttributeFilterName, _name, kCIAttributeFilterDisplayName,
                                     [NSArray array], kCIAttributeFilterCategories, nil];
    [attributes addEntriesFromDictionary:[[CIRegisteredFilter filterNamed:_name] classAttributes]];
    eachInput([self class], [&](Ivar variable, std::string_view key) {
        NSString* className = classNameOf(variable);
        [attributes setObject:className ? [NSDictionary dictionaryWithObject:className
                                                                      forKey:kCIAttributeClass]
                                        : [NSDictionary dictionary]
                       forKey:text(key)];
    });
    [attributes setObject:[NSDictionary dictionaryWithObject:@"CIImage" forKey:kCIAttributeClass]
                   forKey:kCIOutputImageKey];
    // What the filter says of a key is added to what its variable says.
    NSDictionary* custom = [self customAttributes];
    for (NSString* key in custom) {
        id own = [custom objectForKey:key], known = [attributes objectForKey:key];
        if ([known isKindOfClass:[NSDictionary class]] && [own isKindOfClass:[NSDictionary class]]) {
            NSMutableDictionary* both = [NSMutableDictionary dictionaryWithDictionary:known];
            [both addEntriesFromDictionary:own];
            own = both;
        }
        [attributes setObject:own forKey:key];
    }
    return attributes;
}

- (CIImage*)outputImage {
    return nil;
}

// --- key-value coding -------------------------------------------------------------------------------------

- (void)raiseUnknownKey:(NSString*)key in:(const char*)method {
    NSString* reason = [NSString
        stringWithFormat:@"[<%@ %p> %s]: this class is not key value coding-compliant for the key %@. "
                         @"The inputs of %@ are %@.",
                         NSStringFromClass([self class]), self, method, key, [self name],
                         [[self inputKeys] componentsJoinedByString:@", "]];
    NSDictionary* info = [NSDictionary
        dictionaryWithObjectsAndKeys:self, @"NSTargetObjectUserInfoKey", key, @"NSUnknownUserInfoKey", nil];
    [[NSException exceptionWithName:@"NSUnknownKeyException" reason:reason userInfo:info] raise];
}

- (id)valueForUndefinedKey:(NSString*)key {
    [self raiseUnknownKey:key in:"valueForUndefinedKey:"];
    return nil;
}

- (void)setValue:(id)value forUndefinedKey:(NSString*)key {
    [self raiseUnknownKey:key in:"setValue:forUndefinedKey:"];
}

- (NSString*)description {
    NSMutableString* all = [NSMutableString stringWithFormat:@"<%@:", [self name]];
    for (NSString* key in [self inputKeys]) [all appendFormat:@" %@=%@", key, [self valueForKey:key]];
    [all appendString:@">"];
    return all;
}

@end
