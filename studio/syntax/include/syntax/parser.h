// Parses a program, or a single declaration. Every function throws SourceError.
#pragma once

#include "syntax/ast.h"

#include <string_view>
#include <utility>

namespace studio {

ast::Program parseProgram(std::string_view source);

// "Name(a As Integer = 1, ...) As Type"; "Sub" or "Function" may stand before the name.
ast::Signature parseSignature(std::string_view declaration);
// A constant, "name = value": its name and its value.
std::pair<std::string, ast::ExprPtr> parseConstant(std::string_view declaration);
// "Type" or "Type()".
ast::TypeName parseTypeName(std::string_view text);

} // namespace studio
