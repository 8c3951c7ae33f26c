// File references: small numbers into a table of paths, because 80 bytes cannot hold a path.
#include <cf/filereference.h>

#include <cstring>
#include <deque>
#include <mutex>
#include <string>
#include <unordered_map>

namespace cf {

namespace {

constexpr UInt32 signature = 0x46535265;

struct Table {
    std::mutex mutex;
    std::deque<std::string> paths; // a deque, so that the strings stay where they are
    std::unordered_map<std::string, UInt32> index;
};

Table& table() {
    static Table* instance = new Table; // never destroyed: references are valid for the life of the process
    return *instance;
}

struct Contents {
    UInt32 signature;
    UInt32 number;
};

} // namespace

UInt32 numberOfPath(const char* path) {
    std::string clean = path;
    while (clean.size() > 1 && clean.back() == '/') clean.pop_back();
    Table& known = table();
    std::lock_guard lock(known.mutex);
    auto [found, added] = known.index.try_emplace(clean, static_cast<UInt32>(known.paths.size()));
    if (added) known.paths.push_back(clean);
    return found->second;
}

const char* pathOfNumber(UInt32 number) {
    Table& known = table();
    std::lock_guard lock(known.mutex);
    return number < known.paths.size() ? known.paths[number].c_str() : nullptr;
}

void makeFileReference(const char* path, FSRef* ref) {
    Contents contents = {signature, numberOfPath(path)};
    void* bytes = ref;
    std::memset(bytes, 0, fileReferenceSize);
    std::memcpy(bytes, &contents, sizeof contents);
}

const char* pathOfFileReference(const FSRef* ref) {
    if (!ref) return nullptr;
    Contents contents;
    std::memcpy(&contents, static_cast<const void*>(ref), sizeof contents);
    return contents.signature == signature ? pathOfNumber(contents.number) : nullptr;
}

} // namespace cf
