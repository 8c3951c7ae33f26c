// A small plugin inside the tests: one class with every kind of row, a subclass, and functions that misbehave
// when they are asked to.
#pragma once

#include <hostapi/abi.h>

// Announces the given record version and registers in that layout.
void testPlugin12(REALResolver resolver);
void testPlugin9(REALResolver resolver);

// What the plugin's hooks saw, in order: "+Counter", "-Counter", ...
#include <string>
extern std::string testPluginLog;
extern REALResolver testPluginResolver;

template <class Service>
Service testService(const char* name) {
    return reinterpret_cast<Service>(testPluginResolver(name));
}
