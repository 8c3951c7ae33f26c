// Every object and string, alive or recently freed, and who holds it.
//
// A reference belongs to one of two accounts: the host's (the program's variables, arrays, the framework's
// own fields) or the plugins'. Services work on the plugins' account, so a plugin that releases a reference
// it does not hold is caught at that very call, however many references the program still has.
#pragma once

#include "runtime/model.h"
#include "runtime/report.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace studio {

// What weak references to an object share. It outlives the object.
struct WeakCell {
    REALobject object; // null when it is gone
    int references;
};

// The six header words of an object.
struct ObjectHeader {
    Class* cls;
    std::int32_t hostReferences;
    std::int32_t pluginReferences;
    std::uint32_t flags;
    REALobject nextWaiting; // see Heap::destroy
    struct WeakCell* weak;  // of the weak references to this object, if there are any

    static constexpr std::uint32_t kDying = 1;
    static constexpr std::uint32_t kWaiting = 2;   // will be destroyed, see Heap::destroy
    static constexpr std::uint32_t kPermanent = 4; // the host keeps one reference for good
};
static_assert(sizeof(ObjectHeader) == sizeof(REALobjectStruct));

inline ObjectHeader& header(REALobject object) { return *reinterpret_cast<ObjectHeader*>(object); }
inline Class& classOf(REALobject object) { return *header(object).cls; }
inline char* instanceData(REALobject object) {
    return reinterpret_cast<char*>(object) + sizeof(ObjectHeader);
}
template <class T>
T& dataAt(REALobject object, std::int32_t offset) {
    return *reinterpret_cast<T*>(reinterpret_cast<char*>(object) + offset);
}

// A string. Plugins see only `face`: the open layout on hosts before 2013.0, a private one later.
struct StringCell {
    std::int32_t hostReferences;
    std::int32_t pluginReferences;
    std::uint32_t encoding;
    std::uint32_t length;
    bool permanent; // a program's literal: lives as long as the program
    char* buffer;   // one byte, the text, a NUL pair
    REALstringStruct face;

    static StringCell& of(REALstring handle) {
        return *reinterpret_cast<StringCell*>(reinterpret_cast<char*>(handle) - offsetof(StringCell, face));
    }
    std::string_view text() const { return {buffer + 1, length}; }
};

class Heap {
  public:
    explicit Heap(bool openStrings) : openStrings_(openStrings) {}
    ~Heap();

    // ---- strings ----------------------------------------------------------------------------------------
    // One host reference. Null for no bytes: the empty string is null.
    REALstring newString(std::string_view bytes, std::uint32_t encoding);
    REALstring newPermanentString(std::string_view bytes);
    void freePermanent(REALstring string);
    void setEncoding(REALstring string, std::uint32_t encoding);
    static REALstring retain(REALstring string) {
        if (string) ++StringCell::of(string).hostReferences;
        return string;
    }
    void release(REALstring string) {
        if (!string) return;
        StringCell& cell = StringCell::of(string);
        if (--cell.hostReferences + cell.pluginReferences == 0) freeString(cell);
    }

    // ---- objects ----------------------------------------------------------------------------------------
    // Zeroed instance with one host reference; no constructor is called. Throws std::bad_alloc.
    REALobject allocate(Class& cls, std::int32_t size);
    static REALobject retain(REALobject object) {
        if (object) ++header(object).hostReferences;
        return object;
    }
    void release(REALobject object) {
        if (!object) return;
        ObjectHeader& head = header(object);
        if (--head.hostReferences + head.pluginReferences == 0) destroy(object);
    }

    // A weak reference: the cell tells whether the object is still alive.
    static WeakCell* weakReference(REALobject object);
    static void release(WeakCell* cell) {
        if (cell && --cell->references == 0) delete cell;
    }

    // ---- the plugins' account ---------------------------------------------------------------------------
    // Each reports misuse as a violation and then returns false.
    bool check(REALobject object, std::string_view service); // alive; null passes
    bool check(REALstring string, std::string_view service);
    bool pluginLock(REALobject object);
    bool pluginLock(REALstring string);
    void pluginUnlock(REALobject object);
    void pluginUnlock(REALstring string);
    // From the host's account to the plugins', and back when a plugin returns a result.
    REALobject handOut(REALobject object);
    REALstring handOut(REALstring string);
    REALobject takeOver(REALobject object);
    REALstring takeOver(REALstring string);

    // Bytes handed out by "PluginGetStringData" and not disposed of yet.
    void lend(void* bytes) { lent_.insert(bytes); }
    bool takeBack(void* bytes) { return lent_.erase(bytes) > 0; }

    // ---- reports ----------------------------------------------------------------------------------------
    void violation(std::string message);
    void remark(std::string message);
    Report report() const;
    void clearRecords() {
        violations_.clear();
        remarks_.clear();
    }

    std::size_t callDepth() const { return calls_.size(); }

    // Names the plugin call in progress, for messages.
    class CallScope {
      public:
        CallScope(Heap& heap, std::string_view name) : heap_(heap) { heap_.calls_.push_back(name); }
        ~CallScope() { heap_.calls_.pop_back(); }

      private:
        Heap& heap_;
    };

  private:
    struct Freed {
        void* memory;
        std::size_t size;
    };

    void destroy(REALobject object);
    void freeString(StringCell& cell);
    void finalizeAndBury(REALobject object);
    template <class Describe>
    void bury(const void* handle, Describe describe, void* memory, std::size_t size);
    void arrangeFace(StringCell& cell) const;
    StringCell* makeCell(std::string_view bytes, std::uint32_t encoding);
    void beAlive(const void* handle, bool isString, void* memory); // frees the memory when it throws
    std::string describeDead(const void* handle) const;

    bool openStrings_;
    std::unordered_map<const void*, bool> alive_; // handle -> is a string
    // Freed memory is filled with a pattern and not reused for a while, so that late uses are seen.
    std::unordered_map<const void*, std::string> buried_;
    std::deque<std::pair<const void*, Freed>> graveyard_;
    std::size_t graveyardBytes_ = 0;
    std::set<void*> lent_;
    int destroying_ = 0; // the depth of destroy()
    REALobject waiting_ = nullptr;
    std::vector<std::string> violations_, remarks_;
    std::vector<std::string_view> calls_;
};

} // namespace studio
