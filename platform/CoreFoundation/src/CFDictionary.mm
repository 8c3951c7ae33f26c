// CFDictionary over NSDictionary, or over a table of plain pointers.
#import <Foundation/Foundation.h>

#include <CoreFoundation/CFDictionary.h>
#include <cf/memory.h>

#include <unordered_map>

namespace {

const void* retain(CFAllocatorRef, const void* value) { return CFRetain(value); }
void release(CFAllocatorRef, const void* value) { CFRelease(value); }

} // namespace

const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {0,       retain, release, CFCopyDescription,
                                                                CFEqual, CFHash};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {0, retain, release, CFCopyDescription,
                                                                    CFEqual};

// The dictionary of plain pointers: an object, so that it can be retained and released like any other.
@interface KazPointerDictionary : NSObject {
  @public
    std::unordered_map<const void*, const void*> entries;
}
@end

@implementation KazPointerDictionary
@end

namespace {

// The pointer table behind `dictionary`, or null when it is a dictionary of objects.
std::unordered_map<const void*, const void*>* pointerTable(CFDictionaryRef dictionary) {
    id object = (id)dictionary;
    return [object isKindOfClass:[KazPointerDictionary class]]
               ? &static_cast<KazPointerDictionary*>(object)->entries
               : nullptr;
}

} // namespace

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks) {
    if (keyCallBacks && valueCallBacks)
        return (CFMutableDictionaryRef)
            [[NSMutableDictionary alloc] initWithCapacity:static_cast<NSUInteger>(capacity)];
    return (CFMutableDictionaryRef)[[KazPointerDictionary alloc] init];
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
    if (auto* table = pointerTable(dictionary)) return static_cast<CFIndex>(table->size());
    return static_cast<CFIndex>([(NSDictionary*)dictionary count]);
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
    auto* table = pointerTable(dictionary);
    if (!table) return [(NSDictionary*)dictionary objectForKey:(id)key];
    auto found = table->find(key);
    return found == table->end() ? nullptr : found->second;
}

Boolean CFDictionaryContainsKey(CFDictionaryRef dictionary, const void* key) {
    if (auto* table = pointerTable(dictionary)) return table->contains(key);
    return [(NSDictionary*)dictionary objectForKey:(id)key] != nil;
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
    if (auto* table = pointerTable(dictionary))
        cf::inMemory([&] { (*table)[key] = value; });
    else
        [(NSMutableDictionary*)dictionary setObject:(id)value forKey:(id)key];
}

void CFDictionaryAddValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
    if (!CFDictionaryContainsKey(dictionary, key)) CFDictionarySetValue(dictionary, key, value);
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key) {
    if (auto* table = pointerTable(dictionary))
        table->erase(key);
    else
        [(NSMutableDictionary*)dictionary removeObjectForKey:(id)key];
}

void CFDictionaryRemoveAllValues(CFMutableDictionaryRef dictionary) {
    if (auto* table = pointerTable(dictionary))
        table->clear();
    else
        [(NSMutableDictionary*)dictionary removeAllObjects];
}
