// The syntax tree: a program as written, before its names and types are resolved.
#pragma once

#include "syntax/source_error.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace studio::ast {

struct TypeName {
    std::string name;
    bool array = false;
    Position position;
};

enum class ExprKind {
    Integer,
    Real,
    String,
    Color,
    True,
    False,
    Nil,
    Name,
    Self,
    Super,
    Member,    // a.text
    Call,      // a(arguments)
    Unary,     // text a
    Binary,    // a text b
    IsA,       // a IsA type
    New,       // New type(arguments)
    AddressOf, // AddressOf text
};

struct Expr;
using ExprPtr = std::unique_ptr<Expr>;

struct Expr {
    ExprKind kind;
    Position position;
    std::string text; // names; operators in lower case
    std::int64_t number = 0;
    double real = 0;
    ExprPtr a, b;
    std::vector<ExprPtr> arguments;
    TypeName type;
    int height = 0; // the longest way down to an expression without operands
};

struct Parameter {
    std::string name;
    TypeName type;
    ExprPtr defaultValue;
    bool byRef = false, optional = false, assigns = false, extends = false, paramArray = false;
    Position position;
};

struct Signature {
    std::string name;
    Position position;
    std::vector<Parameter> parameters;
    std::optional<TypeName> result;
};

struct Statement;
using StatementPtr = std::unique_ptr<Statement>;
using Block = std::vector<StatementPtr>;

enum class StatementKind {
    Dim,
    Const,
    Assign,
    Call,
    If,
    For,
    ForEach,
    While,
    Do,
    Select,
    Exit,
    Continue,
    Return,
    Try,
    Raise,
    Redim,
    AddHandler,
};

struct Variable {
    std::string name;
    Position position;
    TypeName type;
    ExprPtr bound;   // Dim a(bound)
    ExprPtr initial; // also `As New C(...)`, as a New expression
    bool isStatic = false;
};

// A condition of a Case line: a value, a range, or a comparison.
struct CaseTest {
    std::string comparison; // "=", "<", ... or "to"
    ExprPtr value, upper;
};

struct Branch {                  // of If, Select Case and Try
    ExprPtr condition;           // null for Else
    std::vector<CaseTest> tests; // Select
    Variable caught;             // Try
    Block body;
    Position position;
};

struct Statement {
    StatementKind kind;
    Position position;
    // Exit and Continue: "for", "while", "do", ""; For: "to", "downto"; Do: "while", "until".
    std::string text;
    std::string suffix; // Loop: "while", "until"
    std::vector<Variable> variables;
    ExprPtr target, value, step;
    ExprPtr loopCondition; // after Loop
    std::vector<Branch> branches;
    Block body;    // loops, Try
    Block finally; // Try
    bool hasFinally = false;
};

struct Routine {
    Signature signature;
    Block body;
    bool shared = false;
};

struct ClassDeclaration {
    std::string name;
    Position position;
    TypeName superclass; // empty name: none
    bool module = false; // everything is shared
    std::vector<Variable> properties;
    std::vector<Variable> constants;
    std::vector<Routine> methods;
};

struct Program {
    Block statements;
    std::vector<Routine> routines;
    std::vector<ClassDeclaration> classes;
};

} // namespace studio::ast
