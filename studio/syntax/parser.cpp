#include "syntax/parser.h"

#include "lexer.h"
#include "syntax/names.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>

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
    Parser(std::string_view source, Surroundings& surroundings)
        : tokens_(tokenize(source)), surroundings_(surroundings), constants_(surroundings.constants) {}

    Program program() {
        for (skipLines(); !atEnd(); skipLines()) {
            std::size_t begin = index_;
            acceptAccess();
            if (atWord("sub") || atWord("function"))
                program_.routines.push_back(routineByItself());
            else if (!declaration("")) {
                index_ = begin;
                statementInto(program_.statements);
            }
        }
        if (!conditions_.empty())
            fail("'#EndIf' for the '#If' in line " + std::to_string(conditions_.back().line));
        return std::move(program_);
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
    static void refuseReserved(const std::string& name, Position at, const std::string& what) {
        if (isReserved(name))
            throw SourceError(at, "expected " + what + ", but '" + name + "' is a reserved word");
    }
    std::string expectNewName(const std::string& what) {
        if (peek().kind == TokenKind::Name) refuseReserved(peek().text, here(), what);
        return expectName(what);
    }
    void expectEndOfLine() {
        if (acceptSymbol(":")) return;
        if (!atEndOfLine()) fail("the end of the line");
        if (!atEnd()) take();
    }
    // To the next line that has something on it; follows the directives on the way.
    void skipLines() {
        for (;;) {
            while (peek().kind == TokenKind::EndOfLine) take();
            if (!atSymbol("#")) return;
            directive();
        }
    }
    void skipLine() {
        while (!atEndOfLine()) take();
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
        if (atSymbol("(") && (atSymbol(")", 1) || atSymbol(",", 1))) {
            take();
            type.rank = openDimensions();
        }
        return type;
    }

    // "(,)" after its "(": the number of dimensions.
    int openDimensions() {
        int rank = 1;
        while (acceptSymbol(",")) ++rank;
        expectSymbol(")");
        return rank;
    }

    Parameter parameter() {
        Parameter result;
        for (bool more = true; more;) {
            if (atWord("as", 1) || (atSymbol("(", 1) && (atSymbol(")", 2) || atSymbol(",", 2))))
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
        int rank = 0;
        if (acceptSymbol("(")) rank = openDimensions();
        expectWord("as");
        result.type = typeName();
        result.type.rank = std::max(rank, result.type.rank);
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

    // A routine outside of classes is called by its bare name, which a reserved word cannot be.
    Routine routineByItself() {
        if (peek(1).kind == TokenKind::Name)
            refuseReserved(peek(1).text, peek(1).position, "a name for the routine");
        return routine();
    }

    Routine routine() {
        Routine result;
        Position opened = here();
        result.shared = acceptWord("shared");
        std::string word = atWord("sub") ? "Sub" : "Function";
        take();
        result.signature = signature();
        for (const Parameter& p : result.signature.parameters)
            refuseReserved(p.name, p.position, "a name for the parameter");
        if (word == "Function" && !result.signature.result) fail("'As' and the function's type");
        if (word == "Sub" && result.signature.result)
            throw SourceError(result.signature.result->position, "a Sub has no result; write Function");
        expectEndOfLine();
        result.body = block();
        if (atException() || atWord("finally")) result.body = guarded(std::move(result.body));
        expectEndOf(word, opened);
        return result;
    }

    // `Exception e As Type` and `Finally` at the end of a routine guard its whole body.
    bool atException(std::size_t ahead = 0) const {
        return atWord("exception", ahead) &&
               (peek(ahead + 1).kind == TokenKind::Name || peek(ahead + 1).kind == TokenKind::EndOfLine);
    }
    Block guarded(Block body) {
        auto result = make(StatementKind::Try);
        result->body = std::move(body);
        handlersInto(*result, "exception");
        Block whole;
        whole.push_back(std::move(result));
        return whole;
    }

    void acceptAccess() {
        for (std::string_view word : {"public", "private", "protected", "global"})
            if (peek(1).kind == TokenKind::Name && !atWord("as", 1) && acceptWord(word)) return;
    }

    // A class, a module, an interface, a structure, an enumeration or a delegate, if there is one here.
    bool declaration(const std::string& outer) {
        if (peek(1).kind != TokenKind::Name || atWord("as", 1)) return false;
        if (atWord("class"))
            classDeclaration(ClassKind::Class, outer);
        else if (atWord("module"))
            classDeclaration(ClassKind::Module, outer);
        else if (atWord("interface"))
            classDeclaration(ClassKind::Interface, outer);
        else if (atWord("structure"))
            classDeclaration(ClassKind::Structure, outer);
        else if (atWord("enum"))
            enumeration(outer);
        else if (atWord("delegate"))
            delegate(outer);
        else
            return false;
        return true;
    }

    void classDeclaration(ClassKind kind, const std::string& outer) {
        static constexpr const char* words[] = {"Class", "Module", "Interface", "Structure"};
        ClassDeclaration result;
        result.kind = kind;
        result.outer = outer;
        std::string word = words[std::size_t(kind)];
        take();
        result.position = here();
        result.name = expectNewName("a name for the " + folded(word));
        expectEndOfLine();
        skipLines();
        if (acceptWord("inherits")) {
            result.superclass = typeName();
            expectEndOfLine();
            skipLines();
        }
        if (acceptWord("implements")) {
            do result.interfaces.push_back(typeName());
            while (acceptSymbol(","));
            expectEndOfLine();
        }
        for (skipLines(); !atEndOf(word); skipLines()) {
            if (atEnd()) expectEndOf(word, result.position);
            acceptAccess();
            if (kind == ClassKind::Interface)
                interfaceMethod(result);
            else if (kind == ClassKind::Structure)
                propertiesInto(result, false);
            else if (!declaration(result.name))
                member(result);
        }
        expectEndOf(word, result.position);
        program_.classes.push_back(std::move(result));
    }

    void interfaceMethod(ClassDeclaration& result) {
        if (!atWord("sub") && !atWord("function")) fail("'Sub' or 'Function'");
        std::string word = atWord("sub") ? "Sub" : "Function";
        Position opened = here();
        take();
        Routine method;
        method.signature = signature();
        if (word == "Function" && !method.signature.result) fail("'As' and the function's type");
        expectEndOfLine();
        skipLines();
        if (atEndOf(word)) expectEndOf(word, opened); // may be written out
        result.methods.push_back(std::move(method));
    }

    void member(ClassDeclaration& result) {
        bool module = result.kind == ClassKind::Module;
        bool shared = module;
        if (atWord("shared") && !atWord("as", 1)) {
            shared = true;
            if (!atWord("sub", 1) && !atWord("function", 1)) take();
        }
        if (atWord("shared") || atWord("sub") || atWord("function")) {
            result.methods.push_back(routine());
            result.methods.back().shared |= module;
        } else if (acceptWord("const")) {
            result.constants.push_back(constant());
            expectEndOfLine();
        } else if (atWord("event") && peek(1).kind == TokenKind::Name && !atWord("as", 1)) {
            take();
            result.events.push_back(signature());
            expectEndOfLine();
        } else {
            propertiesInto(result, shared);
        }
    }

    void propertiesInto(ClassDeclaration& result, bool shared) {
        bool named = atWord("property") && !atWord("as", 1);
        Position opened = here();
        if (named || (atWord("dim") && !atWord("as", 1))) take();
        std::vector<Variable> properties = variables();
        expectEndOfLine();
        if (named && properties.size() == 1) {
            std::size_t lines = index_;
            skipLines();
            bool computed = (atWord("get") && peek(1).kind == TokenKind::EndOfLine) ||
                            (atWord("set") && (peek(1).kind == TokenKind::EndOfLine || atSymbol("(", 1)));
            if (computed) return accessorsInto(result, properties[0], shared, opened);
            index_ = lines;
        }
        for (Variable& variable : properties) {
            variable.shared = shared;
            result.properties.push_back(std::move(variable));
        }
    }

    // A computed property is a method without parameters and one that takes an assigned value.
    void accessorsInto(ClassDeclaration& result, const Variable& property, bool shared, Position opened) {
        for (skipLines(); !atEndOf("property"); skipLines()) {
            Routine accessor;
            accessor.shared = shared;
            accessor.signature.name = property.name;
            accessor.signature.position = property.position;
            Position begun = here();
            std::string word = atWord("get") ? "Get" : "Set";
            if (!acceptWord("get")) {
                if (!acceptWord("set")) expectEndOf("Property", opened);
                Parameter value;
                value.position = begun;
                value.name = "value";
                value.type = property.type;
                if (acceptSymbol("(")) {
                    value = parameter();
                    expectSymbol(")");
                }
                value.assigns = true;
                accessor.signature.parameters.push_back(std::move(value));
            } else {
                accessor.signature.result = property.type;
            }
            expectEndOfLine();
            accessor.body = block();
            if (atException() || atWord("finally")) accessor.body = guarded(std::move(accessor.body));
            expectEndOf(word, begun);
            result.methods.push_back(std::move(accessor));
        }
        expectEndOf("Property", opened);
    }

    void enumeration(const std::string& outer) {
        Enumeration result;
        result.outer = outer;
        take();
        result.position = here();
        result.name = expectNewName("a name for the enum");
        if (acceptWord("as")) result.type = typeName();
        expectEndOfLine();
        for (skipLines(); !atEndOf("enum"); skipLines()) {
            if (atEnd()) expectEndOf("Enum", result.position);
            Variable member;
            member.position = here();
            member.name = expectName("a name for the enum's value");
            if (acceptSymbol("=")) member.initial = expression();
            if (!acceptSymbol(",")) expectEndOfLine();
            result.members.push_back(std::move(member));
        }
        expectEndOf("Enum", result.position);
        program_.enumerations.push_back(std::move(result));
    }

    void delegate(const std::string& outer) {
        take();
        bool function = atWord("function");
        if (!function && !atWord("sub")) fail("'Sub' or 'Function'");
        take();
        Delegate result{signature(), outer};
        if (function && !result.signature.result) fail("'As' and the function's type");
        expectEndOfLine();
        program_.delegates.push_back(std::move(result));
    }

    Variable constant() {
        Variable result;
        result.position = here();
        result.name = expectNewName("a name for the constant");
        if (acceptWord("as")) result.type = typeName();
        expectSymbol("=");
        result.initial = expression();
        if (std::optional<Surroundings::Constant> value = evaluated(*result.initial))
            constants_.emplace(folded(result.name), *value);
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
                    if (atSymbol(")") || atSymbol(",")) {
                        variable.type.rank = openDimensions();
                    } else {
                        do variable.bounds.push_back(expression());
                        while (acceptSymbol(","));
                        variable.type.rank = int(variable.bounds.size());
                        expectSymbol(")");
                    }
                }
                result.push_back(std::move(variable));
            } while (!atWord("as") && acceptSymbol(","));
            expectWord("as");
            bool isNew = atWord("new");
            Position newPosition = here();
            if (isNew) take();
            TypeName type = typeName();
            for (std::size_t i = first; i < result.size(); ++i) {
                int rank = std::max(result[i].type.rank, type.rank);
                result[i].type = type;
                result[i].type.rank = rank;
            }
            if (isNew) {
                if (result.size() - first > 1) throw SourceError(newPosition, "'As New' takes one variable");
                auto created = make(ExprKind::New, newPosition);
                created->type = type;
                if (atSymbol("(")) created->arguments = argumentList();
                result.back().initial = std::move(created);
            } else if (acceptSymbol("*")) {
                result.back().length = expression();
            } else if (acceptSymbol("=")) {
                if (result.size() - first > 1)
                    throw SourceError(here(), "only one variable can take an initial value");
                result.back().initial = pairOrValue(false);
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
        return atEnd() || atException();
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
        if (peek().kind == TokenKind::Name && atSymbol(":", 1) && peek(2).kind == TokenKind::EndOfLine &&
            !isReserved(peek().text)) {
            auto result = make(StatementKind::Label);
            result->text = take().text;
            take();
            return result;
        }
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
            if (peek().kind == TokenKind::Name && !isReserved(peek().text)) result->label = take().text;
            return result;
        }
        if (atWord("goto") && peek(1).kind == TokenKind::Name) {
            auto result = make(StatementKind::Goto);
            take();
            result->label = take().text;
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
            if (result->target->kind != ExprKind::Call || result->target->arguments.empty())
                throw SourceError(result->position,
                                  "expected an array and its new upper bound: Redim values(3)");
            return result;
        }
        if (atWord("addhandler") || atWord("removehandler")) {
            auto result =
                make(atWord("addhandler") ? StatementKind::AddHandler : StatementKind::RemoveHandler);
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
            result->value = pairOrValue(false);
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
        handlersInto(*result, "catch");
        expectEndOf("Try", opened);
        return result;
    }

    void handlersInto(Statement& result, std::string_view word) {
        while (atWord(word)) {
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
            result.branches.push_back(std::move(branch));
        }
        if (acceptWord("finally")) {
            expectEndOfLine();
            result.hasFinally = true;
            result.finally = block();
        }
        if (result.branches.empty() && !result.hasFinally) fail("'Catch' or 'Finally'");
    }

    // ---- directives -------------------------------------------------------------------------------------
    void directive() {
        Position position = here();
        take();
        std::string written = expectName("a directive after '#'"), word = folded(written);
        if (word == "end" && acceptWord("if")) word = "endif";
        if (word == "if") {
            conditions_.push_back(position);
            if (!directiveCondition()) skipBranch(true);
        } else if (word == "elseif" || word == "else") { // the branch above was taken
            if (conditions_.empty())
                throw SourceError(position, "there is no '#If' above this '#" + written + "'");
            skipLine();
            skipBranch(false);
        } else if (word == "endif") {
            if (conditions_.empty()) throw SourceError(position, "there is no '#If' above this '#EndIf'");
            conditions_.pop_back();
        } else if (word == "pragma") {
            if (acceptWord("error"))
                throw SourceError(position, peek().kind == TokenKind::String ? peek().text : "#Pragma Error");
            skipLine(); // the others tune what a compiler makes
        } else if (word == "include") {
            include();
        } else {
            throw SourceError(position,
                              "expected #If, #ElseIf, #Else, #EndIf, #Include or #Pragma, found '#" +
                                  written + "'");
        }
        if (!atEndOfLine() && !atSymbol("#")) fail("the end of the line");
    }

    bool directiveCondition() {
        ExprPtr condition = expression();
        acceptWord("then");
        std::optional<Surroundings::Constant> value = evaluated(*condition);
        if (value)
            if (const bool* result = std::get_if<bool>(&*value)) return *result;
        if (condition->kind == ExprKind::Name && !value)
            throw SourceError(condition->position,
                              "there is no constant '" + condition->text + "' for '#If'");
        throw SourceError(condition->position, "expected a condition of constants after '#If'");
    }

    // Skips to the '#EndIf' of the innermost '#If', or to a branch that is to be taken.
    void skipBranch(bool mayTake) {
        for (int depth = 0; !atEnd();) {
            while (peek().kind == TokenKind::EndOfLine) take();
            if (!atSymbol("#")) {
                skipLine();
                continue;
            }
            std::string word = folded(peek(1).text);
            if (word == "end" && atWord("if", 2)) word = "endif";
            if (word == "if") ++depth;
            if (word == "endif" && depth-- == 0) return; // skipLines takes it
            if (depth == 0 && mayTake && (word == "else" || word == "elseif")) {
                take();
                take();
                if (word == "else" || directiveCondition()) return;
            }
            skipLine();
        }
    }

    // What an expression of constants amounts to; nothing when a name in it is not a constant.
    std::optional<Surroundings::Constant> evaluated(const Expr& e) const {
        using Constant = Surroundings::Constant;
        auto number = [](const Constant& c) {
            return std::holds_alternative<bool>(c) ? double(std::get<bool>(c)) : std::get<double>(c);
        };
        switch (e.kind) {
        case ExprKind::Integer:
            return Constant(double(e.number));
        case ExprKind::Real:
            return Constant(e.real);
        case ExprKind::True:
        case ExprKind::False:
            return Constant(e.kind == ExprKind::True);
        case ExprKind::Name:
            if (auto found = constants_.find(folded(e.text)); found != constants_.end()) return found->second;
            return std::nullopt;
        case ExprKind::Unary: {
            std::optional<Constant> a = evaluated(*e.a);
            if (!a) return std::nullopt;
            if (e.text == "not") return Constant(number(*a) == 0);
            return Constant(e.text == "-" ? -number(*a) : number(*a));
        }
        case ExprKind::Binary: {
            std::optional<Constant> a = evaluated(*e.a), b = evaluated(*e.b);
            if (!a || !b) return std::nullopt;
            double x = number(*a), y = number(*b);
            if (e.text == "and") return Constant(x != 0 && y != 0);
            if (e.text == "or") return Constant(x != 0 || y != 0);
            if (e.text == "xor") return Constant((x != 0) != (y != 0));
            if (e.text == "=") return Constant(x == y);
            if (e.text == "<>") return Constant(x != y);
            if (e.text == "<") return Constant(x < y);
            if (e.text == "<=") return Constant(x <= y);
            if (e.text == ">") return Constant(x > y);
            if (e.text == ">=") return Constant(x >= y);
            if (e.text == "+") return Constant(x + y);
            if (e.text == "-") return Constant(x - y);
            if (e.text == "*") return Constant(x * y);
            if (e.text == "/" && y != 0) return Constant(x / y);
            return std::nullopt;
        }
        default:
            return std::nullopt;
        }
    }

    // Puts the tokens of a file here, unless the program has the file already.
    void include() {
        Position position = here();
        if (peek().kind != TokenKind::String) fail("the name of a file in quotes after '#Include'");
        std::filesystem::path folder =
            std::filesystem::path(surroundings_.files[std::size_t(position.file)]).parent_path();
        std::string path = (folder / take().text).lexically_normal().string();
        std::vector<std::string>& files = surroundings_.files;
        if (std::find(files.begin(), files.end(), path) != files.end()) return;
        std::optional<std::string> text =
            surroundings_.read ? surroundings_.read(path) : std::optional<std::string>();
        if (!text) throw SourceError(position, "cannot read the file " + path);
        std::vector<Token> added = tokenize(*text, int(files.size()));
        files.push_back(path);
        added.pop_back(); // its end is not the program's
        if (!atEndOfLine()) fail("the end of the line");
        tokens_.insert(tokens_.begin() + std::ptrdiff_t(index_) + 1, std::make_move_iterator(added.begin()),
                       std::make_move_iterator(added.end()));
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
        do result.push_back(pairOrValue(true));
        while (acceptSymbol(","));
        expectSymbol(")");
        return result;
    }

    // "a : b" is a pair. Outside parentheses the colon also separates statements; these begin with a name.
    ExprPtr pairOrValue(bool enclosed) {
        ExprPtr left = expression();
        bool pair =
            atSymbol(":") && (enclosed || (peek(1).kind != TokenKind::Name &&
                                           peek(1).kind != TokenKind::EndOfLine && !atSymbol("#", 1)));
        if (!pair) return left;
        auto result = make(ExprKind::Pair, left->position);
        take();
        result->a = std::move(left);
        result->b = pairOrValue(enclosed);
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
            if (result->type.rank)
                throw SourceError(position, "an array is not made with New; use Dim or Array(...)");
            if (atSymbol("(")) result->arguments = argumentList();
            return over(std::move(result));
        }
        if (atWord("addressof") || atWord("weakaddressof")) {
            auto result = make(ExprKind::AddressOf, position);
            if (sameName(take().text, "weakaddressof")) result->text = "weak";
            if (peek().kind != TokenKind::Name) fail("the name of a Sub or Function");
            result->a = primary();
            while (acceptSymbol(".")) {
                auto member = make(ExprKind::Member, here());
                member->text = expectName("a name after the dot");
                member->a = std::move(result->a);
                result->a = std::move(member);
            }
            return over(std::move(result));
        }
        if (acceptWord("raiseevent")) {
            auto result = make(ExprKind::RaiseEvent, here());
            result->text = expectName("the name of an event");
            return over(std::move(result));
        }
        if (atWord("if") && atSymbol("(", 1)) {
            auto result = make(ExprKind::Conditional, position);
            take();
            result->arguments = argumentList();
            if (result->arguments.size() != 3)
                throw SourceError(position, "If(...) takes a condition and two values");
            return over(std::move(result));
        }
        if (isReserved(token.text)) fail("a value");
        auto result = make(ExprKind::Name, position);
        result->text = take().text;
        return result;
    }

    std::vector<Token> tokens_;
    std::size_t index_ = 0;
    int nesting_ = 0;
    Surroundings& surroundings_;
    std::map<std::string, Surroundings::Constant> constants_; // the program's own as well
    std::vector<Position> conditions_;                        // the open '#If's
    Program program_;
};

} // namespace

ast::Program parseProgram(std::string_view source, Surroundings& surroundings) {
    return Parser(source, surroundings).program();
}
ast::Program parseProgram(std::string_view source) {
    Surroundings none;
    return parseProgram(source, none);
}
ast::Signature parseSignature(std::string_view declaration) {
    Surroundings none;
    return Parser(declaration, none).wholeSignature();
}
std::pair<std::string, ast::ExprPtr> parseConstant(std::string_view declaration) {
    Surroundings none;
    return Parser(declaration, none).wholeConstant();
}
ast::TypeName parseTypeName(std::string_view text) {
    Surroundings none;
    return Parser(text, none).wholeTypeName();
}

} // namespace studio
