#include "framework/folderitem.h"

#include "files.h"
#include "runtime/autorelease_pool.h"
#include "runtime/text.h"
#include "table.h"

#include <Carbon/Carbon.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace studio {

namespace {

namespace fs = std::filesystem;

struct FolderItem {
    std::string path;
};

std::string& path(REALobject self) { return dataOf<FolderItem>(self).path; }
std::string child(const std::string& folder, const std::string& name) {
    return folder == "/" ? "/" + name : folder + "/" + name;
}

std::vector<std::string> contents(const std::string& folder) {
    std::vector<std::string> result;
    std::error_code error;
    for (auto& entry : fs::directory_iterator(folder, error)) result.push_back(entry.path().string());
    std::sort(result.begin(), result.end());
    return result;
}

REALobject itemAt(REALobject self, std::int32_t index) { // counts from 1
    std::vector<std::string> all = contents(path(self));
    if (index < 1 || std::size_t(index) > all.size())
        raise("OutOfBoundsException", "the folder has no item " + std::to_string(index));
    return newFolderItem(all[std::size_t(index) - 1]);
}

std::string urlPath(const std::string& path) {
    constexpr std::string_view kPlain = "/-_.~!$&'()*+,;=:@";
    std::string result = "file://";
    for (unsigned char c : path) {
        char escaped[4];
        std::snprintf(escaped, sizeof escaped, "%%%02X", c);
        if (std::isalnum(c) || kPlain.find(char(c)) != std::string_view::npos)
            result += char(c);
        else
            result += escaped;
    }
    return result;
}

} // namespace

const std::string& folderItemPath(REALobject item) { return path(item); }

REALobject newFolderItem(const std::string& itemPath) {
    REALobject result = newInstance("FolderItem");
    path(result) = files::absolute(itemPath);
    return result;
}

// ---- the platform's records ------------------------------------------------------------------------------

namespace {

bool refOfPath(const std::string& itemPath, FSRef* out) {
    return FSPathMakeRef(reinterpret_cast<const UInt8*>(itemPath.c_str()), out, nullptr) == noErr;
}

std::string pathOfRef(const FSRef& ref) {
    UInt8 buffer[4096];
    if (FSRefMakePath(&ref, buffer, sizeof buffer) != noErr) return {};
    return reinterpret_cast<const char*>(buffer);
}

} // namespace

bool fsRefOf(REALobject item, FSRef* out, HFSUniStr255* name) {
    AutoreleasePool pool;
    if (!out) return false;
    if (!name) return refOfPath(path(item), out);
    if (!refOfPath(files::parent(path(item)), out)) return false;
    std::string units = text::fromUtf8(files::leaf(path(item)), kREALTextEncodingUTF16).value_or("");
    if (units.size() / 2 > 255) return false;
    name->length = UInt16(units.size() / 2);
    std::memcpy(name->unicode, units.data(), units.size());
    return true;
}

bool fsSpecOf(REALobject item, FSSpec* out) {
    AutoreleasePool pool;
    FSRef ref;
    return out && refOfPath(path(item), &ref) &&
           FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, nullptr, out, nullptr) == noErr;
}

REALobject folderItemIn(const FSRef* parent, const HFSUniStr255* name) {
    AutoreleasePool pool;
    if (!parent || !name) return nullptr;
    const auto* bytes = reinterpret_cast<const unsigned char*>(parent);
    if (std::all_of(bytes, bytes + sizeof *parent, [](unsigned char b) { return b == 0; }))
        return newFolderItem("/");
    std::string folder = pathOfRef(*parent);
    if (folder.empty()) return nullptr;
    std::string leaf = text::toUtf8({reinterpret_cast<const char*>(name->unicode), name->length * 2u},
                                    kREALTextEncodingUTF16)
                           .value_or("");
    return newFolderItem(child(folder, leaf));
}

REALobject folderItemOf(const FSSpec* record) {
    AutoreleasePool pool;
    FSRef ref;
    if (!record || FSpMakeFSRef(record, &ref) != noErr) return nullptr;
    std::string itemPath = pathOfRef(ref);
    return itemPath.empty() ? nullptr : newFolderItem(itemPath);
}

namespace {

// ---- the class -------------------------------------------------------------------------------------------

FrameworkClass folderItemClass() {
    FrameworkClass table = classWithData<FolderItem>("FolderItem");
    auto pathText = [](REALobject self) { return makeString(path(self)); };
    table.properties = {
        property("Name", "String", [](REALobject self) { return makeString(files::leaf(path(self))); }),
        property("NativePath", "String", pathText),
        property("ShellPath", "String", pathText),
        property("AbsolutePath", "String", pathText),
        property("URLPath", "String", [](REALobject self) { return makeString(urlPath(path(self))); }),
        property("Exists", "Boolean", [](REALobject self) { return files::exists(path(self)); }),
        property("Directory", "Boolean", [](REALobject self) { return files::isDirectory(path(self)); }),
        property("Count", "Integer",
                 [](REALobject self) { return std::int32_t(contents(path(self)).size()); }),
        property("Length", "UInt64",
                 [](REALobject self) {
                     std::error_code error;
                     auto size = fs::file_size(path(self), error);
                     return error ? std::uint64_t(0) : std::uint64_t(size);
                 }),
        property("Parent", "FolderItem",
                 [](REALobject self) -> REALobject {
                     return path(self) == "/" ? nullptr : newFolderItem(files::parent(path(self)));
                 }),
    };
    table.methods = {
        method("Constructor(path As String)",
               [](REALobject self, REALstring text) { path(self) = files::absolute(toUtf8(text)); }),
        method(
            "Child(name As String) As FolderItem",
            [](REALobject self, REALstring name) { return newFolderItem(child(path(self), toUtf8(name))); }),
        method("Item(index As Integer) As FolderItem", itemAt),
        method("TrueItem(Index as integer) as Folderitem", itemAt),
        method("Delete",
               [](REALobject self) {
                   std::error_code error;
                   if (!fs::remove(path(self), error))
                       raise("IOException", "cannot delete " + path(self) +
                                                (error ? ": " + error.message() : ": it does not exist"));
               }),
        method("CreateAsFolder",
               [](REALobject self) {
                   std::error_code error;
                   fs::create_directories(path(self), error);
                   if (error) raise("IOException", "cannot create " + path(self) + ": " + error.message());
               }),
    };
    return table;
}

FrameworkFunctions fileFunctions() {
    return {
        method("GetFolderItem(path As String) As FolderItem",
               [](REALstring text) { return newFolderItem(toUtf8(text)); }),
        method("SamplePhoto(name As String) As FolderItem",
               [](REALstring name) {
                   const char* folder = std::getenv("KAZ_PHOTOS");
                   if (!folder || !*folder)
                       raise("IOException", "KAZ_PHOTOS does not name the folder of the sample photos");
                   std::string photo = child(files::absolute(folder), toUtf8(name));
                   if (!files::exists(photo)) raise("IOException", "there is no sample photo " + photo);
                   return newFolderItem(photo);
               }),
        method("TemporaryFolder As FolderItem",
               [] { return newFolderItem(fs::temp_directory_path().string()); }),
    };
}

const Registrar registrar([] { return FrameworkPart{{folderItemClass()}, fileFunctions()}; });

} // namespace

} // namespace studio
