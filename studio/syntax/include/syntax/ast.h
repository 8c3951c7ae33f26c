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
    int rank = 0; // of an array: the number of its dimensions
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
    Member,      // a.text
    Call,        // a(arguments)
    Unary,       // text a
    Binary,      // a text b
    IsA,         // a IsA type
    New,         // New type(arguments)
    AddressOf,   // AddressOf a; text is "weak" for WeakAddressOf
    RaiseEvent,  // RaiseEvent text; its arguments are those of the Call around it
    Conditional, // If(arguments)
    Pair,        // a : b
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
    RemoveHandler,
    Label, // text:
    Goto,  // Goto label
};

struct Variable {
    std::string name;
    Position position;
    TypeName type;
    std::vector<ExprPtr> bounds; // Dim a(bound, bound)
    ExprPtr initial;             // also `As New C(...)`, as a New expression
    ExprPtr length;              // As String * length
    bool isStatic = false;
    bool shared = false;
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
    std::string label;  // Exit, Continue: a loop's label or variable; Goto
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

enum class ClassKind {
    Class,
    Module,    // everything is shared
    Interface, // the methods have no bodies
    Structure, // a value of properties
};

struct ClassDeclaration {
    ClassKind kind = ClassKind::Class;
    std::string name;
    Position position;
    TypeName superclass; // empty name: none
    std::vector<TypeName> interfaces;
    std::string outer; // the class or module around it
    std::vector<Variable> properties;
    std::vector<Variable> constants;
    std::vector<Routine> methods;
    std::vector<Signature> events;
};

struct Enumeration {
    std::string name;
    Position position;
    TypeName type; // of its values; empty name: Integer
    std::string outer;
    std::vector<Variable> members;
};

struct Delegate {
    Signature signature;
    std::string outer;
};

struct Program {
    Block statements;
    std::vector<Routine> routines;
    std::vector<ClassDeclaration> classes;
    std::vector<Enumeration> enumerations;
    std::vector<Delegate> delegates;
};

} // namespace studio::ast
