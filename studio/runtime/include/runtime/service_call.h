// A plugin's call of a service, as the host's log notes it.
#pragma once

#include <string>

namespace studio {

struct ServiceCall {
    std::string service;
    const void* subject = nullptr; // the first argument that is a handle
    std::string text;              // the first that is text: the name of a class or property, a declaration
};

} // namespace studio
