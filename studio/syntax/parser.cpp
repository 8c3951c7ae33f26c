#include "syntax/parser.h"

#include "lexer.h"
#include "syntax/names.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace studio {

using namespace ast;

namespace {

// Words that cannot name a variable.
constexpr std::string_view kReserved[] = {
    "and",    "as",    "byref",  "byval",  "case",   "catch",     "const", "continue", "dim", "do",
    "downto", "each",  "else",   "elseif", "end",    "exit",      "false", "finally",  "for", "function",
    "if",     "is",    "isa",    "loop",   "mod",    "new",       "next",  "nil",      "not", "or",
    "raise",  "redim", "return", "select", "static", "step",      "sub",   "then",     "to",  "true",
    "try",    "until", "wend",   "while",  "xor",    "addressof", "class", "module"};

bool isReserved(std::string_view name) {
    for (std::string_view word : kReserved)
        if (sameName(name, word)) return true;
    return false;
}

class Parser {
  public:
    explicit Parser(std::string_view source) : tokens_(tokenize(source)) {}

    Program program() {
        Program result;
        for (skipLines(); !atEnd(); skipLines()) {
            if (atWord("sub") || atWord("function"))
                result.routines.push_back(routine());
            else if (atWord("class") || atWord("module"))
                result.classes.push_back(classDeclaration());
            else
                statementInto(result.statements);
        }
        return result;
    }

    Signature wholeSignature() {
        acceptWord("sub") || acceptWord("function");
        Signature result = signature();
        if (!atEndOfLine()) fail("the end of the declaration");
        return result;
    }

    std::pair<std::string, ExprPtr> wholeConstant() {
        std::string name = expectName("a name");
        if (acceptWord("as")) typeName();
        expectSymbol("=");
        return {name, expression()};
    }

    TypeName wholeTypeName() {
        TypeName result = typeName();
        if (!atEndOfLine()) fail("the end of the type's name");
        return result;
    }

  private:
    // ---- tokens -----------------------------------------------------------------------------------------
    const Token& peek(std::size_t ahead = 0) const {
        return tokens_[std::min(index_ + ahead, tokens_.size() - 1)];
    }
    Position here() const { return peek().position; }
    bool atEnd() const { return peek().kind == TokenKind::End; }
    bool atEndOfLine() const { return atEnd() || peek().kind == TokenKind::EndOfLine; }
    bool atWord(std::string_view word, std::size_t ahead = 0) const {
        return peek(ahead).kind == TokenKind::Name && !peek(ahead).dotBefore &&
               sameName(peek(ahead).text, word);
    }
    bool atSymbol(std::string_view symbol, std::size_t ahead = 0) const {
        return peek(ahead).kind == TokenKind::Symbol && peek(ahead).text == symbol;
    }
    Token take() {
        Token token = peek();
        if (index_ < tokens_.size() - 1) ++index_;
        return token;
    }
    bool acceptWord(std::string_view word) {
        if (!atWord(word)) return false;
        take();
        return true;
    }
    bool acceptSymbol(std::string_view symbol) {
        if (!atSymbol(symbol)) return false;
        take();
        return true;
    }
    // Parsing, compiling and running go as deep as the text is nested, and the stack is finite.
    class Nested {
      public:
        explicit Nested(Parser& parser) : parser_(parser) {
            constexpr int kDeepest = 500;
            if (parser.nesting_ == kDeepest) throw SourceError(parser.here(), "this is nested too deeply");
            ++parser.nesting_;
        }
        ~Nested() { --parser_.nesting_; }
        Nested(const Nested&) = delete;

      private:
        Parser& parser_;
    };
    // Likewise for operators, calls and dots in a row, each of which has all that precede it as its operand.
    ExprPtr over(ExprPtr e) const {
        constexpr int kHighest = 20000;
        if (e->a) e->height = e->a->height + 1;
        if (e->b) e->height = std::max(e->height, e->b->height + 1);
        for (const ExprPtr& argument : e->arguments) e->height = std::max(e->height, argument->height + 1);
        if (e->height > kHighest) throw SourceError(e->position, "this expression is too long");
        return e;
    }

