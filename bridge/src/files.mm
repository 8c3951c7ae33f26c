// Folder items against file URLs.
#include <bridge/files.h>
#include <bridge/owned.h>

#import <Foundation/Foundation.h>

#include <Carbon/Carbon.h>

#include <algorithm>

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
