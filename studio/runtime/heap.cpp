#include "runtime/heap.h"

#include "runtime/objects.h"
#include "syntax/names.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <utility>

namespace studio {

namespace {
constexpr int kPoison = 0xDB;
constexpr std::size_t kGraveyardBytes = 8u << 20;
constexpr std::size_t kGraveyardEntries = 20000;
} // namespace

Heap::~Heap() {
    for (auto& [handle, freed] : graveyard_) std::free(freed.memory);
}

void Heap::beAlive(const void* handle, bool isString, void* memory) {
    try {
        alive_.emplace(handle, isString);
    } catch (const std::bad_alloc&) {
        std::free(memory);
        throw;
    }
}

// ---- strings ---------------------------------------------------------------------------------------------

StringCell* Heap::makeCell(std::string_view bytes, std::uint32_t encoding) {
    // Lengths are signed 32-bit numbers in the language.
    if (bytes.size() > INT32_MAX - sizeof(StringCell) - 3) throw std::bad_alloc();
    auto* cell = static_cast<StringCell*>(std::malloc(sizeof(StringCell) + 1 + bytes.size() + 2));
    if (!cell) throw std::bad_alloc();
    cell->hostReferences = 1;
    cell->pluginReferences = 0;
    cell->encoding = encoding;
    cell->length = std::uint32_t(bytes.size());
    cell->permanent = false;
    cell->buffer = reinterpret_cast<char*>(cell + 1);
    cell->buffer[0] = 0;
    std::memcpy(cell->buffer + 1, bytes.data(), bytes.size());
    std::memset(cell->buffer + 1 + bytes.size(), 0, 2);
    arrangeFace(*cell);
    beAlive(&cell->face, true, cell);
    return cell;
}

REALstring Heap::newString(std::string_view bytes, std::uint32_t encoding) {
    return bytes.empty() ? nullptr : &makeCell(bytes, encoding)->face;
}

REALstring Heap::newPermanentString(std::string_view bytes) {
    if (bytes.empty()) return nullptr;
    StringCell* cell = makeCell(bytes, kREALTextEncodingUTF8);
    cell->permanent = true;
    return &cell->face;
}

void Heap::freePermanent(REALstring string) {
    if (!string) return;
    StringCell::of(string).permanent = false;
    release(string);
}

void Heap::arrangeFace(StringCell& cell) const {
    if (openStrings_) {
        cell.face = {std::uint32_t(cell.hostReferences + cell.pluginReferences), cell.buffer, cell.encoding,
                     cell.length};
    } else {
        // Null where the open layout keeps the buffer, so reading it there faults.
        cell.face = {cell.length, nullptr, cell.encoding ^ 0x5A5A5A5A, 0};
    }
}

void Heap::setEncoding(REALstring string, std::uint32_t encoding) {
    StringCell& cell = StringCell::of(string);
    cell.encoding = encoding;
    arrangeFace(cell);
}

void Heap::freeString(StringCell& cell) {
    bury(
        &cell.face, [&] { return "string \"" + std::string(cell.text().substr(0, 40)) + "\""; }, &cell,
        sizeof(StringCell) + 1 + cell.length + 2);
}

// ---- objects ---------------------------------------------------------------------------------------------

REALobject Heap::allocate(Class& cls, std::int32_t size) {
    auto* object = static_cast<REALobject>(std::calloc(1, std::size_t(size)));
    if (!object) throw std::bad_alloc();
    header(object).cls = &cls;
    header(object).hostReferences = 1;
    beAlive(object, false, object);
    return object;
}

WeakCell* Heap::weakReference(REALobject object) {
    if (!object) return nullptr;
    WeakCell*& cell = header(object).weak;
    if (!cell) cell = new WeakCell{object, 1}; // the object's own reference
    ++cell->references;
    return cell;
}

// An object may hold the last reference to another, and so on: a list of any length must not use up the
// stack.
void Heap::destroy(REALobject object) {
    constexpr int kDeepest = 100;
    ObjectHeader& head = header(object);
    // Its own destructor retained and released it, or it waits already.
    if (head.flags & (ObjectHeader::kDying | ObjectHeader::kWaiting)) return;
    if (destroying_ == kDeepest) {
        head.flags |= ObjectHeader::kWaiting;
        head.nextWaiting = std::exchange(waiting_, object);
        return;
    }
    ++destroying_;
    finalizeAndBury(object);
    while (destroying_ == kDeepest && waiting_) {
        REALobject next = waiting_;
        waiting_ = std::exchange(header(next).nextWaiting, nullptr);
        header(next).flags &= ~ObjectHeader::kWaiting;
        // A plugin may have found and locked it meanwhile.
        if (header(next).hostReferences + header(next).pluginReferences == 0) finalizeAndBury(next);
    }
    --destroying_;
}

void Heap::finalizeAndBury(REALobject object) {
    ObjectHeader& head = header(object);
    head.flags |= ObjectHeader::kDying;
    if (WeakCell* cell = std::exchange(head.weak, nullptr)) {
        cell->object = nullptr;
        release(cell);
    }
    finalizeInstance(object);
    if (head.hostReferences + head.pluginReferences > 0)
        violation(head.cls->name + " was locked by its own destructor, but destroyed all the same");
    const Class& cls = *head.cls; // the header is overwritten
    bury(
        object, [&] { return cls.name; }, object, std::size_t(cls.instanceSize));
}

// ---- burying ---------------------------------------------------------------------------------------------

template <class Describe>
void Heap::bury(const void* handle, Describe describe, void* memory, std::size_t size) {
    alive_.erase(handle);
    try {
        std::string& what = buried_[handle];
        what = describe();
        graveyard_.push_back({handle, {memory, size}});
    } catch (const std::bad_alloc&) { // late uses of this one go unseen
        buried_.erase(handle);
        std::free(memory);
        return;
    }
    std::memset(memory, kPoison, size);
    graveyardBytes_ += size;
    while (graveyardBytes_ > kGraveyardBytes || graveyard_.size() > kGraveyardEntries) {
        auto [oldest, freed] = graveyard_.front();
        graveyard_.pop_front();
        graveyardBytes_ -= freed.size;
        buried_.erase(oldest);
        std::free(freed.memory);
    }
}

std::string Heap::describeDead(const void* handle) const {
    auto found = buried_.find(handle);
    if (found != buried_.end()) return found->second + " that was already freed";
    char text[64];
    std::snprintf(text, sizeof text, "%p, which is not a handle of this host", handle);
    return text;
}

// ---- the plugins' account --------------------------------------------------------------------------------

void Heap::violation(std::string message) {
    if (!calls_.empty()) message += " (in " + std::string(calls_.back()) + ")";
    violations_.push_back(std::move(message));
}

void Heap::remark(std::string message) {
    if (!calls_.empty()) message += " (in " + std::string(calls_.back()) + ")";
    remarks_.push_back(std::move(message));
}

bool Heap::check(REALobject object, std::string_view service) {
    if (!object) return true;
    auto found = alive_.find(object);
    if (found != alive_.end() && !found->second) return true;
    violation(std::string(service) + ": " +
              (found == alive_.end() ? describeDead(object) : "a string where an object is expected"));
    return false;
}

bool Heap::check(REALstring string, std::string_view service) {
    if (!string) return true;
    auto found = alive_.find(string);
    if (found != alive_.end() && found->second) return true;
    violation(std::string(service) + ": " +
              (found == alive_.end() ? describeDead(string) : "an object where a string is expected"));
    return false;
}

bool Heap::pluginLock(REALobject object) {
    if (!object || !check(object, "REALLockObject")) return false;
    ++header(object).pluginReferences;
    return true;
}

bool Heap::pluginLock(REALstring string) {
    if (!string || !check(string, "REALLockString")) return false;
    ++StringCell::of(string).pluginReferences;
    return true;
}

void Heap::pluginUnlock(REALobject object) {
    if (!object || !check(object, "REALUnlockObject")) return;
    ObjectHeader& head = header(object);
    if (head.pluginReferences <= 0) {
        violation("REALUnlockObject: " + head.cls->name + " released, but no plugin holds a reference to it");
        return;
    }
    if (--head.pluginReferences + head.hostReferences == 0) destroy(object);
}

void Heap::pluginUnlock(REALstring string) {
    if (!string || !check(string, "REALUnlockString")) return;
    StringCell& cell = StringCell::of(string);
    if (cell.pluginReferences <= 0) {
        violation("REALUnlockString: string \"" + std::string(cell.text().substr(0, 40)) +
                  "\" released, but no plugin holds a reference to it");
        return;
    }
    if (--cell.pluginReferences + cell.hostReferences == 0) freeString(cell);
}

REALobject Heap::handOut(REALobject object) {
    if (object) {
        --header(object).hostReferences;
        ++header(object).pluginReferences;
    }
    return object;
}

REALstring Heap::handOut(REALstring string) {
    if (string) {
        --StringCell::of(string).hostReferences;
        ++StringCell::of(string).pluginReferences;
    }
    return string;
}

REALobject Heap::takeOver(REALobject object) {
    if (!object) return nullptr;
    if (!check(object, "result")) return nullptr;
    ObjectHeader& head = header(object);
    if (head.pluginReferences > 0)
        --head.pluginReferences;
    else
        violation("result: " + head.cls->name +
                  " was returned without the reference that its receiver releases");
    ++head.hostReferences;
    return object;
}

REALstring Heap::takeOver(REALstring string) {
    if (!string) return nullptr;
    if (!check(string, "result")) return nullptr;
    StringCell& cell = StringCell::of(string);
    if (cell.pluginReferences > 0)
        --cell.pluginReferences;
    else
        violation("result: string \"" + std::string(cell.text().substr(0, 40)) +
                  "\" was returned without the reference that its receiver releases");
    ++cell.hostReferences;
    return string;
}

// ---- reports ---------------------------------------------------------------------------------------------

namespace {

// A platform that counts its live objects exports this symbol.
std::vector<std::pair<std::string, int>> platformObjects() {
    using Counter = int (*)(const char** names, int* counts, int capacity);
    std::vector<std::pair<std::string, int>> result;
    if (auto counter = reinterpret_cast<Counter>(dlsym(RTLD_DEFAULT, "PlatformLiveObjects"))) {
        const char* names[64];
        int counts[64];
        int filled = counter(names, counts, 64);
        for (int i = 0; i < std::min(filled, 64); ++i)
            if (counts[i] != 0) result.emplace_back(names[i], counts[i]);
    }
    return result;
}

} // namespace

Report Heap::report() const {
    std::map<std::string, Leak> leaks;
    auto add = [&](const std::string& name, int host, int plugin) {
        Leak& leak = leaks[name];
        leak.className = name;
        ++leak.count;
        leak.hostReferences += host;
        leak.pluginReferences += plugin;
    };
    for (auto [handle, isString] : alive_) {
        if (isString) {
            const StringCell& cell = StringCell::of(REALstring(handle));
            if (!cell.permanent || cell.pluginReferences > 0)
                add("String", cell.hostReferences - cell.permanent, cell.pluginReferences);
        } else {
            const ObjectHeader& head = header(REALobject(handle));
            bool permanent = head.flags & ObjectHeader::kPermanent;
            if (head.hostReferences + head.pluginReferences > permanent || !permanent)
                add(head.cls->name, head.hostReferences - permanent, head.pluginReferences);
        }
    }
    for (std::size_t i = 0; i < lent_.size(); ++i) add("string data", 0, 1);
    Report result;
    for (auto& [name, leak] : leaks) result.leaks.push_back(leak);
    result.violations = violations_;
    result.remarks = remarks_;
    result.platformObjects = platformObjects();
    return result;
}

int Report::alive(std::string_view className) const {
    for (const Leak& leak : leaks)
        if (sameName(leak.className, className)) return leak.count;
    return 0;
}

std::string Report::faults() const {
    std::string result;
    for (const std::string& violation : violations) result += "misuse: " + violation + "\n";
    for (const Leak& leak : leaks) {
        result += "leaked: " + std::to_string(leak.count) + " " + leak.className +
                  " (references: " + std::to_string(leak.hostReferences) + " host, " +
                  std::to_string(leak.pluginReferences) + " plugin)\n";
    }
    return result;
}

std::string Report::text() const {
    std::string result = faults();
    for (const std::string& remark : remarks) result += "remark: " + remark + "\n";
    return result;
}

} // namespace studio