    [[noreturn]] void fail(const std::string& expected) const {
        throw SourceError(here(), "expected " + expected + ", found " + peek().describe());
    }
    void expectSymbol(std::string_view symbol) {
        if (!acceptSymbol(symbol)) fail("'" + std::string(symbol) + "'");
    }
    void expectWord(std::string_view word) {
        if (acceptWord(word)) return;
        std::string spelled(word);
        spelled[0] = char(std::toupper((unsigned char)spelled[0]));
        fail("'" + spelled + "'");
    }
    std::string expectName(const std::string& what) {
        if (peek().kind != TokenKind::Name) fail(what);
        return take().text;
    }
    std::string expectNewName(const std::string& what) {
        if (peek().kind == TokenKind::Name && isReserved(peek().text))
            throw SourceError(here(), "expected " + what + ", but '" + peek().text + "' is a reserved word");
        return expectName(what);
    }
    void expectEndOfLine() {
        if (acceptSymbol(":")) return;
        if (!atEndOfLine()) fail("the end of the line");
        if (!atEnd()) take();
    }
    void skipLines() {
        while (peek().kind == TokenKind::EndOfLine) take();
    }
    bool atEndOf(std::string_view word) const { return atWord("end") && atWord(word, 1); }
    // "End If"; the message gives the line where the block began.
    void expectEndOf(std::string_view word, Position opened) {
        if (!atEndOf(word))
            fail("'End " + std::string(word) + "' for the '" + std::string(word) + "' in line " +
                 std::to_string(opened.line));
        take();
        take();
        expectEndOfLine();
    }

    // ---- declarations -----------------------------------------------------------------------------------
    TypeName typeName() {
        TypeName type;
        type.position = here();
        type.name = expectName("a type");
        while (acceptSymbol(".")) type.name += "." + expectName("a type");
        if (atSymbol("(") && atSymbol(")", 1)) {
            take();
            take();
            type.array = true;
        }
        return type;
    }

    Parameter parameter() {
        Parameter result;
        for (bool more = true; more;) {
            if (atWord("as", 1) || (atSymbol("(", 1) && atSymbol(")", 2)))
                break; // the word is the parameter's name
            if (acceptWord("byref"))
                result.byRef = true;
            else if (acceptWord("byval")) {
            } else if (acceptWord("optional"))
                result.optional = true;
            else if (acceptWord("assigns"))
                result.assigns = true;
            else if (acceptWord("extends"))
                result.extends = true;
            else if (acceptWord("paramarray"))
                result.paramArray = true;
            else
                more = false;
        }
        result.position = here();
        result.name = expectName("a parameter's name");
        bool array = false;
        if (acceptSymbol("(")) {
            expectSymbol(")");
            array = true;
        }
        expectWord("as");
        result.type = typeName();
        result.type.array |= array;
        if (acceptSymbol("=")) result.defaultValue = expression();
        return result;
    }

    Signature signature() {
        Signature result;
        result.position = here();
        result.name = expectName("a name");
        if (acceptSymbol("(") && !acceptSymbol(")")) {
            do result.parameters.push_back(parameter());
            while (acceptSymbol(","));
            expectSymbol(")");
        }
        if (acceptWord("as")) result.result = typeName();
        return result;
    }

    Routine routine() {
        Routine result;
        Position opened = here();
        result.shared = acceptWord("shared");
        std::string word = atWord("sub") ? "Sub" : "Function";
        take();
        result.signature = signature();
        if (word == "Function" && !result.signature.result) fail("'As' and the function's type");
        if (word == "Sub" && result.signature.result)
            throw SourceError(result.signature.result->position, "a Sub has no result; write Function");
        expectEndOfLine();
        result.body = block();
        expectEndOf(word, opened);
        return result;
    }

    ClassDeclaration classDeclaration() {
        ClassDeclaration result;
        result.module = atWord("module");
        std::string word = result.module ? "Module" : "Class";
        take();
        result.position = here();
        result.name = expectNewName("a name for the class");
        expectEndOfLine();
        skipLines();
        if (acceptWord("inherits")) {
            result.superclass = typeName();
            expectEndOfLine();
        }
        for (skipLines(); !atEndOf(word); skipLines()) {
            if (atEnd()) expectEndOf(word, result.position);
            acceptWord("public") || acceptWord("private") || acceptWord("protected");
            bool shared = atWord("shared") && (atWord("sub", 1) || atWord("function", 1));
            if (shared || atWord("sub") || atWord("function")) {
                result.methods.push_back(routine());
                if (result.module) result.methods.back().shared = true;
            } else if (acceptWord("const")) {
                result.constants.push_back(constant());
                expectEndOfLine();
            } else {
                acceptWord("dim") || acceptWord("property");
                for (Variable& variable : variables()) result.properties.push_back(std::move(variable));
                expectEndOfLine();
            }
        }
        expectEndOf(word, result.position);
        return result;
    }

