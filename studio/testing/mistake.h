// A mistake in a program's text and the message that explains it, for tests with one of each kind.
#pragma once

#include "syntax/source_error.h"

#include <ostream>
#include <string>

namespace studio {

struct Mistake {
    const char* name;
    const char* source;
    const char* message; // as explained() gives it
};
inline void PrintTo(const Mistake& mistake, std::ostream* out) { *out << mistake.name; }

// "line:column: message"
inline std::string explained(const SourceError& error) {
    return std::to_string(error.position.line) + ":" + std::to_string(error.position.column) + ": " +
           error.what();
}

} // namespace studio
