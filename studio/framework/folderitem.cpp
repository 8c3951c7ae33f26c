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

/// A file or folder, or the place of one that does not exist yet.
///     Dim file As FolderItem = GetFolderItem("fruit.txt")
///     Dim stream As TextOutputStream = TextOutputStream.Create(file)
///     stream.WriteLine("fig")
///     stream.Close
FrameworkClass folderItemClass() {
    FrameworkClass table = classWithData<FolderItem>("FolderItem");
    auto pathText = [](REALobject self) { return makeString(path(self)); };
    table.properties = {
        /// The last part of the path. Setting it renames the file; raises IOException if that fails,
        /// InvalidArgumentException for an empty name or one with a slash.
        ///     Print file.Name
        property(
            "Name", "String", [](REALobject self) { return makeString(files::leaf(path(self))); }, rename),
        /// The name as a person reads it.
        ///     Print file.DisplayName
        property("DisplayName", "String",
                 [](REALobject self) { return makeString(files::leaf(path(self))); }),
        /// Whether it is a symbolic link.
        ///     Print Str(file.Alias)
        property("Alias", "Boolean", [](REALobject self) { return isLink(path(self)); }),
        /// Whether the name does not start with a dot.
        ///     Print Str(file.Visible)
        property("Visible", "Boolean",
                 [](REALobject self) { return !files::leaf(path(self)).starts_with('.'); }),
        /// Whether it exists but cannot be written to.
        ///     Print Str(file.Locked)
        property("Locked", "Boolean",
                 [](REALobject self) {
                     return files::exists(path(self)) && access(path(self).c_str(), W_OK) != 0;
                 }),
        /// Whether it exists and can be read.
        ///     Print Str(file.IsReadable)
        property("IsReadable", "Boolean",
                 [](REALobject self) { return access(path(self).c_str(), R_OK) == 0; }),
        /// Whether it exists and can be written to.
        ///     Print Str(file.IsWriteable)
        property("IsWriteable", "Boolean",
                 [](REALobject self) { return access(path(self).c_str(), W_OK) == 0; }),
        /// The system's number of the error of the last copying, moving or renaming; 0 if that went well.
        ///     Print Str(file.LastErrorCode)
        property("LastErrorCode", "Integer",
                 [](REALobject self) { return dataOf<FolderItem>(self).lastError; }),
        /// When the file's status last changed, as Linux keeps no date of creation; Nil if it does not
        /// exist.
        ///     Print Str(file.CreationDate.Year > 2000)
        property("CreationDate", "Date", [](REALobject self) { return changeDate(self, &stat::st_ctim); }),
        /// When the content last changed; Nil if it does not exist.
        ///     Print Str(file.ModificationDate.Year > 2000)
        property("ModificationDate", "Date",
                 [](REALobject self) { return changeDate(self, &stat::st_mtim); }),
        /// The absolute path.
        ///     Print Str(file.NativePath.Len > 0)
        property("NativePath", "String", pathText),
        /// The absolute path, the same as NativePath.
        ///     Print Str(file.ShellPath = file.NativePath)
        property("ShellPath", "String", pathText),
        /// The absolute path, the same as NativePath.
        ///     Print Str(file.AbsolutePath = file.NativePath)
        property("AbsolutePath", "String", pathText),
        /// The path as a file URL.
        ///     Print file.URLPath.Left(7)
        property("URLPath", "String", [](REALobject self) { return makeString(urlPath(path(self))); }),
        /// Whether there is such a file or folder.
        ///     Print Str(file.Exists)
        property("Exists", "Boolean", [](REALobject self) { return files::exists(path(self)); }),
        /// Whether it is a folder.
        ///     Print Str(file.Directory)
        property("Directory", "Boolean", [](REALobject self) { return files::isDirectory(path(self)); }),
        /// How many files and folders the folder holds; 0 for a file.
        ///     Print Str(file.Parent.Count)
        property("Count", "Integer",
                 [](REALobject self) { return std::int32_t(contents(path(self)).size()); }),
        /// The size of the file in bytes; 0 if it does not exist.
        ///     Print Str(file.Length)
        property("Length", "UInt64",
                 [](REALobject self) {
                     std::error_code error;
                     auto size = fs::file_size(path(self), error);
                     return error ? std::uint64_t(0) : std::uint64_t(size);
                 }),
        /// The folder that it is in; Nil for the root.
        ///     Print Str(file.Parent.Directory)
        property("Parent", "FolderItem",
                 [](REALobject self) -> REALobject {
                     return path(self) == "/" ? nullptr : newFolderItem(files::parent(path(self)));
                 }),
    };
    table.methods = {
        /// Makes an item of a path; a relative one counts from the current folder.
        ///     Dim other As New FolderItem("pears.txt")
        method("Constructor(path As String)",
               [](REALobject self, REALstring text) { path(self) = files::absolute(toUtf8(text)); }),
        /// An item of the folder by its name, whether it exists or not.
        ///     Print file.Parent.Child("pears.txt").Name
        method(
            "Child(name As String) As FolderItem",
            [](REALobject self, REALstring name) { return newFolderItem(child(path(self), toUtf8(name))); }),
        /// An item of the folder by an index from 1, in the order of the names. Raises OutOfBoundsException
        /// if there is none.
        ///     Print Str(file.Parent.Item(1).Exists)
        method("Item(index As Integer) As FolderItem", itemAt),
        /// The same as Item.
        ///     Print Str(file.Parent.TrueItem(1).Exists)
        method("TrueItem(Index as integer) as Folderitem", itemAt),
        /// Deletes a file or an empty folder. Raises IOException if it cannot.
        ///     Dim note As FolderItem = GetTemporaryFolderItem
        ///     TextOutputStream.Create(note).Close
        ///     note.Delete
        method("Delete",
               [](REALobject self) {
                   std::error_code error;
                   if (!fs::remove(path(self), error))
                       raise("IOException", "cannot delete " + path(self) +
                                                (error ? ": " + error.message() : ": it does not exist"));
               }),
        /// Copies a file or folder into a folder, or to a path that does not exist. Raises IOException if
        /// it cannot, NilObjectException without a destination.
        ///     Dim copy As FolderItem = GetTemporaryFolderItem
        ///     file.CopyFileTo(copy)
        ///     copy.Delete
        method("CopyFileTo(destination As FolderItem)", copyTo),
        /// Moves a file or folder into a folder, or to a path; the item then has that path. Raises
        /// IOException if it cannot, NilObjectException without a destination.
        ///     Dim note As FolderItem = GetTemporaryFolderItem
        ///     TextOutputStream.Create(note).Close
        ///     note.MoveFileTo(GetFolderItem("note.txt"))
        ///     note.Delete
        method("MoveFileTo(destination As FolderItem)", moveTo),
        /// Makes a folder, and those that it is in. Raises IOException if it cannot.
        ///     GetFolderItem("baskets").CreateAsFolder
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

/// The folders that a system has for everyone.
FrameworkClass specialFolderClass() {
    FrameworkClass table;
    table.name = "SpecialFolder";
    table.sharedMethods = {
        /// The folder for files that are soon gone.
        ///     Print Str(SpecialFolder.Temporary.Directory)
        method("Temporary As FolderItem", temporaryFolder),
        /// The user's folder, or Nil if HOME does not name one.
        ///     Dim home As FolderItem = SpecialFolder.UserHome
        method("UserHome As FolderItem", [] { return homeFolder(""); }),
        /// The folder Desktop in the user's, or Nil if HOME does not name one.
        ///     Dim desktop As FolderItem = SpecialFolder.Desktop
        method("Desktop As FolderItem", [] { return homeFolder("Desktop"); }),
        /// The folder Documents in the user's, or Nil if HOME does not name one.
        ///     Dim documents As FolderItem = SpecialFolder.Documents
        method("Documents As FolderItem", [] { return homeFolder("Documents"); }),
        /// The folder Pictures in the user's, or Nil if HOME does not name one.
        ///     Dim pictures As FolderItem = SpecialFolder.Pictures
        method("Pictures As FolderItem", [] { return homeFolder("Pictures"); }),
    };
    return table;
}

/// Finding files.
FrameworkFunctions fileFunctions() {
    return {
        /// The item with a path; a relative one counts from the current folder.
        ///     Print GetFolderItem("fruit.txt").Name
        method("GetFolderItem(path As String) As FolderItem",
               [](REALstring text) { return newFolderItem(toUtf8(text)); }),
        /// One of the photographs of the set-up. Raises IOException if there is none with that name.
        ///     Print SamplePhoto("coffee.png").Name
        method("SamplePhoto(name As String) As FolderItem",
               [](REALstring name) {
                   const char* folder = std::getenv("KAZ_PHOTOS");
                   if (!folder || !*folder)
                       raise("IOException", "KAZ_PHOTOS does not name the folder of the sample photos");
                   std::string photo = child(files::absolute(folder), toUtf8(name));
                   if (!files::exists(photo)) raise("IOException", "there is no sample photo " + photo);
                   return newFolderItem(photo);
               }),
        /// The folder for files that are soon gone.
        ///     Print Str(TemporaryFolder.Directory)
        method("TemporaryFolder As FolderItem", temporaryFolder),
        /// A new path in the temporary folder, whose file does not exist yet.
        ///     Print Str(GetTemporaryFolderItem.Exists)
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