    Variable constant() {
        Variable result;
        result.position = here();
        result.name = expectNewName("a name for the constant");
        if (acceptWord("as")) result.type = typeName();
        expectSymbol("=");
        result.initial = expression();
        return result;
    }

    // "a, b As Integer = 1, c(3) As String, d As New C(x)"
    std::vector<Variable> variables() {
        std::vector<Variable> result;
        do {
            std::size_t first = result.size();
            do {
                Variable variable;
                variable.position = here();
                variable.name = expectNewName("a name for the variable");
                if (acceptSymbol("(")) {
                    variable.type.array = true;
                    if (!atSymbol(")")) variable.bound = expression();
                    expectSymbol(")");
                }
                result.push_back(std::move(variable));
            } while (!atWord("as") && acceptSymbol(","));
            expectWord("as");
            bool isNew = atWord("new");
            Position newPosition = here();
            if (isNew) take();
            TypeName type = typeName();
            for (std::size_t i = first; i < result.size(); ++i) {
                bool array = result[i].type.array || type.array;
                result[i].type = type;
                result[i].type.array = array;
            }
            if (isNew) {
                if (result.size() - first > 1) throw SourceError(newPosition, "'As New' takes one variable");
                auto created = make(ExprKind::New, newPosition);
                created->type = type;
                if (atSymbol("(")) created->arguments = argumentList();
                result.back().initial = std::move(created);
            } else if (acceptSymbol("=")) {
                if (result.size() - first > 1)
                    throw SourceError(here(), "only one variable can take an initial value");
                result.back().initial = expression();
            }
        } while (acceptSymbol(","));
        return result;
    }

    // ---- statements -------------------------------------------------------------------------------------
    StatementPtr make(StatementKind kind) {
        auto result = std::make_unique<Statement>();
        result->kind = kind;
        result->position = here();
        return result;
    }

    bool atBlockEnd() const {
        for (std::string_view word :
             {"end", "else", "elseif", "case", "next", "wend", "loop", "catch", "finally"})
            if (atWord(word)) return true;
        return atEnd();
    }

    Block block() {
        Block result;
        for (skipLines(); !atBlockEnd(); skipLines()) statementInto(result);
        return result;
    }

    void statementInto(Block& block) {
        StatementPtr result = statement();
        block.push_back(std::move(result));
    }

    StatementPtr statement() {
        Nested nested(*this);
        if (atWord("if")) return ifStatement();
        if (atWord("for")) return forStatement();
        if (atWord("while")) return whileStatement();
        if (atWord("do")) return doStatement();
        if (atWord("select")) return selectStatement();
        if (atWord("try")) return tryStatement();
        if (atBlockEnd()) throw SourceError(here(), peek().describe() + " does not close any open block");
        StatementPtr result = simpleStatement();
        expectEndOfLine();
        return result;
    }

    // The statements that may stand on one line after Then.
    StatementPtr simpleStatement() {
        if (atWord("dim") || atWord("static")) {
            auto result = make(StatementKind::Dim);
            bool isStatic = sameName(take().text, "static");
            result->variables = variables();
            for (Variable& variable : result->variables) variable.isStatic = isStatic;
            return result;
        }
        if (atWord("const")) {
            auto result = make(StatementKind::Const);
            take();
            result->variables.push_back(constant());
            return result;
        }
        if (atWord("exit") || atWord("continue")) {
            auto result = make(atWord("exit") ? StatementKind::Exit : StatementKind::Continue);
            take();
            for (std::string_view word : {"for", "while", "do", "sub", "function"})
                if (result->text.empty() && acceptWord(word)) result->text = word;
            return result;
        }
        if (atWord("return")) {
            auto result = make(StatementKind::Return);
            take();
            if (!atEndOfLine() && !atWord("else")) result->value = expression();
            return result;
        }
        if (atWord("raise")) {
            auto result = make(StatementKind::Raise);
            take();
            result->value = expression();
            return result;
        }
        if (atWord("redim")) {
            auto result = make(StatementKind::Redim);
            take();
            result->target = postfix();
            if (result->target->kind != ExprKind::Call || result->target->arguments.size() != 1)
                throw SourceError(result->position,
                                  "expected an array and its new upper bound: Redim values(3)");
            return result;
        }
        if (atWord("addhandler")) {
            auto result = make(StatementKind::AddHandler);
            take();
            result->target = postfix();
            if (result->target->kind != ExprKind::Member)
                throw SourceError(result->position,
                                  "expected an event: AddHandler timer.Action, AddressOf Tick");
            expectSymbol(",");
            result->value = expression();
            return result;
        }
        return assignmentOrCall();
    }

