// Running a program or its tests from beginning to end, with what people get to read.
#pragma once

#include "language/machine.h"

#include <string>
#include <vector>

namespace studio {

// Exit codes of the command.
enum ExitCode { kFine = 0, kFailed = 1, kMistake = 2, kLeaked = 3 };

int runProgram(const std::string& fileName, std::string_view source,
               const std::vector<std::string>& arguments);
// Every Sub whose name begins with Test; the filter is a part of the name, or empty.
int runTests(const std::string& fileName, std::string_view source, const std::string& filter);

} // namespace studio
