// The language's exceptions on their way through C++, and Quit.
#pragma once

#include "runtime/value.h"

namespace studio {

// An exception of the language. Never thrown through a plugin's frame.
struct Raised {
    Value exception;
};

// Quit: unwinds the program up to its runner.
struct QuitRequest {
    int code;
};

[[noreturn]] void raise(std::string_view className, std::string_view message);
[[noreturn]] void raise(Value exception);
// After a call that may have left an exception or Quit pending: throws it.
void throwPending();
// For code that a plugin called: leaves the exception pending until the plugin returns. The first one counts.
void leavePending(const Raised& raised);

REALobject makeException(std::string_view className, std::string_view message); // owned
std::string exceptionMessage(REALobject exception);

} // namespace studio