    StatementPtr assignmentOrCall() {
        auto result = make(StatementKind::Call);
        acceptWord("call");
        std::size_t begin = index_;
        if (peek().kind != TokenKind::Name) fail("a statement");
        ExprPtr target = postfix();
        if (acceptSymbol("=")) {
            result->kind = StatementKind::Assign;
            result->target = std::move(target);
            result->value = expression();
            return result;
        }
        if (!atEndOfLine() && !atSymbol(":") && !atWord("else")) {
            // `Name arguments` without parentheses: start again and stop before them.
            index_ = begin;
            target = postfix(true);
            auto call = make(ExprKind::Call, target->position);
            call->a = std::move(target);
            do call->arguments.push_back(expression());
            while (acceptSymbol(","));
            target = std::move(call);
        }
        result->value = std::move(target);
        return result;
    }

    StatementPtr ifStatement() {
        auto result = make(StatementKind::If);
        Position opened = here();
        take();
        Branch branch;
        branch.position = opened;
        branch.condition = expression();
        expectWord("then");
        if (!atEndOfLine()) {
            branch.body.push_back(simpleStatement());
            result->branches.push_back(std::move(branch));
            if (acceptWord("else")) {
                Branch otherwise;
                otherwise.body.push_back(simpleStatement());
                result->branches.push_back(std::move(otherwise));
            }
            expectEndOfLine();
            return result;
        }
        branch.body = block();
        result->branches.push_back(std::move(branch));
        while (atWord("elseif") || atWord("else")) {
            Branch next;
            next.position = here();
            bool conditional = sameName(take().text, "elseif");
            if (!conditional && acceptWord("if")) conditional = true;
            if (conditional) {
                next.condition = expression();
                expectWord("then");
            }
            expectEndOfLine();
            next.body = block();
            result->branches.push_back(std::move(next));
            if (!conditional) break;
        }
        expectEndOf("If", opened);
        return result;
    }

    StatementPtr forStatement() {
        auto result = make(StatementKind::For);
        Position opened = here();
        take();
        bool each = acceptWord("each");
        if (each) result->kind = StatementKind::ForEach;
        Variable variable;
        variable.position = here();
        variable.name = expectNewName("the loop's variable");
        if (acceptWord("as")) variable.type = typeName();
        result->variables.push_back(std::move(variable));
        if (each) {
            expectWord("in");
            result->value = expression();
        } else {
            expectSymbol("=");
            result->target = expression();
            if (!atWord("to") && !atWord("downto")) fail("'To' or 'DownTo'");
            result->text = folded(take().text);
            result->value = expression();
            if (acceptWord("step")) result->step = expression();
        }
        expectEndOfLine();
        result->body = block();
        if (!atWord("next")) fail("'Next' for the 'For' in line " + std::to_string(opened.line));
        take();
        if (peek().kind == TokenKind::Name) {
            if (!sameName(peek().text, result->variables[0].name))
                fail("'" + result->variables[0].name + "'");
            take();
        }
        expectEndOfLine();
        return result;
    }

    StatementPtr whileStatement() {
        auto result = make(StatementKind::While);
        Position opened = here();
        take();
        result->value = expression();
        expectEndOfLine();
        result->body = block();
        if (!acceptWord("wend")) {
            expectEndOf("While", opened);
            return result;
        }
        expectEndOfLine();
        return result;
    }

