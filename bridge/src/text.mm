// Text between the host and Cocoa.
#include <bridge/text.h>
#include <hostapi/handles.h>

#import <Foundation/Foundation.h>

#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

// Host versions at which strings changed.
constexpr double kOffersCFStrings = 2012.0;
constexpr double kHidesStringStorage = 2013.0;

constexpr CFIndex kShortText = 99;       // UTF-16 units that fit the buffer on the stack
constexpr CFIndex kBytesPerUnit = 6;     // the worst case of UTF-8, generously
constexpr std::uint32_t kTerminator = 4; // zero bytes after the text, enough for any encoding

// The length of a string in bytes.
constinit host::FrameworkMethod<std::int32_t (*)(REALstring)> lenB{"LenB( s as string ) as integer"};

// Copies the text of `string` to a new block with room for `capacity` bytes and the terminator.
bool copyText(REALstring string, std::uint32_t capacity, std::uint32_t encoding, REALstringData* out) {
    std::uint32_t length = static_cast<std::uint32_t>(lenB(string));
    if (length > capacity) return false;
    char* text = static_cast<char*>(std::malloc(std::size_t{capacity} + kTerminator));
    if (!text) return false;
    if (length) std::memcpy(text, StringGetCString(string), length);
    std::memset(text + length, 0, kTerminator);
    *out = {text, length, encoding};
    return true;
}

// What REALGetStringData filled.
struct Fetched : REALstringData {
    bool filled;

    explicit operator bool() const { return filled; }
};

void dispose(Fetched fetched) { bridge::disposeStringData(fetched); }

// The bytes of a host string while they are read.
class StringBytes {
  public:
    explicit StringBytes(REALstring string)
        : held(rbversion_rbversion < kHidesStringStorage ? host::locked(string) : nullptr),
          fetched(held ? Fetched() : fetch(string)),
          view(held ? shown(string) : static_cast<const REALstringData&>(fetched.get())) {}

    const char* text() const { return static_cast<const char*>(view.data); }
    std::uint32_t length() const { return view.length; }

  private:
    static REALstringData shown(REALstring string) {
        return string->buffer ? REALstringData{string->buffer + 1, string->length, 0} : REALstringData();
    }

    static Fetched fetch(REALstring string) {
        Fetched result = {};
        if (auto measure = PluginGetStringData.resolve() ? nullptr : lenB.resolve())
            result.length = static_cast<std::uint32_t>(measure(string));
        result.filled = REALGetStringData(string, kREALTextEncodingUnknown, &result);
        return result.filled ? result : Fetched();
    }

    host::Held<REALstring> held;
    host::Entry<Fetched, dispose> fetched;
    REALstringData view;
};

REALstring buildUTF8(const char* text) {
    return *text ? bridge::newString(text, std::strlen(text), kREALTextEncodingUTF8) : nullptr;
}

} // namespace

void bridge::disposeStringData(REALstringData& data) {
    if (REALDisposeStringData.resolve())
        REALDisposeStringData(&data);
    else
        std::free(data.data);
    data = {};
}

bool REALGetStringData(REALstring string, std::uint32_t encoding, REALstringData* out) {
    if (PluginGetStringData.resolve()) return PluginGetStringData(string, encoding, out);
    if (!string || !StringGetCString.resolve() || !lenB.resolve()) return false;

    // In the string's own encoding, the caller says how much room to make.
    if (encoding == kREALTextEncodingUnknown) return copyText(string, out->length, encoding, out);

    if (REALGetStringEncoding(string) == encoding)
        return copyText(string, static_cast<std::uint32_t>(lenB(string)), encoding, out);
    host::Held converted(REALConvertString(string, encoding));
    return converted &&
           copyText(converted.get(), static_cast<std::uint32_t>(lenB(converted.get())), encoding, out);
}

REALstring bridge::newString(const char* text, std::size_t length, std::uint32_t encoding) {
    REALstring string = REALBuildString(text, static_cast<std::int32_t>(length));
    if (string) REALSetStringEncoding(string, encoding);
    return string;
}

CFStringRef RBString2CFString(REALstring string) {
    if (!string) return nullptr;
    if (rbversion_rbversion >= kOffersCFStrings)
        if (const void* result = REALCopyStringCFString(string, 0)) return static_cast<CFStringRef>(result);
    if (const void* result = REALGetStringCFString(string, 0)) return static_cast<CFStringRef>(result);

    CFStringEncoding encoding = REALGetStringEncoding(string);
    StringBytes bytes(string);
    if (!bytes.text()) return nullptr;
    if (encoding == kREALTextEncodingUTF16)
        return CFStringCreateWithCharacters(kCFAllocatorDefault,
                                            reinterpret_cast<const UniChar*>(bytes.text()),
                                            static_cast<CFIndex>(bytes.length() / sizeof(UniChar)));
    return CFStringCreateWithCString(kCFAllocatorDefault, bytes.text(), encoding);
}

NSString* bridge::temporaryString(REALstring string) {
    return [(NSString*)RBString2CFString(string) autorelease];
}

REALstring CFString2RBString(CFStringRef string) {
    CFIndex length = string ? CFStringGetLength(string) : 0;
    if (length <= 0) return nullptr;

    if (length <= kShortText) {
        char buffer[kShortText * kBytesPerUnit + 7] = {};
        if (!CFStringGetCString(string, buffer, sizeof buffer - 1, kCFStringEncodingUTF8)) return nullptr;
        return buildUTF8(buffer);
    }

    if (length > std::numeric_limits<std::int32_t>::max() / kBytesPerUnit) return nullptr;
    host::Entry<void*, std::free> buffer(std::calloc(static_cast<std::size_t>(length), kBytesPerUnit));
    if (!buffer) return nullptr;
    char* bytes = static_cast<char*>(buffer.get());
    if (!CFStringGetCString(string, bytes, length * kBytesPerUnit, kCFStringEncodingUTF8)) return nullptr;
    return buildUTF8(bytes);
}
