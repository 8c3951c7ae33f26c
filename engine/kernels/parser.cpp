// The parser of the kernel language: recursive descent, one function per rule.
#include "lexer.h"
#include "syntax.h"

#include <algorithm>
#include <optional>

namespace engine::kernels {

std::string nameOf(const Type& type) {
    switch (type.base) {
    case Type::Base::nothing:
        return "void";
    case Type::Base::boolean:
        return "bool";
    case Type::Base::whole:
        return "int";
    case Type::Base::sampler:
        return "sampler";
    case Type::Base::number:
        return type.size == 1 ? "float" : "vec" + std::to_string(type.size);
    }
}

std::string withArticle(const Type& type) { return (type == whole ? "an " : "a ") + nameOf(type); }

namespace {

/// The deepest nesting, which the later steps follow on the stack.
constexpr int mostDepth = 250;

struct TypeName {
    std::string_view name;
    Type type;
};
constexpr TypeName typeNames[]{
    {"void", nothing}, {"bool", boolean}, {"int", whole},       {"float", number},   {"vec2", vec(2)},
    {"vec3", vec(3)},  {"vec4", vec(4)},  {"sampler", sampler}, {"__color", vec(4)}, {"__sample", vec(4)}};

/// Of the shading language that Core Image's descends from, and not part of it.
constexpr std::string_view missingTypes[]{"mat2",  "mat3",  "mat4",  "struct", "ivec2",     "ivec3",
                                          "ivec4", "bvec2", "bvec3", "bvec4",  "sampler1D", "sampler2D"};
constexpr std::string_view missingStatements[]{"break", "continue", "discard", "switch", "goto"};
constexpr std::string_view missingSymbols[]{"%",  "<<",  ">>",  "&",  "|",  "^",
                                            "%=", "<<=", ">>=", "&=", "|=", "^="};

template <class List>
bool isIn(const List& list, std::string_view word) {
    return std::find(std::begin(list), std::end(list), word) != std::end(list);
}

struct Level {
    std::initializer_list<std::string_view> symbols;
};
/// From the loosest to the tightest.
const Level levels[]{{{"||"}},     {{"^^"}},    {{"&&"}}, {{"==", "!="}}, {{"<", ">", "<=", ">="}},
                     {{"+", "-"}}, {{"*", "/"}}};

class Parser {
  public:
    explicit Parser(std::string_view text) : tokens_(tokens(text)) {}

    std::unique_ptr<Unit> unit() {
        auto unit = std::make_unique<Unit>();
        while (token().kind != Token::Kind::end) {
            if (accept(";")) continue;
            if (token().text == "const")
                constants(*unit);
            else
                unit->functions.push_back(function());
        }
        return unit;
    }

  private:
    using Kind = Expression::Kind;

    // ------------------------------------------------------------------------------------------ tokens

    const Token& token(std::size_t ahead = 0) const {
        return tokens_[std::min(at_ + ahead, tokens_.size() - 1)];
    }
    bool is(std::string_view text) const { return token().text == text; }
    bool accept(std::string_view text) {
        if (!is(text)) return false;
        ++at_;
        return true;
    }
    [[noreturn]] void fail(const std::string& expected) const {
        throw Mistake(token().line, "expected " + expected + ", found " + quoted(token()));
    }
    void expect(std::string_view text, const char* where) {
        refuseMissing();
        if (!accept(text)) fail("'" + std::string(text) + "' " + where);
    }
    /// Where an operator could stand.
    void refuseMissing() const {
        if (isIn(missingSymbols, token().text))
            throw Mistake(token().line, "kernels have no operator " + quoted(token()));
        if (is("["))
            throw Mistake(token().line, "kernels have no arrays; a component is written .x, .y, .z or .w");
    }
    std::string name(const char* what) {
        if (token().kind != Token::Kind::name || isKeyword(token().text)) fail(what);
        return std::string(tokens_[at_++].text);
    }
    static bool isKeyword(std::string_view word) {
        constexpr std::string_view keywords[]{"kernel", "const", "if",    "else", "for", "while", "do",
                                              "return", "true",  "false", "in",   "out", "inout", "__table"};
        return isIn(keywords, word) || typeNamed(word) || isIn(missingTypes, word) ||
               isIn(missingStatements, word);
    }
    static const TypeName* typeNamed(std::string_view word) {
        auto found = std::find_if(std::begin(typeNames), std::end(typeNames),
                                  [&](const TypeName& type) { return type.name == word; });
        return found == std::end(typeNames) ? nullptr : found;
    }
    bool atType() const {
        if (isIn(missingTypes, token().text))
            throw Mistake(token().line, "kernels have no type " + quoted(token()));
        return token().kind == Token::Kind::name && typeNamed(token().text);
    }
    Type type(const char* what) {
        if (!atType()) fail(what);
        return typeNamed(tokens_[at_++].text)->type;
    }
    int line() const { return token().line; }

    /// Counts how deep statements and expressions are nested.
    struct Nested {
        explicit Nested(Parser& parser) : parser(parser) {
            if (++parser.depth_ > mostDepth) throw Mistake(parser.line(), "this is nested too deeply");
        }
        ~Nested() { --parser.depth_; }
        Parser& parser;
    };

