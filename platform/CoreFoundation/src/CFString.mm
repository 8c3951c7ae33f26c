// CFString over NSString.
#include "autorelease.h"

#include <CoreFoundation/CFString.h>

#include <cstring>
#include <mutex>
#include <string>
#include <unordered_map>

namespace {

struct EncodingPair {
    CFStringEncoding platform;
    NSStringEncoding foundation;
};

constexpr EncodingPair kEncodings[] = {
    {kCFStringEncodingMacRoman, NSMacOSRomanStringEncoding},
    {kCFStringEncodingWindowsLatin1, NSWindowsCP1252StringEncoding},
    {kCFStringEncodingISOLatin1, NSISOLatin1StringEncoding},
    {kCFStringEncodingASCII, NSASCIIStringEncoding},
    {kCFStringEncodingUTF8, NSUTF8StringEncoding},
    {kCFStringEncodingUTF16, NSUTF16StringEncoding},
    {kCFStringEncodingUTF16BE, NSUTF16BigEndianStringEncoding},
    {kCFStringEncodingUTF16LE, NSUTF16LittleEndianStringEncoding},
    {kCFStringEncodingUTF32, NSUTF32StringEncoding},
};

// GSUndefinedEncoding, which is 0, for an unknown encoding.
NSStringEncoding foundationEncoding(CFStringEncoding encoding) {
    for (const EncodingPair& pair : kEncodings)
        if (pair.platform == encoding) return pair.foundation;
    return GSUndefinedEncoding;
}

// The bytes of the text; nil if the encoding lacks a character.
NSData* encoded(NSString* string, CFStringEncoding encoding) {
    NSStringEncoding foundation = foundationEncoding(encoding);
    return foundation ? [string dataUsingEncoding:foundation allowLossyConversion:NO] : nil;
}

// Nil for an unknown form.
NSString* normalized(NSString* text, CFStringNormalizationForm form) {
    switch (form) {
    case kCFStringNormalizationFormD:
        return [text decomposedStringWithCanonicalMapping];
    case kCFStringNormalizationFormKD:
        return [text decomposedStringWithCompatibilityMapping];
    case kCFStringNormalizationFormC:
        return [text precomposedStringWithCanonicalMapping];
    case kCFStringNormalizationFormKC:
        return [text precomposedStringWithCompatibilityMapping];
    }
    return nil;
}

} // namespace

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex length,
                                    CFStringEncoding encoding, Boolean) {
    return inPool([&]() -> CFStringRef {
        NSStringEncoding foundation = foundationEncoding(encoding);
        if (!foundation || length < 0 || (!bytes && length)) return nullptr;
        return (CFStringRef)[[NSString alloc] initWithBytes:bytes
                                                     length:static_cast<NSUInteger>(length)
                                                   encoding:foundation];
    });
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text, CFStringEncoding encoding) {
    if (!text) return nullptr;
    return CFStringCreateWithBytes(allocator, reinterpret_cast<const UInt8*>(text),
                                   static_cast<CFIndex>(std::strlen(text)), encoding, false);
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar* characters, CFIndex length) {
    return inPool([&]() -> CFStringRef {
        if (length < 0 || (!characters && length)) return nullptr;
        return (CFStringRef)[[NSString alloc] initWithCharacters:characters
                                                          length:static_cast<NSUInteger>(length)];
    });
}

CFStringRef CFStringCreateCopy(CFAllocatorRef, CFStringRef string) {
    return inPool([&]() -> CFStringRef { return (CFStringRef)[(NSString*)string copy]; });
}

CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef, CFIndex, CFStringRef string) {
    return inPool(
        [&]() -> CFMutableStringRef { return (CFMutableStringRef)[(NSString*)string mutableCopy]; });
}

CFIndex CFStringGetLength(CFStringRef string) { return static_cast<CFIndex>([(NSString*)string length]); }

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer) {
    [(NSString*)string getCharacters:buffer
                               range:NSMakeRange(static_cast<NSUInteger>(range.location),
                                                 static_cast<NSUInteger>(range.length))];
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size, CFStringEncoding encoding) {
    return inPool([&]() -> Boolean {
        NSData* bytes = encoded((NSString*)string, encoding);
        if (!bytes || static_cast<CFIndex>([bytes length]) >= size) return false;
        std::memcpy(buffer, [bytes bytes], [bytes length]);
        buffer[[bytes length]] = 0;
        return true;
    });
}

void CFStringNormalize(CFMutableStringRef string, CFStringNormalizationForm form) {
    NSMutableString* text = (NSMutableString*)string;
    inPool([&] {
        NSString* normal = normalized(text, form);
        if (normal) [text setString:normal];
        return normal != nil;
    });
}

CFStringRef __CFStringMakeConstantString(const char* text) {
    return inPool([&]() -> CFStringRef {
        static std::mutex mutex;
        static auto* strings = new std::unordered_map<std::string, CFStringRef>;
        std::lock_guard lock(mutex);
        CFStringRef& string = (*strings)[text];
        if (!string) string = CFStringCreateWithCString(nullptr, text, kCFStringEncodingUTF8);
        return string;
    });
}
