#include <bridge/containers.h>
#include <bridge/errors.h>
#include <bridge/owned.h>
#include <bridge/strings.h>
#include <bridge/wrapping.h>

#import <AppKit/AppKit.h>
#include <Carbon/Carbon.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

using bridge::Owned;

// The name in the file system's decomposed form; the name itself when no copy can be made. Owned by the
// caller.
CFStringRef copyDecomposed(CFStringRef name) {
    if (CFMutableStringRef copy = CFStringCreateMutableCopy(kCFAllocatorDefault, 0, name)) {
        CFStringNormalize(copy, kCFStringNormalizationFormD);
        return copy;
    }
    return static_cast<CFStringRef>(CFRetain(name));
}

// The parent's URL and the leaf name, for an item that need not exist. Owned by the caller.
CFURLRef copyURLFromParent(const FSRef& parent, const HFSUniStr255& name) {
    Owned<CFURLRef> folder(CFURLCreateFromFSRef(kCFAllocatorDefault, &parent));
    if (!folder || name.length == 0) return folder.release();
    Owned<CFStringRef> leaf(CFStringCreateWithCharacters(kCFAllocatorDefault, name.unicode, name.length));
    if (!leaf) return nullptr;
    Owned<CFStringRef> decomposed(copyDecomposed(leaf.get()));
    return CFURLCreateCopyAppendingPathComponent(kCFAllocatorDefault, folder.get(), decomposed.get(), false);
}

CFURLRef copyFileURL(REALfolderItem item) {
    FSRef ref = {};
    if (REALFSRefFromFolderItem(item, &ref, nullptr))
        if (CFURLRef url = CFURLCreateFromFSRef(kCFAllocatorDefault, &ref)) return url;

    FSRef parent = {};
    HFSUniStr255 name = {};
    if (REALFSRefFromFolderItem(item, &parent, &name))
        if (CFURLRef url = copyURLFromParent(parent, name)) return url;

    FSSpec spec = {};
    if (REALFSSpecFromFolderItem(item, &spec) && FSpMakeFSRef(&spec, &ref) == noErr)
        return CFURLCreateFromFSRef(kCFAllocatorDefault, &ref);
    return nullptr;
}

REALfolderItem folderItemOfExisting(const FSRef& ref) {
    constexpr UInt32 volumeRoot = 2;
    FSRef parent = {};
    FSCatalogInfo info = {};
    if (FSGetCatalogInfo(&ref, kFSCatInfoNodeID, &info, nullptr, nullptr, &parent) == noErr &&
        info.nodeID == volumeRoot)
        parent = {};

    HFSUniStr255 name = {};
    if (FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, &name, nullptr, nullptr) == noErr &&
        FSGetCatalogInfo(&parent, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr) == noErr)
        return REALFolderItemFromParentFSRef(&parent, &name);

    FSSpec spec = {};
    if (FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, nullptr, &spec, nullptr) != noErr) return nullptr;
    return REALFolderItemFromFSSpec(&spec);
}

REALfolderItem folderItemInParent(CFURLRef url) {
    Owned<CFURLRef> folder(CFURLCreateCopyDeletingLastPathComponent(kCFAllocatorDefault, url));
    FSRef parent = {};
    if (!folder || !CFURLGetFSRef(folder.get(), &parent)) return nullptr;
    Owned<CFStringRef> leaf(CFURLCopyLastPathComponent(url));
    if (!leaf) return nullptr;
    Owned<CFStringRef> decomposed(copyDecomposed(leaf.get()));

    HFSUniStr255 name = {};
    name.length = static_cast<UInt16>(std::clamp<CFIndex>(CFStringGetLength(decomposed.get()), 0, 255));
    CFStringGetCharacters(decomposed.get(), CFRangeMake(0, name.length), name.unicode);
    return REALFolderItemFromParentFSRef(&parent, &name);
}

} // namespace

REALobject LastDictionary = nullptr;
void (*LastDictionarySetter)(REALobject, REALobject, REALobject) = nullptr;
REALobject (*LastDictionaryGetter)(REALobject, REALobject) = nullptr;
REALobject (*LastDictionaryKeyGetter)(REALobject, std::int32_t) = nullptr;

void bridge::refreshDictionaryMethods(REALobject dictionary) {
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

void FillStringArray(REALstringArray array, NSArray* strings) {
    if (!array) return;
    std::int32_t index = 0;
    NSEnumerator* enumerator = [strings objectEnumerator];
    while (NSString* element = [enumerator nextObject]) {
        REALstring string = CFString2RBString((CFStringRef)element);
        REALInsertArrayValueString(array, index++, string);
        if (string) REALUnlockString(string);
    }
}

void FillObjectArray(REALarray array, NSArray* elements, REALobject (*convert)(id element)) {
    if (!array) return;
    std::int32_t index = 0;
    NSEnumerator* enumerator = [elements objectEnumerator];
    while (id element = [enumerator nextObject]) {
        REALobject object = convert(element);
        REALInsertArrayValueObject(array, index++, object);
        if (object) REALUnlockObject(object);
    }
}

REALmemoryBlock NSDataRB(NSData* data) {
    const void* bytes = [data bytes];
    NSUInteger length = [data length];
    if (!bytes || length < 1) return nullptr;

    constexpr NSUInteger limit = 0x7FFFFFFF;
    if (length < limit) {
        if (REALmemoryBlock block = REALNewMemoryBlock(static_cast<std::int32_t>(length))) {
            if (void* destination = REALMemoryBlockGetPtr(block)) {
                std::memcpy(destination, bytes, length);
                return block;
            }
            REALUnlockObject(reinterpret_cast<REALobject>(block));
            return nullptr;
        }
    }
    char message[200];
    std::snprintf(message, sizeof message, "Failed to allocate a memoryblock with %lld bytes in size.",
                  static_cast<long long>(length));
    RaiseException(bridge::kOutOfMemory, message);
    return nullptr;
}

NSURL* NewNSURLfile(REALfolderItem item) {
    if (!item) return nil;
    return [(NSURL*)copyFileURL(item) autorelease];
}

REALfolderItem NSURLRBFile(NSURL* url) {
    if (!url) return nullptr;
    CFURLRef platformURL = (CFURLRef)url;
    FSRef ref = {};
    if (CFURLGetFSRef(platformURL, &ref)) return folderItemOfExisting(ref);
    return folderItemInParent(platformURL);
}

NSDate* NewNSDate(REALobject date) {
    if (!date) return nil;
    constexpr const char* names[] = {"Year", "Month", "Day", "Hour", "Minute", "Second"};
    std::int32_t fields[6] = {};
    for (int i = 0; i < 6; ++i)
        if (!REALGetPropValueInt32(date, names[i], &fields[i])) return nil;
    return [NSCalendarDate dateWithYear:fields[0]
                                  month:static_cast<NSUInteger>(fields[1])
                                    day:static_cast<NSUInteger>(fields[2])
                                   hour:static_cast<NSUInteger>(fields[3])
                                 minute:static_cast<NSUInteger>(fields[4])
                                 second:static_cast<NSUInteger>(fields[5])
                               timeZone:[NSTimeZone localTimeZone]];
}

REALobject NewNSImageKaz(NSImage* image) { return bridge::wrapperOf("NSImageKaz", image); }

REALobject NewNSAffineTransformKaz(NSAffineTransform* transform) {
    return bridge::wrapperOf("NSAffineTransformKaz", transform);
}
