// Runs a program or its tests from beginning to end, and prints the outcome.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace studio {

// Exit codes of the command.
enum ExitCode { kFine = 0, kFailed = 1, kMistake = 2, kLeaked = 3 };

int runProgram(const std::string& fileName, std::string_view source,
               const std::vector<std::string>& arguments);

// Selects among the Subs whose names begin with Test. Case does not matter.
struct TestSelection {
    std::string part; // of the name; empty: every one
    std::string only; // the whole name; empty: no such choice
};
int runTests(const std::string& fileName, std::string_view source, const TestSelection& selection);

} // namespace studio
