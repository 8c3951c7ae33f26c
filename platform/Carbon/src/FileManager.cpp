// The file manager, on the paths that file references stand for.
#include <Carbon/Files.h>
#include <Carbon/Folders.h>

#include <cf/filereference.h>

#include <algorithm>
#include <cstring>
#include <dlfcn.h>
#include <string>
#include <sys/stat.h>

namespace {

static_assert(sizeof(FSRef) == cf::fileReferenceSize);

constexpr UInt32 kRootNode = 2;

bool exists(const char* path, struct stat& status) { return lstat(path, &status) == 0; }

// The level above all volumes is a reference of zeroes, the parent of "/".
bool isAboveVolumes(const FSRef& ref) {
    FSRef zero = {};
    return std::memcmp(&ref, &zero, sizeof ref) == 0;
}

std::string leafName(const std::string& path) {
    return path == "/" ? path : path.substr(path.rfind('/') + 1);
}

std::string parentPath(const std::string& path) {
    size_t slash = path.rfind('/');
    return slash == 0 ? "/" : path.substr(0, slash);
}

bool unicodeName(const std::string& name, HFSUniStr255* out) {
    CFStringRef text = CFStringCreateWithCString(nullptr, name.c_str(), kCFStringEncodingUTF8);
    if (!text) return false;
    CFIndex length = CFStringGetLength(text);
    if (length <= 255) {
        out->length = static_cast<UInt16>(length);
        CFStringGetCharacters(text, CFRangeMake(0, length), out->unicode);
    }
    CFRelease(text);
    return length <= 255;
}

// A file spec holds a name of at most 63 Mac Roman bytes and the number of the parent's path.
bool fileSpec(const std::string& path, FSSpec* out) {
    std::string name = leafName(path);
    CFStringRef text = CFStringCreateWithCString(nullptr, name.c_str(), kCFStringEncodingUTF8);
    if (!text) return false;
    char roman[64] = {};
    bool fits = CFStringGetCString(text, roman, sizeof roman, kCFStringEncodingMacRoman);
    CFRelease(text);
    if (!fits) return false;

    std::memset(out, 0, sizeof *out);
    out->parID = static_cast<SInt32>(cf::numberOfPath(parentPath(path).c_str()));
    out->name[0] = static_cast<unsigned char>(std::strlen(roman));
    std::memcpy(out->name + 1, roman, out->name[0]);
    return true;
}

} // namespace

OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap which, FSCatalogInfo* info, HFSUniStr255* name,
                       FSSpec* spec, FSRef* parent) {
    if (!ref) return paramErr;
    if (isAboveVolumes(*ref)) return name || spec || which != kFSCatInfoNone ? paramErr : noErr;
    const char* bytes = cf::pathOfFileReference(ref);
    if (!bytes) return paramErr;
    struct stat status;
    if (!exists(bytes, status)) return fnfErr;

    std::string path = bytes;
    if (info && (which & kFSCatInfoNodeID))
        info->nodeID =
            path == "/" ? kRootNode : std::max<UInt32>(static_cast<UInt32>(status.st_ino), kRootNode + 1);
    if (name && !unicodeName(leafName(path), name)) return paramErr;
    if (spec && !fileSpec(path, spec)) return paramErr;
    if (parent) {
        if (path == "/")
            std::memset(parent, 0, sizeof *parent);
        else
            cf::makeFileReference(parentPath(path).c_str(), parent);
    }
    return noErr;
}

OSErr FSpMakeFSRef(const FSSpec* spec, FSRef* ref) {
    if (!spec || !ref) return paramErr;
    const char* folder = cf::pathOfNumber(static_cast<UInt32>(spec->parID));
    if (!folder) return fnfErr;

    CFStringRef text =
        CFStringCreateWithBytes(nullptr, spec->name + 1, spec->name[0], kCFStringEncodingMacRoman, false);
    char name[256];
    bool converted = text && CFStringGetCString(text, name, sizeof name, kCFStringEncodingUTF8);
    if (text) CFRelease(text);
    if (!converted) return paramErr;

    std::string path = std::strcmp(name, "/") == 0 ? name : std::string(folder) + "/" + name;
    struct stat status;
    if (!exists(path.c_str(), status)) return fnfErr;
    cf::makeFileReference(path.c_str(), ref);
    return noErr;
}

OSStatus FSPathMakeRef(const UInt8* path, FSRef* ref, Boolean* isDirectory) {
    const char* bytes = reinterpret_cast<const char*>(path);
    struct stat status;
    if (!bytes || bytes[0] != '/' || !exists(bytes, status)) return fnfErr;
    cf::makeFileReference(bytes, ref);
    if (isDirectory) *isDirectory = S_ISDIR(status.st_mode);
    return noErr;
}

OSStatus FSRefMakePath(const FSRef* ref, UInt8* path, UInt32 size) {
    const char* bytes = cf::pathOfFileReference(ref);
    if (!bytes || std::strlen(bytes) >= size) return paramErr;
    std::memcpy(path, bytes, std::strlen(bytes) + 1);
    return noErr;
}

OSErr FSFindFolder(FSVolumeRefNum, OSType folderType, Boolean, FSRef* ref) {
    if (folderType != kFrameworksFolderType) return fnfErr;
    // The frameworks folder lies beside the folder that this library was loaded from.
    Dl_info self;
    if (!dladdr(reinterpret_cast<void*>(&FSFindFolder), &self)) return fnfErr;
    std::string library = self.dli_fname;
    char* folder = realpath(parentPath(library).c_str(), nullptr);
    if (!folder) return fnfErr;
    std::string frameworks = parentPath(folder) + "/Frameworks";
    free(folder);
    struct stat status;
    if (!exists(frameworks.c_str(), status)) return fnfErr;
    cf::makeFileReference(frameworks.c_str(), ref);
    return noErr;
}
