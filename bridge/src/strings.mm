#include <bridge/strings.h>

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

// The host's own LenB, or null.
std::int32_t (*lenB())(REALstring) {
    using LenB = std::int32_t (*)(REALstring);
    static LenB function = nullptr;
    if (!function)
        function = reinterpret_cast<LenB>(REALLoadFrameworkMethod("LenB( s as string ) as integer"));
    return function;
}

// Copies the text of `string` to a new block with room for `capacity` bytes and the terminator.
bool copyText(REALstring string, std::uint32_t capacity, std::uint32_t encoding, REALstringData* out) {
    std::uint32_t length = static_cast<std::uint32_t>(lenB()(string));
    if (length > capacity) return false;
    char* text = static_cast<char*>(std::malloc(std::size_t{capacity} + kTerminator));
    if (!text) return false;
    if (length) std::memcpy(text, StringGetCString(string), length);
    std::memset(text + length, 0, kTerminator);
    *out = {text, length, encoding};
    return true;
}

// The bytes of a host string while they are read.
class StringBytes {
  public:
    explicit StringBytes(REALstring source) : string(source) {
        if (rbversion_rbversion < kHidesStringStorage) {
            REALLockString(string);
            locked = true;
            if (string->buffer) view = {string->buffer + 1, string->length, 0};
        } else {
            if (auto measure = PluginGetStringData.resolve() ? nullptr : lenB())
                view.length = static_cast<std::uint32_t>(measure(string));
            fetched = REALGetStringData(string, kREALTextEncodingUnknown, &view);
            if (!fetched) view = {};
        }
    }
    ~StringBytes() {
        if (locked) REALUnlockString(string);
        if (fetched) bridge::disposeStringData(view);
    }
    StringBytes(const StringBytes&) = delete;
    StringBytes& operator=(const StringBytes&) = delete;

    const char* text() const { return static_cast<const char*>(view.data); }
    std::uint32_t length() const { return view.length; }

  private:
    REALstring string;
    REALstringData view = {};
    bool locked = false;
    bool fetched = false;
};

REALstring buildUTF8(const char* text) {
    if (!*text) return nullptr;
    REALstring result = REALBuildString(text, static_cast<std::int32_t>(std::strlen(text)));
    if (result) REALSetStringEncoding(result, kREALTextEncodingUTF8);
    return result;
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
    if (!string || !StringGetCString.resolve() || !lenB()) return false;

    // The string's own encoding: the caller said how much room to make.
    if (encoding == kREALTextEncodingUnknown) return copyText(string, out->length, encoding, out);

    if (REALGetStringEncoding(string) == encoding)
        return copyText(string, static_cast<std::uint32_t>(lenB()(string)), encoding, out);
    REALstring converted = REALConvertString(string, encoding);
    if (!converted) return false;
    bool copied = copyText(converted, static_cast<std::uint32_t>(lenB()(converted)), encoding, out);
    REALUnlockString(converted);
    return copied;
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

CFStringRef bridge::temporaryString(REALstring string) {
    return (CFStringRef)[(id)RBString2CFString(string) autorelease];
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
    struct HeapBuffer {
        char* bytes;
        ~HeapBuffer() { std::free(bytes); } // also when the conversion raises
    } buffer = {static_cast<char*>(std::calloc(static_cast<std::size_t>(length), kBytesPerUnit))};
    if (!buffer.bytes) return nullptr;
    if (!CFStringGetCString(string, buffer.bytes, length * kBytesPerUnit, kCFStringEncodingUTF8))
        return nullptr;
    return buildUTF8(buffer.bytes);
}

rbData::rbData(REALmemoryBlock source) : block(source) {
    if (!block) return;
    REALLockObject(reinterpret_cast<REALobject>(block));
    std::int32_t measured = REALMemoryBlockGetSize(block);
    void* address = REALMemoryBlockGetPtr(block);
    if (!address) return;
    bytes = address;
    size = measured > 0 ? static_cast<std::uint32_t>(measured) : 0;
}

rbData::~rbData() {
    if (block) REALUnlockObject(reinterpret_cast<REALobject>(block));
}
