// The parts of a text in the kernel language, as the parser finds them and the checker completes them.
#pragma once

#include <engine/kernels.h>

namespace engine::kernels {

/// A type: nothing, or `size` booleans, whole numbers or numbers, or an image to read.
struct Type {
    enum class Base { nothing, boolean, whole, number, sampler };
    Base base = Base::nothing;
    int size = 1;

    bool isNumber() const { return base == Base::number; }
    bool isScalar() const { return size == 1 && base != Base::nothing && base != Base::sampler; }
    bool operator==(const Type&) const = default;
};
constexpr Type nothing{}, boolean{Type::Base::boolean}, whole{Type::Base::whole}, number{Type::Base::number},
    sampler{Type::Base::sampler};
constexpr Type vec(int size) { return {Type::Base::number, size}; }
/// As the language names it: vec3.
std::string nameOf(const Type& type);
/// The same with "a" or "an".
std::string withArticle(const Type& type);

struct Function;
struct Builtin;

struct Expression;
using ExpressionPtr = std::unique_ptr<Expression>;

struct Expression {
    enum class Kind {
        literal,   // value
        variable,  // text
        unary,     // text: + - !
        binary,    // text: + - * / < > <= >= == != && || ^^
        choice,    // condition ? a : b
        assign,    // text: = += -= *= /=
        step,      // text: ++ -- ; value is 1 when it stands before its operand
        call,      // text(operands ...)
        construct, // type(operands ...)
        swizzle,   // operand.text
        sequence,  // a, b
    };
    Kind kind;
    int line;
    std::string text = {};
    double value = 0;
    std::vector<ExpressionPtr> operands = {};
    int depth = 1;

    // What the checker finds out.
    Type type = {};
    int slot = -1;                 // of a variable; those of the text itself count from -2 downwards
    std::array<int, 4> lanes = {}; // of a swizzle
    const Function* function = {}; // of a call: one of the text's
    const Builtin* builtin = {};   // or a built-in one
};

struct Variable {
    std::string name;
    Type type;
    int line;
    bool isConst = false;
    ExpressionPtr value = {}; // null: 0
    int slot = -1;
};

struct Statement;
using StatementPtr = std::unique_ptr<Statement>;

struct Statement {
    enum class Kind { block, declaration, expression, branch, loop, result };
    Kind kind;
    int line;
    std::vector<Variable> variables = {}; // of a declaration
    /// Of a branch: its condition. Of a loop: condition (null for none) and step. Of a result: null for none.
    ExpressionPtr expression = {}, step = {};
    bool testsLast = false; // of a loop: do ... while
    /// Of a block: all. Of a branch: both sides, the second one null for none. Of a loop: first the start of
    /// a `for`, null for none, then the body.
    std::vector<StatementPtr> inner = {};
};

struct FunctionParameter {
    enum class Way { in, out, both };
    Variable variable;
    Way way = Way::in;
    bool isColor = false, isSample = false, isTable = false;
};

struct Function {
    std::string name;
    int line;
    Type result;
    bool isKernel = false;
    std::vector<FunctionParameter> parameters;
    StatementPtr body; // null for a prototype
    int slots = 0;
};

/// A whole text.
struct Unit {
    std::vector<Variable> constants;
    std::vector<std::unique_ptr<Function>> functions;
};

/// The parts of a text. Throws Mistake.
std::unique_ptr<Unit> parse(std::string_view text);
/// Finds the types and what every name means. Throws Mistake.
void check(Unit& unit);

} // namespace engine::kernels
