// Parses a program, or a single declaration. Every function throws SourceError.
#pragma once

#include "syntax/ast.h"

#include <functional>
#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

namespace studio {

// What a program's text depends on.
struct Surroundings {
    using Constant = std::variant<bool, double>;
    std::map<std::string, Constant> constants; // for `#If`, by folded name
    // The program's files, as Position::file counts them; the first is the one being parsed, and each
    // `#Include` adds one.
    std::vector<std::string> files = {""};
    std::function<std::optional<std::string>(const std::string& path)>
        read; // null when there is no such file
};

ast::Program parseProgram(std::string_view source, Surroundings& surroundings);
ast::Program parseProgram(std::string_view source); // of one file

// "Name(a As Integer = 1, ...) As Type"; "Sub" or "Function" may stand before the name.
ast::Signature parseSignature(std::string_view declaration);
// A constant, "name = value": its name and its value.
std::pair<std::string, ast::ExprPtr> parseConstant(std::string_view declaration);
// "Type" or "Type()".
ast::TypeName parseTypeName(std::string_view text);

} // namespace studio