    // --------------------------------------------------------------------------------------- functions

    std::unique_ptr<Function> function() {
        auto made = std::make_unique<Function>();
        made->line = line();
        made->isKernel = accept("kernel");
        made->result = type(made->isKernel ? "the type of a kernel's result" : "a function");
        made->name = name("the name of a function");
        expect("(", "before the parameters");
        if (is("void") && token(1).text == ")") ++at_;
        if (!accept(")")) {
            do made->parameters.push_back(parameter());
            while (accept(","));
            expect(")", "or ',' after a parameter");
        }
        if (accept(";")) return made;
        if (!is("{")) fail("'{' before the body of " + made->name);
        made->body = block();
        return made;
    }

    FunctionParameter parameter() {
        FunctionParameter made{{}, FunctionParameter::Way::in};
        made.variable.isConst = accept("const");
        if (accept("out"))
            made.way = FunctionParameter::Way::out;
        else if (accept("inout"))
            made.way = FunctionParameter::Way::both;
        else
            accept("in");
        made.isTable = accept("__table");
        made.isColor = is("__color");
        made.isSample = is("__sample");
        made.variable.line = line();
        made.variable.type = type("the type of a parameter");
        if (made.isTable && made.variable.type != sampler)
            throw Mistake(line(), "expected 'sampler' after '__table'");
        if (made.variable.type == nothing) throw Mistake(line(), "a parameter cannot be void");
        // A prototype may leave names out.
        if (!is(",") && !is(")")) made.variable.name = name("the name of a parameter");
        return made;
    }

    void constants(Unit& unit) {
        StatementPtr all = declaration();
        for (Variable& variable : all->variables) {
            if (!variable.value)
                throw Mistake(variable.line, "expected a value for the constant " + variable.name);
            unit.constants.push_back(std::move(variable));
        }
    }

    // -------------------------------------------------------------------------------------- statements

    static StatementPtr made(Statement::Kind kind, int line) {
        return std::make_unique<Statement>(Statement{kind, line});
    }

    StatementPtr block() {
        auto all = made(Statement::Kind::block, line());
        expect("{", "before a block");
        while (!accept("}")) {
            if (token().kind == Token::Kind::end)
                fail("'}' after the block that begins on line " + std::to_string(all->line));
            all->inner.push_back(statement());
        }
        return all;
    }

    StatementPtr statement() {
        Nested nested(*this);
        if (is("{")) return block();
        int first = line();
        if (accept(";")) return made(Statement::Kind::block, first);
        if (isIn(missingStatements, token().text))
            throw Mistake(first, "kernels have no statement " + quoted(token()));
        if (is("if")) return branch();
        if (is("for")) return forLoop();
        if (is("while")) return whileLoop();
        if (is("do")) return doLoop();
        if (accept("return")) {
            auto result = made(Statement::Kind::result, first);
            if (!is(";")) result->expression = expression();
            expect(";", "after the result");
            return result;
        }
        if (atDeclaration()) return declaration();
        return expressionStatement(";", "after a statement");
    }

    /// A type begins a declaration, unless it is called.
    bool atDeclaration() const { return is("const") || (atType() && token(1).text != "("); }

    StatementPtr expressionStatement(std::string_view end, const char* where) {
        auto all = made(Statement::Kind::expression, line());
        all->expression = expression();
        expect(end, where);
        return all;
    }

    StatementPtr declaration() {
        auto all = made(Statement::Kind::declaration, line());
        bool isConst = accept("const");
        Type of = type("a type");
        if (of == nothing || of == sampler)
            throw Mistake(all->line, "a variable cannot be " + withArticle(of));
        do {
            Variable variable{{}, of, line(), isConst};
            variable.name = name("the name of a variable");
            if (accept("=")) variable.value = assignment();
            all->variables.push_back(std::move(variable));
        } while (accept(","));
        expect(";", "or '=' after a variable");
        return all;
    }

    ExpressionPtr condition() {
        expect("(", "before a condition");
        ExpressionPtr made = expression();
        expect(")", "after a condition");
        return made;
    }

    StatementPtr branch() {
        auto all = made(Statement::Kind::branch, line());
        expect("if", "");
        all->expression = condition();
        all->inner.push_back(statement());
        all->inner.push_back(accept("else") ? statement() : nullptr);
        return all;
    }

    StatementPtr forLoop() {
        auto all = made(Statement::Kind::loop, line());
        expect("for", "");
        expect("(", "after 'for'");
        StatementPtr start;
        if (!accept(";"))
            start = atDeclaration() ? declaration() : expressionStatement(";", "after the start of a loop");
        if (!is(";")) all->expression = expression();
        expect(";", "after the condition of a loop");
        if (!is(")")) all->step = expression();
        expect(")", "after the step of a loop");
        all->inner.push_back(std::move(start));
        all->inner.push_back(statement());
        return all;
    }

    StatementPtr whileLoop() {
        auto all = made(Statement::Kind::loop, line());
        expect("while", "");
        all->expression = condition();
        all->inner.push_back(nullptr);
        all->inner.push_back(statement());
        return all;
    }

