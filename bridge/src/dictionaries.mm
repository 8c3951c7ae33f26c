// Host dictionaries against NSDictionary.
#include <bridge/dictionaries.h>
#include <bridge/nesting.h>
#include <bridge/variants.h>
#include <hostapi/handles.h>

#include <type_traits>

REALobject LastDictionary = nullptr;
void (*LastDictionarySetter)(REALobject, REALobject, REALobject) = nullptr;
REALobject (*LastDictionaryGetter)(REALobject, REALobject) = nullptr;
REALobject (*LastDictionaryKeyGetter)(REALobject, std::int32_t) = nullptr;

namespace {

// Loads the methods unless they are this dictionary's already.
void refreshMethods(REALobject dictionary) {
    if (dictionary == LastDictionary) return;
    LastDictionary = dictionary;
    auto load = [dictionary](auto& method, const char* declaration) {
        method =
            reinterpret_cast<std::decay_t<decltype(method)>>(REALLoadObjectMethod(dictionary, declaration));
    };
    load(LastDictionarySetter, "Value(key As Variant, Assigns _value As Variant)");
    load(LastDictionaryGetter, "Value(key As Variant) As Variant");
    load(LastDictionaryKeyGetter, "Key(index As Integer) As Variant");
}

} // namespace

NSDictionary* NewNSDictionary(REALobject dictionary) {
    if (!dictionary) return nil;
    bridge::Nesting nesting(dictionary);
    std::int32_t count = host::propertyValue(REALGetPropValueInt32, dictionary, "Count");
    if (count < 1) return [NSDictionary dictionary];
    NSMutableDictionary* result = [NSMutableDictionary dictionaryWithCapacity:static_cast<NSUInteger>(count)];
    for (std::int32_t i = 0; result && i < count; ++i) {
        // Refreshed each time: converting an entry may have converted another dictionary.
        refreshMethods(dictionary);
        host::Held received(LastDictionaryKeyGetter ? LastDictionaryKeyGetter(dictionary, i) : nullptr);
        refreshMethods(dictionary);
        host::Held value(LastDictionaryGetter ? LastDictionaryGetter(dictionary, received.get()) : nullptr);
        host::Held key(received.release()); // given back before the value
        if (!key) continue;
        id cocoaKey = GetVariantAsNSObject(key.get());
        id cocoaValue = GetVariantAsNSObject(value.get());
        [result setObject:cocoaValue ? cocoaValue : [NSNull null] forKey:cocoaKey ? cocoaKey : [NSNull null]];
    }
    return result;
}

REALobject NSDictionaryRB(NSDictionary* dictionary) {
    if (!dictionary) return nullptr;
    host::Held result(REALnewInstance("Dictionary"));
    if (!result) return nullptr;
    NSArray* keys = [dictionary allKeys];
    for (NSUInteger i = 0; i < [keys count]; ++i) {
        id cocoaKey = [keys objectAtIndex:i];
        host::Held made(NewVariantFromNSObject(cocoaKey));
        host::Held value(NewVariantFromNSObject([dictionary objectForKey:cocoaKey]));
        host::Held key(made.release()); // given back before the value
        refreshMethods(result.get());
        if (LastDictionarySetter) LastDictionarySetter(result.get(), key.get(), value.get());
    }
    return result.release();
}
