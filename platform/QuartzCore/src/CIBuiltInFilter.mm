// CIBuiltInFilter: a filter of the engine and the values that are set, by key.
#include "CIBuiltInFilter.h"

#include "FilterValues.h"
#include "Internal.h"
#include "Raise.h"

#include <cf/memory.h>
#include <objc/runtime.h>

#include <algorithm>

namespace {

NSString* text(const std::string& s) { return [NSString stringWithUTF8String:s.c_str()]; }

bool hasInput(const engine::FilterInfo& filter, NSString* key) {
    const char* wanted = key ? [key UTF8String] : "";
    return std::any_of(filter.inputs.begin(), filter.inputs.end(),
                       [wanted](const engine::InputInfo& input) { return input.key == wanted; });
}

/// Every filter has a class named after it, so that its name appears wherever class names do.
Class classOf(const engine::FilterInfo& filter) {
    @synchronized([CIBuiltInFilter class]) {
        Class known = objc_lookUpClass(filter.name.c_str());
        if (known) return known;
        Class made = objc_allocateClassPair([CIBuiltInFilter class], filter.name.c_str(), 0);
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

} // namespace

namespace ci {

const engine::FilterInfo* builtInNamed(NSString* name) {
    return name ? engine::findFilter([name UTF8String]) : nullptr;
}

NSArray* categoriesOf(const engine::FilterInfo& filter) {
    NSMutableArray* categories = [NSMutableArray array];
    for (const std::string& category : filter.categories)
        [categories addObject:[@"CICategory" stringByAppendingString:text(category)]];
    return categories;
}

} // namespace ci

@implementation CIBuiltInFilter

+ (CIFilter*)filterWithInfo:(const engine::FilterInfo*)info {
    return [[[classOf(*info) alloc] initWithInfo:info] autorelease];
}

+ (NSDictionary*)classAttributesOf:(const engine::FilterInfo*)info {
    return
        [NSDictionary dictionaryWithObjectsAndKeys:text(info->name), kCIAttributeFilterName,
                                                   text(info->displayName), kCIAttributeFilterDisplayName,
                                                   ci::categoriesOf(*info), kCIAttributeFilterCategories,
                                                   text(info->description), kCIAttributeDescription,
                                                   documentationOf(*info), kCIAttributeReferenceDocumentation,
                                                   text(info->since), kCIAttributeFilterAvailable_Mac, nil];
}

/// Values are reached only through the keys of the inputs.
+ (BOOL)accessInstanceVariablesDirectly {
    return NO;
}

- (id)initWithInfo:(const engine::FilterInfo*)info {
    if (!(self = [super init])) return nil;
    _info = info;
    _values = [[NSMutableDictionary alloc] init];
    return self;
}

/// These filters are made by name.
- (id)init {
    [self release];
    return nil;
}

- (void)dealloc {
    [_values release];
    [super dealloc];
}

- (id)copyWithZone:(NSZone*)zone {
    CIBuiltInFilter* copy = [[[self class] allocWithZone:zone] initWithInfo:_info];
    if (!copy) return nil;
    [copy->_values setDictionary:_values];
    return copy;
}

- (NSArray*)inputKeys {
    NSMutableArray* keys = [NSMutableArray array];
    for (const engine::InputInfo& input : _info->inputs) [keys addObject:text(input.key)];
    return keys;
}

- (void)setDefaults {
    for (const engine::InputInfo& input : _info->inputs)
        if (input.defaultValue) [self setValue:ci::objectOf(*input.defaultValue) forKey:text(input.key)];
}

- (NSDictionary*)attributes {
    NSMutableDictionary* attributes =
        [NSMutableDictionary dictionaryWithDictionary:[CIBuiltInFilter classAttributesOf:_info]];
    [attributes setObject:[NSDictionary dictionaryWithObject:@"CIImage" forKey:kCIAttributeClass]
                   forKey:kCIOutputImageKey];
    for (const engine::InputInfo& input : _info->inputs)
        [attributes setObject:describe(input) forKey:text(input.key)];
    return attributes;
}

- (CIImage*)outputImage {
    engine::Values values;
    for (const engine::InputInfo& input : _info->inputs) {
        id object = [_values objectForKey:text(input.key)];
        if (!object) continue;
        auto value = ci::valueOf(object, input.kind);
        if (!value)
            [NSException raise:NSInvalidArgumentException
                        format:@"%@: the value of %s must be a %@, not a %@", [self name], input.key.c_str(),
                               ci::classNameOf(input.kind), NSStringFromClass([object class])];
        cf::inMemory([&] { values.emplace(input.key, std::move(*value)); });
    }
    ci::Failure failure;
    engine::Image output = ci::apply(*_info, values, failure);
    ci::raise(failure, [self name]);
    return [CIImage imageWithRecipe:output];
}

- (id)valueForKey:(NSString*)key {
    if (hasInput(*_info, key)) return [_values objectForKey:key];
    return [super valueForKey:key];
}

- (void)setValue:(id)value forKey:(NSString*)key {
    if (!hasInput(*_info, key)) {
        [self setValue:value forUndefinedKey:key];
        return;
    }
    if (value)
        [_values setObject:value forKey:key];
    else
        [_values removeObjectForKey:key];
}

@end
