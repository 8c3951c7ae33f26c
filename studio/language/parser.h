// Tokens to a program, or to one declaration.
#pragma once

#include "language/ast.h"

namespace studio {

ast::Program parseProgram(std::string_view source);

// "Name(a As Integer = 1, ...) As Type", also of functions that are not "Sub" or "Function".
ast::Signature parseSignature(std::string_view declaration);
// "name = value" of a constant: the name and the literal.
std::pair<std::string, ast::ExprPtr> parseConstant(std::string_view declaration);
// "Type" or "Type()".
ast::TypeName parseTypeName(std::string_view text);

} // namespace studio
