// The constants that tell a program where it runs.
#pragma once

#include "syntax/parser.h"

namespace studio {

// By folded name: TargetMacOS, DebugBuild, RBVersion and their like.
const std::map<std::string, Surroundings::Constant>& targetConstants();

} // namespace studio
