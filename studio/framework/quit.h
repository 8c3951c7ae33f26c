// Quit: unwinds the program to whoever runs it.
#pragma once

namespace studio {

struct QuitRequest {
    int code;
};

} // namespace studio
