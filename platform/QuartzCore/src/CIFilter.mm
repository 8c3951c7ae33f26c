// CIFilter: a filter of the engine and the values that are set, by key.
#import <QuartzCore/CIFilter.h>

#include "FilterValues.h"
#include "Internal.h"
#include "Raise.h"

#include <cf/memory.h>
#include <objc/runtime.h>

#include <algorithm>
#include <cstdarg>

static cg::LiveCount live("CIFilter");

struct CIFilterState {
    const engine::FilterInfo* info;
    NSMutableDictionary* values;
};

namespace {

NSString* text(const std::string& s) { return [NSString stringWithUTF8String:s.c_str()]; }

const engine::FilterInfo* filterNamed(NSString* name) {
    return name ? engine::findFilter([name UTF8String]) : nullptr;
}

/// "CICategoryBlur" for the engine's "Blur".
NSString* categoryKey(const std::string& category) {
    return [@"CICategory" stringByAppendingString:text(category)];
}

bool isIn(const engine::FilterInfo& filter, NSString* category) {
    return std::any_of(filter.categories.begin(), filter.categories.end(),
                       [&](const std::string& own) { return [category isEqualToString:categoryKey(own)]; });
}

bool hasInput(const engine::FilterInfo& filter, NSString* key) {
    const char* wanted = key ? [key UTF8String] : "";
    return std::any_of(filter.inputs.begin(), filter.inputs.end(),
                       [wanted](const engine::InputInfo& input) { return input.key == wanted; });
}

/// Every filter has a class named after it, so that its name appears wherever class names do.
Class classOf(const engine::FilterInfo& filter) {
    @synchronized([CIFilter class]) {
        Class known = objc_lookUpClass(filter.name.c_str());
        if (known) return known;
        Class made = objc_allocateClassPair([CIFilter class], filter.name.c_str(), 0);
        objc_registerClassPair(made);
        return made;
    }
}

/// The attributes that Core Image lists for one input: only those that it has.
NSDictionary* describe(const engine::InputInfo& input) {
    NSMutableDictionary* attributes = [NSMutableDictionary dictionary];
    auto set = [&](NSString* key, id value) {
        if (value) [attributes setObject:value forKey:key];
    };
    auto setValue = [&](NSString* key, const auto& value) {
        if (value) set(key, ci::objectOf(*value));
    };
    set(kCIAttributeClass, ci::classNameOf(input.kind));
    if (!input.type.empty())
        set(kCIAttributeType, [@"CIAttributeType" stringByAppendingString:text(input.type)]);
    if (!input.displayName.empty()) set(kCIAttributeDisplayName, text(input.displayName));
    setValue(kCIAttributeDefault, input.defaultValue);
    setValue(kCIAttributeIdentity, input.identity);
    setValue(kCIAttributeMin, input.min);
    setValue(kCIAttributeMax, input.max);
    setValue(kCIAttributeSliderMin, input.sliderMin);
    setValue(kCIAttributeSliderMax, input.sliderMax);
    return attributes;
}

NSURL* documentationOf(const engine::FilterInfo& filter) {
    NSString* all = @"http://developer.apple.com/cgi-bin/apple_ref.cgi?apple_ref="
                    @"//apple_ref/doc/filter/ci/";
    return [NSURL URLWithString:[all stringByAppendingString:text(filter.name)]];
}

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
                               @"Built-In", kCICategoryBuiltIn, nil];
    return category ? [names objectForKey:category] : nil;
}

} // namespace

@implementation CIFilter

+ (CIFilter*)filterWithName:(NSString*)name {
    const engine::FilterInfo* info = filterNamed(name);
    return info ? [[[classOf(*info) alloc] initWithInfo:info] autorelease] : nil;
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
    for (const engine::FilterInfo* filter : engine::allFilters()) {
        bool inAll = !filter->categories.empty(); // those of automatic adjustment are in none
        for (NSString* category in categories) inAll = inAll && isIn(*filter, category);
        if (inAll) [names addObject:text(filter->name)];
    }
    return names;
}

+ (NSString*)localizedNameForFilterName:(NSString*)filterName {
    const engine::FilterInfo* info = filterNamed(filterName);
    return info ? text(info->displayName) : nil;
}

+ (NSString*)localizedNameForCategory:(NSString*)category {
    return categoryName(category);
}

