// The host's own classes and functions.
#pragma once

#include "runtime/class_table.h"

namespace studio {

// Makes all of them known. std::logic_error when a C function does not have the types of its declaration.
void defineFramework(ClassTable& classes);

} // namespace studio
