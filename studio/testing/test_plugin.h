// A small plugin inside the tests: a class with every kind of row, a subclass, and functions that misbehave
// on request.
#pragma once

#include <hostapi/abi.h>

#include <string>

// Announces the given record version and registers in that layout.
void testPlugin12(REALResolver resolver);
void testPlugin9(REALResolver resolver);

// The hooks that ran, in order: "+Counter", "-Counter", ...
extern std::string testPluginLog;
extern REALResolver testPluginResolver;

template <class Service>
Service testService(const char* name) {
    return reinterpret_cast<Service>(testPluginResolver(name));
}