+ (NSString*)localizedDescriptionForFilterName:(NSString*)filterName {
    const engine::FilterInfo* info = filterNamed(filterName);
    return info ? text(info->description) : nil;
}

+ (NSURL*)localizedReferenceDocumentationForFilterName:(NSString*)filterName {
    const engine::FilterInfo* info = filterNamed(filterName);
    return info ? documentationOf(*info) : nil;
}

/// Values are reached only through the keys of the inputs.
+ (BOOL)accessInstanceVariablesDirectly {
    return NO;
}

- (id)initWithInfo:(const engine::FilterInfo*)info {
    if (!(self = [super init])) return nil;
    if (!(_state = new (std::nothrow) CIFilterState{info, [[NSMutableDictionary alloc] init]})) {
        [self release];
        return nil;
    }
    live.born();
    return self;
}

/// Filters are made by name.
- (id)init {
    [self release];
    return nil;
}

- (void)dealloc {
    if (_state) {
        live.gone();
        [_state->values release];
        delete _state;
    }
    [super dealloc];
}

- (id)copyWithZone:(NSZone*)zone {
    CIFilter* copy = [[[self class] allocWithZone:zone] initWithInfo:_state->info];
    if (!copy) return nil;
    [copy->_state->values setDictionary:_state->values];
    return copy;
}

- (NSString*)name {
    return text(_state->info->name);
}

- (NSArray*)inputKeys {
    NSMutableArray* keys = [NSMutableArray array];
    for (const engine::InputInfo& input : _state->info->inputs) [keys addObject:text(input.key)];
    return keys;
}

- (NSArray*)outputKeys {
    return [NSArray arrayWithObject:kCIOutputImageKey];
}

- (void)setDefaults {
    for (const engine::InputInfo& input : _state->info->inputs)
        if (input.defaultValue) [self setValue:ci::objectOf(*input.defaultValue) forKey:text(input.key)];
}

- (NSDictionary*)attributes {
    const engine::FilterInfo& info = *_state->info;
    NSMutableArray* categories = [NSMutableArray array];
    for (const std::string& category : info.categories) [categories addObject:categoryKey(category)];
    NSMutableDictionary* attributes = [NSMutableDictionary
        dictionaryWithObjectsAndKeys:text(info.name), kCIAttributeFilterName, text(info.displayName),
                                     kCIAttributeFilterDisplayName, categories, kCIAttributeFilterCategories,
                                     text(info.description), kCIAttributeDescription, documentationOf(info),
                                     kCIAttributeReferenceDocumentation, text(info.since),
                                     kCIAttributeFilterAvailable_Mac, nil];
    [attributes setObject:[NSDictionary dictionaryWithObject:@"CIImage" forKey:kCIAttributeClass]
                   forKey:kCIOutputImageKey];
    for (const engine::InputInfo& input : info.inputs)
        [attributes setObject:describe(input) forKey:text(input.key)];
    return attributes;
}

- (CIImage*)outputImage {
    engine::Values values;
    for (const engine::InputInfo& input : _state->info->inputs) {
        id object = [_state->values objectForKey:text(input.key)];
        if (!object) continue;
        auto value = ci::valueOf(object, input.kind);
        if (!value)
            [NSException raise:NSInvalidArgumentException
                        format:@"%@: the value of %s must be a %@, not a %@", [self name], input.key.c_str(),
                               ci::classNameOf(input.kind), NSStringFromClass([object class])];
        cf::inMemory([&] { values.emplace(input.key, std::move(*value)); });
    }
    ci::Failure failure;
    engine::Image output = ci::apply(*_state->info, values, failure);
    ci::raise(failure, [self name]);
    return [CIImage imageWithRecipe:output];
}

// --- key-value coding -------------------------------------------------------------------------------------

- (id)valueForKey:(NSString*)key {
    if (hasInput(*_state->info, key)) return [_state->values objectForKey:key];
    return [super valueForKey:key];
}

- (void)setValue:(id)value forKey:(NSString*)key {
    if (!hasInput(*_state->info, key)) {
        [self setValue:value forUndefinedKey:key];
        return;
    }
    if (value)
        [_state->values setObject:value forKey:key];
    else
        [_state->values removeObjectForKey:key];
}

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
    for (NSString* key in [self inputKeys])
        [all appendFormat:@" %@=%@", key, [_state->values objectForKey:key]];
    [all appendString:@">"];
    return all;
}

@end