    StatementPtr doStatement() {
        auto result = make(StatementKind::Do);
        Position opened = here();
        take();
        if (atWord("while") || atWord("until")) {
            result->text = folded(take().text);
            result->value = expression();
        }
        expectEndOfLine();
        result->body = block();
        if (!acceptWord("loop")) fail("'Loop' for the 'Do' in line " + std::to_string(opened.line));
        if (atWord("while") || atWord("until")) {
            result->suffix = folded(take().text);
            result->loopCondition = expression();
        }
        expectEndOfLine();
        return result;
    }

    StatementPtr selectStatement() {
        auto result = make(StatementKind::Select);
        Position opened = here();
        take();
        expectWord("case");
        result->value = expression();
        expectEndOfLine();
        for (skipLines(); atWord("case") || atWord("else"); skipLines()) {
            Branch branch;
            branch.position = here();
            bool otherwise = acceptWord("else");
            if (!otherwise) {
                take();
                otherwise = acceptWord("else");
            }
            if (!otherwise) {
                do branch.tests.push_back(caseTest());
                while (acceptSymbol(","));
            }
            expectEndOfLine();
            branch.body = block();
            result->branches.push_back(std::move(branch));
        }
        expectEndOf("Select", opened);
        return result;
    }

    CaseTest caseTest() {
        CaseTest test;
        test.comparison = "=";
        if (acceptWord("is")) {
            static constexpr std::string_view comparisons[] = {"=", "<>", "<", "<=", ">", ">="};
            bool found = false;
            for (std::string_view comparison : comparisons)
                if (atSymbol(comparison)) found = true;
            if (!found) fail("a comparison after 'Is'");
            test.comparison = take().text;
        }
        test.value = expression();
        if (test.comparison == "=" && acceptWord("to")) {
            test.comparison = "to";
            test.upper = expression();
        }
        return test;
    }

    StatementPtr tryStatement() {
        auto result = make(StatementKind::Try);
        Position opened = here();
        take();
        expectEndOfLine();
        result->body = block();
        while (atWord("catch")) {
            Branch branch;
            branch.position = here();
            take();
            if (!atEndOfLine()) {
                branch.caught.position = here();
                branch.caught.name = expectNewName("a name for the exception");
                if (acceptWord("as")) branch.caught.type = typeName();
            }
            expectEndOfLine();
            branch.body = block();
            result->branches.push_back(std::move(branch));
        }
        if (acceptWord("finally")) {
            expectEndOfLine();
            result->hasFinally = true;
            result->finally = block();
        }
        if (result->branches.empty() && !result->hasFinally) fail("'Catch' or 'Finally'");
        expectEndOf("Try", opened);
        return result;
    }

    // ---- expressions ------------------------------------------------------------------------------------
    ExprPtr make(ExprKind kind, Position position) {
        auto result = std::make_unique<Expr>();
        result->kind = kind;
        result->position = position;
        return result;
    }

    // Operators from loosest to tightest.
    ExprPtr expression() {
        Nested nested(*this);
        return binaryWords({"or", "xor"}, &Parser::conjunction);
    }
    ExprPtr conjunction() { return binaryWords({"and", ""}, &Parser::negation); }
    ExprPtr negation() {
        if (!atWord("not")) return comparison();
        Nested nested(*this);
        auto result = make(ExprKind::Unary, here());
        result->text = folded(take().text);
        result->a = negation();
        return over(std::move(result));
    }
    ExprPtr comparison() {
        ExprPtr left = sum();
        for (;;) {
            Position position = here();
            if (acceptWord("isa")) {
                auto result = make(ExprKind::IsA, position);
                result->a = std::move(left);
                result->type = typeName();
                left = over(std::move(result));
                continue;
            }
            bool found = atWord("is");
            for (std::string_view symbol : {"=", "<>", "<", "<=", ">", ">="}) found |= atSymbol(symbol);
            if (!found) return left;
            left = binary(std::move(left), &Parser::sum);
        }
    }
    ExprPtr sum() {
        ExprPtr left = product();
        while (atSymbol("+") || atSymbol("-")) left = binary(std::move(left), &Parser::product);
        return left;
    }
    ExprPtr product() {
        ExprPtr left = negative();
        while (atSymbol("*") || atSymbol("/") || atSymbol("\\") || atWord("mod"))
            left = binary(std::move(left), &Parser::negative);
        return left;
    }
    ExprPtr negative() {
        if (!atSymbol("-") && !atSymbol("+")) return power();
        Nested nested(*this);
        auto result = make(ExprKind::Unary, here());
        result->text = take().text;
        result->a = negative();
        return over(std::move(result));
    }
    ExprPtr power() {
        ExprPtr left = postfix();
        if (!atSymbol("^")) return left;
        Nested nested(*this);
        return binary(std::move(left), &Parser::negative);
    }

