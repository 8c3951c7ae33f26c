// Errors in a program's text, and where they are.
#pragma once

#include <stdexcept>
#include <string>

namespace studio {

struct Position {
    int line = 1;
    int column = 1;
    int file = 0; // of the program's files; 0 is the one that was started
};

class SourceError : public std::runtime_error {
  public:
    SourceError(Position position, const std::string& message)
        : std::runtime_error(message), position(position) {}
    Position position;
    bool unknownName = false; // one mistake, however often the name is used
    bool consequence = false; // of another mistake
};

} // namespace studio