    StatementPtr doLoop() {
        auto all = made(Statement::Kind::loop, line());
        expect("do", "");
        all->testsLast = true;
        all->inner.push_back(nullptr);
        all->inner.push_back(statement());
        expect("while", "after the body of 'do'");
        all->expression = condition();
        expect(";", "after the condition");
        return all;
    }

    // ------------------------------------------------------------------------------------- expressions

    template <class... Operands>
    ExpressionPtr made(Kind kind, int line, std::string text, Operands... operands) {
        auto all = std::make_unique<Expression>(Expression{kind, line, std::move(text)});
        (all->operands.push_back(std::move(operands)), ...);
        return measured(std::move(all));
    }
    /// Chains such as a + b + c are as deep as they are long.
    static ExpressionPtr measured(ExpressionPtr all) {
        for (const ExpressionPtr& operand : all->operands)
            all->depth = std::max(all->depth, operand->depth + 1);
        if (all->depth > 2 * mostDepth) throw Mistake(all->line, "this expression is too long");
        return all;
    }

    ExpressionPtr expression() {
        ExpressionPtr first = assignment();
        while (is(",")) {
            int at = line();
            accept(",");
            first = made(Kind::sequence, at, ",", std::move(first), assignment());
        }
        return first;
    }

    ExpressionPtr assignment() {
        Nested nested(*this);
        ExpressionPtr target = choice();
        refuseMissing();
        for (std::string_view symbol : {"=", "+=", "-=", "*=", "/="})
            if (is(symbol)) {
                int at = line();
                accept(symbol);
                return made(Kind::assign, at, std::string(symbol), std::move(target), assignment());
            }
        return target;
    }

    ExpressionPtr choice() {
        ExpressionPtr condition = binary(0);
        if (!is("?")) return condition;
        Nested nested(*this);
        int at = line();
        accept("?");
        ExpressionPtr yes = expression();
        expect(":", "between the two values of '?'");
        return made(Kind::choice, at, "?", std::move(condition), std::move(yes), assignment());
    }

    ExpressionPtr binary(std::size_t level) {
        if (level == std::size(levels)) return unary();
        ExpressionPtr left = binary(level + 1);
        for (;;) {
            refuseMissing();
            if (!isIn(levels[level].symbols, token().text)) return left;
            int at = line();
            std::string symbol(tokens_[at_++].text);
            left = made(Kind::binary, at, std::move(symbol), std::move(left), binary(level + 1));
        }
    }

    ExpressionPtr unary() {
        Nested nested(*this);
        int at = line();
        for (std::string_view symbol : {"+", "-", "!"})
            if (accept(symbol)) return made(Kind::unary, at, std::string(symbol), unary());
        for (std::string_view symbol : {"++", "--"})
            if (accept(symbol)) {
                ExpressionPtr all = made(Kind::step, at, std::string(symbol), unary());
                all->value = 1;
                return all;
            }
        return postfix();
    }

    ExpressionPtr postfix() {
        ExpressionPtr inner = primary();
        for (;;) {
            int at = line();
            if (accept(".")) {
                if (token().kind != Token::Kind::name) fail("a component such as x or rgb after '.'");
                inner = made(Kind::swizzle, at, std::string(tokens_[at_++].text), std::move(inner));
            } else if (is("++") || is("--")) {
                inner = made(Kind::step, at, std::string(tokens_[at_++].text), std::move(inner));
            } else {
                refuseMissing();
                return inner;
            }
        }
    }

    ExpressionPtr primary() {
        const Token& first = token();
        if (accept("(")) {
            ExpressionPtr inner = expression();
            expect(")", "to close the bracket");
            return inner;
        }
        if (first.kind == Token::Kind::whole || first.kind == Token::Kind::number) {
            ++at_;
            return literal(first, first.kind == Token::Kind::whole ? whole : number, first.value);
        }
        if (accept("true")) return literal(first, boolean, 1);
        if (accept("false")) return literal(first, boolean, 0);
        if (atType()) {
            ExpressionPtr all = made(Kind::construct, line(), std::string(first.text));
            all->type = type("a type");
            return call(std::move(all));
        }
        if (first.kind != Token::Kind::name || isKeyword(first.text)) fail("a value");
        ++at_;
        if (is("(")) return call(made(Kind::call, first.line, std::string(first.text)));
        return made(Kind::variable, first.line, std::string(first.text));
    }

    ExpressionPtr literal(const Token& from, Type type, double value) {
        ExpressionPtr all = made(Kind::literal, from.line, std::string(from.text));
        all->type = type;
        all->value = value;
        return all;
    }

    ExpressionPtr call(ExpressionPtr all) {
        expect("(", "before the arguments");
        if (accept(")")) return all;
        do all->operands.push_back(assignment());
        while (accept(","));
        expect(")", "or ',' after an argument");
        return measured(std::move(all));
    }

    std::vector<Token> tokens_;
    std::size_t at_ = 0;
    int depth_ = 0;
};

} // namespace

std::unique_ptr<Unit> parse(std::string_view text) { return Parser(text).unit(); }

} // namespace engine::kernels