    ExprPtr binary(ExprPtr left, ExprPtr (Parser::*operand)()) {
        auto result = make(ExprKind::Binary, here());
        result->text = folded(take().text);
        result->a = std::move(left);
        result->b = (this->*operand)();
        return over(std::move(result));
    }
    ExprPtr binaryWords(std::array<std::string_view, 2> words, ExprPtr (Parser::*operand)()) {
        ExprPtr left = (this->*operand)();
        while (atWord(words[0]) || (!words[1].empty() && atWord(words[1])))
            left = binary(std::move(left), operand);
        return left;
    }

    std::vector<ExprPtr> argumentList() {
        std::vector<ExprPtr> result;
        expectSymbol("(");
        if (acceptSymbol(")")) return result;
        do result.push_back(expression());
        while (acceptSymbol(","));
        expectSymbol(")");
        return result;
    }

    // `stopAtSpace` stops before a parenthesis after a space: it begins the arguments of a call without
    // parentheses.
    ExprPtr postfix(bool stopAtSpace = false) {
        ExprPtr result = primary();
        for (;;) {
            if (atSymbol("(") && !(stopAtSpace && peek().spaceBefore)) {
                auto call = make(ExprKind::Call, result->position);
                call->arguments = argumentList();
                call->a = std::move(result);
                result = over(std::move(call));
            } else if (acceptSymbol(".")) {
                auto member = make(ExprKind::Member, here());
                member->text = expectName("a name after the dot");
                member->a = std::move(result);
                result = over(std::move(member));
            } else {
                return result;
            }
        }
    }

    ExprPtr primary() {
        Position position = here();
        const Token& token = peek();
        switch (token.kind) {
        case TokenKind::Integer:
        case TokenKind::Color: {
            auto result =
                make(token.kind == TokenKind::Color ? ExprKind::Color : ExprKind::Integer, position);
            result->number = take().number;
            return result;
        }
        case TokenKind::Real: {
            auto result = make(ExprKind::Real, position);
            result->real = take().real;
            return result;
        }
        case TokenKind::String: {
            auto result = make(ExprKind::String, position);
            result->text = take().text;
            return result;
        }
        case TokenKind::Symbol:
            if (acceptSymbol("(")) {
                ExprPtr result = expression();
                expectSymbol(")");
                return result;
            }
            fail("a value");
        case TokenKind::Name:
            break;
        default:
            fail("a value");
        }
        if (acceptWord("true")) return make(ExprKind::True, position);
        if (acceptWord("false")) return make(ExprKind::False, position);
        if (acceptWord("nil")) return make(ExprKind::Nil, position);
        if (acceptWord("self") || acceptWord("me")) return make(ExprKind::Self, position);
        if (atWord("super") && atSymbol(".", 1)) {
            take();
            return make(ExprKind::Super, position);
        }
        if (acceptWord("new")) {
            auto result = make(ExprKind::New, position);
            result->type = typeName();
            if (result->type.array)
                throw SourceError(position, "an array is not made with New; use Dim or Array(...)");
            if (atSymbol("(")) result->arguments = argumentList();
            return over(std::move(result));
        }
        if (acceptWord("addressof")) {
            auto result = make(ExprKind::AddressOf, position);
            result->text = expectName("the name of a Sub");
            return result;
        }
        if (isReserved(token.text)) fail("a value");
        auto result = make(ExprKind::Name, position);
        result->text = take().text;
        return result;
    }

    std::vector<Token> tokens_;
    std::size_t index_ = 0;
    int nesting_ = 0;
};

} // namespace

ast::Program parseProgram(std::string_view source) { return Parser(source).program(); }
ast::Signature parseSignature(std::string_view declaration) { return Parser(declaration).wholeSignature(); }
std::pair<std::string, ast::ExprPtr> parseConstant(std::string_view declaration) {
    return Parser(declaration).wholeConstant();
}
ast::TypeName parseTypeName(std::string_view text) { return Parser(text).wholeTypeName(); }

} // namespace studio
