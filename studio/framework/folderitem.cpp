#include "framework/folderitem.h"

#include "date.h"
#include "files.h"
#include "runtime/autorelease_pool.h"
#include "runtime/text.h"
#include "table.h"

#include <Carbon/Carbon.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace studio {

namespace {

namespace fs = std::filesystem;

struct FolderItem {
    std::string path;
    std::int32_t lastError = 0; // of the last copy, move or deletion; 0 when it went well
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

bool isLink(const std::string& path) {
    std::error_code error;
    return fs::is_symlink(path, error);
}

// Nil when there is no such file.
REALobject changeDate(REALobject self, timespec stat::*time) {
    struct stat status;
    if (::stat(path(self).c_str(), &status) != 0) return nullptr;
    return newDate((status.*time).tv_sec);
}

void note(REALobject self, const std::error_code& error, const std::string& what) {
    dataOf<FolderItem>(self).lastError = error.value();
    if (error) raise("IOException", "cannot " + what + " " + path(self) + ": " + error.message());
}

// Into the folder, or to that very place.
std::string destination(REALobject self, REALobject to) {
    if (!to) raise("NilObjectException", "the destination is nil");
    return files::isDirectory(path(to)) ? child(path(to), files::leaf(path(self))) : path(to);
}

void copyTo(REALobject self, REALobject to) {
    std::error_code error;
    fs::copy(path(self), destination(self, to), fs::copy_options::recursive, error);
    note(self, error, "copy");
}

void moveTo(REALobject self, REALobject to) {
    std::error_code error;
    std::string target = destination(self, to);
    fs::rename(path(self), target, error);
    if (error == std::errc::cross_device_link) {
        fs::copy(path(self), target, fs::copy_options::recursive, error);
        if (!error) fs::remove_all(path(self), error);
    }
    note(self, error, "move");
    path(self) = target;
}

// Renames the file, if there is one.
void rename(REALobject self, std::uint32_t, REALstring name) {
    std::string to = toUtf8(name);
    if (to.empty() || to.find('/') != std::string::npos)
        raise("InvalidArgumentException", "\"" + to + "\" cannot be the name of a file");
    std::string target = child(files::parent(path(self)), to);
    std::error_code error;
    if (files::exists(target) && target != path(self)) error = std::make_error_code(std::errc::file_exists);
    if (!error && files::exists(path(self))) fs::rename(path(self), target, error);
    note(self, error, "rename");
    path(self) = target;
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
        property(
            "Name", "String", [](REALobject self) { return makeString(files::leaf(path(self))); }, rename),
        property("DisplayName", "String",
                 [](REALobject self) { return makeString(files::leaf(path(self))); }),
        property("Alias", "Boolean", [](REALobject self) { return isLink(path(self)); }),
        property("Visible", "Boolean",
                 [](REALobject self) { return !files::leaf(path(self)).starts_with('.'); }),
        property("Locked", "Boolean",
                 [](REALobject self) {
                     return files::exists(path(self)) && access(path(self).c_str(), W_OK) != 0;
                 }),
        property("IsReadable", "Boolean",
                 [](REALobject self) { return access(path(self).c_str(), R_OK) == 0; }),
        property("IsWriteable", "Boolean",
                 [](REALobject self) { return access(path(self).c_str(), W_OK) == 0; }),
        property("LastErrorCode", "Integer",
                 [](REALobject self) { return dataOf<FolderItem>(self).lastError; }),
        property("CreationDate", "Date", [](REALobject self) { return changeDate(self, &stat::st_ctim); }),
        property("ModificationDate", "Date",
                 [](REALobject self) { return changeDate(self, &stat::st_mtim); }),
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
        method("CopyFileTo(destination As FolderItem)", copyTo),
        method("MoveFileTo(destination As FolderItem)", moveTo),
        method("CreateAsFolder",
               [](REALobject self) {
                   std::error_code error;
                   fs::create_directories(path(self), error);
                   if (error) raise("IOException", "cannot create " + path(self) + ": " + error.message());
               }),
    };
    return table;
}

REALobject temporaryFolder() { return newFolderItem(fs::temp_directory_path().string()); }

// A folder of the user's, by its name in the home folder; "" is the home folder itself.
REALobject homeFolder(const char* name) {
    const char* home = std::getenv("HOME");
    if (!home || !*home) return nullptr;
    return newFolderItem(*name ? child(home, name) : home);
}

FrameworkClass specialFolderClass() {
    FrameworkClass table;
    table.name = "SpecialFolder";
    table.sharedMethods = {
        method("Temporary As FolderItem", temporaryFolder),
        method("UserHome As FolderItem", [] { return homeFolder(""); }),
        method("Desktop As FolderItem", [] { return homeFolder("Desktop"); }),
        method("Documents As FolderItem", [] { return homeFolder("Documents"); }),
        method("Pictures As FolderItem", [] { return homeFolder("Pictures"); }),
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
        method("TemporaryFolder As FolderItem", temporaryFolder),
        method("GetTemporaryFolderItem As FolderItem",
               [] {
                   static int count = 0;
                   std::string name = "studio." + std::to_string(getpid()) + "." + std::to_string(++count);
                   return newFolderItem(child(fs::temp_directory_path().string(), name));
               }),
    };
}

const Registrar registrar([] {
    return FrameworkPart{{folderItemClass(), specialFolderClass()}, fileFunctions()};
});

} // namespace

} // namespace studio
