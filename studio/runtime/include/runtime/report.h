// What the heap finds wrong: leaks, misuse and remarks.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace studio {

struct Leak {
    std::string className; // "String" for strings
    int count = 0;
    int hostReferences = 0;   // held by the program or the host
    int pluginReferences = 0; // held by plugins
};

struct Report {
    std::vector<Leak> leaks;             // what is still alive, by class
    std::vector<std::string> violations; // misuse of services, in the order it happened
    std::vector<std::string> remarks;    // harmless, but perhaps not intended
    // Native objects alive, by class, if the platform counts them.
    std::vector<std::pair<std::string, int>> platformObjects;

    bool sound() const { return leaks.empty() && violations.empty(); }
    bool clean() const { return sound() && remarks.empty(); }
    int alive(std::string_view className) const;
    std::string faults() const; // for people; empty when sound
    std::string text() const;   // with the remarks; empty when clean
};

} // namespace studio
