#include <CoreFoundation/FileReference.h>

#include <cstring>
#include <deque>
#include <mutex>
#include <string>
#include <unordered_map>

namespace {

constexpr UInt32 kSignature = 0x46535265;

// References are small numbers into a table of paths, because 80 bytes cannot hold a path.
struct Table {
    std::mutex mutex;
    std::deque<std::string> paths; // a deque: the strings stay where they are
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

void FileReferenceMake(const char* path, FSRef* ref) {
    std::string clean = path;
    while (clean.size() > 1 && clean.back() == '/') clean.pop_back();

    Table& known = table();
    std::lock_guard lock(known.mutex);
    auto [found, added] = known.index.try_emplace(clean, static_cast<UInt32>(known.paths.size()));
    if (added) known.paths.push_back(clean);

    std::memset(ref, 0, sizeof *ref);
    Contents contents = {kSignature, found->second};
    std::memcpy(ref->hidden, &contents, sizeof contents);
}

const char* FileReferencePath(const FSRef* ref) {
    if (!ref) return nullptr;
    Contents contents;
    std::memcpy(&contents, ref->hidden, sizeof contents);
    Table& known = table();
    std::lock_guard lock(known.mutex);
    if (contents.signature != kSignature || contents.number >= known.paths.size()) return nullptr;
    return known.paths[contents.number].c_str();
}
