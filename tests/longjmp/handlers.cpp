// The product's personality routine, through which the unwinder asks its frames. The linker leads all
// references of the product to this one.
#include "handlers.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>
#include <unwind.h>

namespace {

thread_local longjmps::Handler* innermost = nullptr;

// An exception of GCC's Objective-C run-time.
struct ObjcException {
    _Unwind_Exception base;
    void* value;
};

// Writes a line for each jump, the number of the process, to the file that KAZ_LONGJMPS names.
void tell() {
    const char* path = std::getenv("KAZ_LONGJMPS");
    if (std::FILE* file = path ? std::fopen(path, "a") : nullptr) {
        std::fprintf(file, "%d\n", static_cast<int>(getpid()));
        std::fclose(file);
    }
}

} // namespace

__attribute__((noinline)) void longjmps::Handler::enter() {
    function = _Unwind_FindEnclosingFunction(__builtin_return_address(0));
    outer = innermost;
    innermost = this;
}

void longjmps::Handler::leave() { innermost = outer; }

extern "C" {

_Unwind_Reason_Code __real___gnu_objc_personality_v0(int, _Unwind_Action, _Unwind_Exception_Class,
                                                     _Unwind_Exception*, _Unwind_Context*);
__attribute__((visibility("hidden"))) _Unwind_Reason_Code
__wrap___gnu_objc_personality_v0(int version, _Unwind_Action actions, _Unwind_Exception_Class kind,
                                 _Unwind_Exception* exception, _Unwind_Context* context) {
    _Unwind_Reason_Code answer = __real___gnu_objc_personality_v0(version, actions, kind, exception, context);
    if (!(actions & _UA_SEARCH_PHASE) || answer != _URC_HANDLER_FOUND) return answer;
    longjmps::Handler* handler = innermost;
    if (!handler || handler->function != reinterpret_cast<void*>(_Unwind_GetRegionStart(context)))
        return answer;
    handler->leave();
    handler->thrown = reinterpret_cast<ObjcException*>(exception)->value;
    tell();
    _longjmp(handler->place, 1);
}

} // extern "C"
