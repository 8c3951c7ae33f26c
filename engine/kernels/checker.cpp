// Types of expressions, meanings of names, and all that a kernel must not do.
#include "specialiser.h"

#include <algorithm>
#include <set>

namespace engine::kernels {

namespace {

using Kind = Expression::Kind;

bool isOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}
bool isNumeric(const Type& type) { return type.base == Type::Base::number || type.base == Type::Base::whole; }
/// Whole numbers become numbers where a number is expected.
bool fits(const Type& given, const Type& wanted) {
    return given == wanted || (given == whole && wanted == number);
}

class Checker {
  public:
    explicit Checker(Unit& unit) : unit_(unit) {}

    void all() {
        scopes_.emplace_back();
        for (Variable& constant : unit_.constants) declareConstant(constant);
        declareFunctions();
        for (auto& function : unit_.functions)
            if (function->body) checkBody(*function);
        bool any = false;
        for (auto& function : unit_.functions) {
            std::vector<const Function*> path;
            refuseRecursion(*function, path);
            any = any || function->isKernel;
        }
        if (!any) throw Mistake(1, "expected a kernel, such as 'kernel vec4 name(sampler image) { ... }'");
    }

  private:
    // ------------------------------------------------------------------------------------------- names

    struct Name {
        int slot;
        Type type;
        bool isConst;
    };

    const Name* find(const std::string& name) const {
        for (auto scope = scopes_.rbegin(); scope != scopes_.rend(); ++scope)
            if (auto found = scope->find(name); found != scope->end()) return &found->second;
        return nullptr;
    }
    void declare(Variable& variable, int slot) {
        variable.slot = slot;
        bool isNew =
            scopes_.back().try_emplace(variable.name, Name{slot, variable.type, variable.isConst}).second;
        if (!isNew) throw Mistake(variable.line, "there is another '" + variable.name + "' already");
    }
    void declareConstant(Variable& constant) {
        expectType(*constant.value, constant.type, "the constant " + constant.name);
        declare(constant, -2 - constants_++);
    }
    void checkVariable(Variable& variable) {
        if (variable.value) expectType(*variable.value, variable.type, "the variable " + variable.name);
        declare(variable, function_->slots++);
    }

    // --------------------------------------------------------------------------------------- functions

    static bool sameParameters(const Function& a, const Function& b) {
        return std::equal(a.parameters.begin(), a.parameters.end(), b.parameters.begin(), b.parameters.end(),
                          [](const auto& p, const auto& q) { return p.variable.type == q.variable.type; });
    }

    void declareFunctions() {
        for (auto& one : unit_.functions) {
            if (one->isKernel) checkKernel(*one);
            if (one->result == sampler) throw Mistake(one->line, "a function cannot return a sampler");
            if (!one->body) {
                bool isDefined =
                    std::any_of(unit_.functions.begin(), unit_.functions.end(), [&](const auto& other) {
                        return other->body && other->name == one->name && sameParameters(*other, *one);
                    });
                if (!isDefined) throw Mistake(one->line, "expected the body of " + one->name);
                continue;
            }
            for (const Function* other : functions_)
                if (other->name == one->name &&
                    (sameParameters(*other, *one) || one->isKernel || other->isKernel))
                    throw Mistake(one->line, "there is another function '" + one->name + "' already");
            functions_.push_back(one.get());
        }
    }

    static void checkKernel(const Function& kernel) {
        const std::string& name = kernel.name;
        bool isWarp = kernel.result == vec(2);
        if (!isWarp && kernel.result != vec(4))
            throw Mistake(kernel.line, "the kernel " + name +
                                           " has to return a vec4, or a vec2 to be a warp, not " +
                                           withArticle(kernel.result));
        if (!kernel.body) throw Mistake(kernel.line, "expected the body of " + name);
        for (const FunctionParameter& p : kernel.parameters) {
            if (p.way != FunctionParameter::Way::in)
                throw Mistake(p.variable.line, "a kernel's parameter cannot be 'out' or 'inout'");
            if (isWarp && (p.variable.type == sampler || p.isSample))
                throw Mistake(
                    p.variable.line,
                    "a warp (a kernel that returns a vec2) reads no image: expected a vec4 as its result");
        }
    }

    void checkBody(Function& function) {
        function_ = &function;
        scopes_.emplace_back();
        for (FunctionParameter& p : function.parameters) {
            if (p.variable.name.empty())
                throw Mistake(p.variable.line, "expected the name of a parameter of " + function.name);
            declare(p.variable, function.slots++);
        }
        for (StatementPtr& inner : function.body->inner) checkStatement(*inner);
        scopes_.pop_back();
        if (function.result != nothing && !returns(*function.body))
            throw Mistake(function.line, function.name +
                                             " can end without a result: expected 'return' with " +
                                             withArticle(function.result) + " at its end");
    }

    /// Whether no way through a statement goes on behind it.
    static bool returns(const Statement& statement) {
        auto inner = [&](std::size_t i) { return statement.inner[i] && returns(*statement.inner[i]); };
        switch (statement.kind) {
        case Statement::Kind::result:
            return true;
        case Statement::Kind::block:
            return std::any_of(statement.inner.begin(), statement.inner.end(),
                               [](const StatementPtr& s) { return returns(*s); });
        case Statement::Kind::branch:
            return inner(0) && inner(1);
        default:
            return false;
        }
    }

    void refuseRecursion(const Function& function, std::vector<const Function*>& path) {
        if (ended_.contains(&function)) return;
        path.push_back(&function);
        for (auto [callee, line] : calls_[&function]) {
            if (std::find(path.begin(), path.end(), callee) != path.end())
                throw Mistake(line, callee->name + " calls itself here, and kernels cannot be recursive");
            refuseRecursion(*callee, path);
        }
        path.pop_back();
        ended_.insert(&function);
    }

    // -------------------------------------------------------------------------------------- statements

    void checkScope(Statement& statement) {
        scopes_.emplace_back();
        checkStatement(statement);
        scopes_.pop_back();
    }

    void checkStatement(Statement& s) {
        switch (s.kind) {
        case Statement::Kind::block:
            scopes_.emplace_back();
            for (StatementPtr& inner : s.inner) checkStatement(*inner);
            scopes_.pop_back();
            break;
        case Statement::Kind::declaration:
            for (Variable& variable : s.variables) checkVariable(variable);
            break;
        case Statement::Kind::expression:
            typeOf(*s.expression);
            break;
        case Statement::Kind::branch:
            expectType(*s.expression, boolean, "the condition of 'if'");
            for (StatementPtr& inner : s.inner)
                if (inner) checkScope(*inner);
            break;
        case Statement::Kind::loop:
            scopes_.emplace_back();
            if (s.inner[0]) checkStatement(*s.inner[0]);
            if (s.expression) expectType(*s.expression, boolean, "the condition of a loop");
            if (s.step) typeOf(*s.step);
            checkScope(*s.inner[1]);
            scopes_.pop_back();
            break;
        case Statement::Kind::result:
            if (!s.expression && function_->result != nothing)
                throw Mistake(s.line, "expected " + withArticle(function_->result) + " after 'return'");
            if (s.expression && function_->result == nothing)
                throw Mistake(s.line, function_->name + " is void: expected ';' after 'return'");
            if (s.expression)
                expectType(*s.expression, function_->result, "the result of " + function_->name);
            break;
        }
    }

    // ------------------------------------------------------------------------------------- expressions

    void expectType(Expression& e, const Type& wanted, const std::string& what) {
        Type given = typeOf(e);
        if (!fits(given, wanted))
            throw Mistake(e.line, what + " has to be " + withArticle(wanted) + ", not " + withArticle(given));
    }

    Type typeOf(Expression& e) { return e.type = find(e); }

    Type find(Expression& e) {
        switch (e.kind) {
        case Kind::literal:
            return e.type;
        case Kind::variable: {
            const Name* name = find(e.text);
            if (!name) throw Mistake(e.line, "there is no variable '" + e.text + "'");
            e.slot = name->slot;
            return name->type;
        }
        case Kind::unary:
            return unary(e);
        case Kind::binary:
            return binary(e, typeOf(*e.operands[0]), typeOf(*e.operands[1]));
        case Kind::choice:
            return choice(e);
        case Kind::assign:
            return assign(e);
        case Kind::step: {
            Type type = typeOf(*e.operands[0]);
            refuseConst(*e.operands[0]);
            if (!isNumeric(type)) fail(e, type, type);
            return type;
        }
        case Kind::call:
            return call(e);
        case Kind::construct:
            return construct(e);
        case Kind::swizzle:
            return swizzle(e);
        case Kind::sequence:
            typeOf(*e.operands[0]);
            return typeOf(*e.operands[1]);
        }
    }

    [[noreturn]] static void fail(const Expression& e, const Type& left, const Type& right) {
        throw Mistake(e.line, "'" + e.text + "' does not go with " + nameOf(left) +
                                  (left == right ? std::string() : " and " + nameOf(right)));
    }

    Type unary(Expression& e) {
        Type type = typeOf(*e.operands[0]);
        bool right = e.text == "!" ? type == boolean : isNumeric(type);
        if (!right) fail(e, type, type);
        return type;
    }

    static Type binary(const Expression& e, const Type& left, const Type& right) {
        std::string_view symbol = e.text;
        if (isOneOf(symbol, {"&&", "||", "^^"})) {
            if (left != boolean || right != boolean) fail(e, left, right);
            return boolean;
        }
        if (isOneOf(symbol, {"==", "!="})) {
            if (left == nothing || left == sampler || (!fits(left, right) && !fits(right, left)))
                fail(e, left, right);
            return boolean;
        }
        bool compares = isOneOf(symbol, {"<", ">", "<=", ">="});
        bool sizes = compares ? left.size == 1 && right.size == 1
                              : left.size == right.size || left.size == 1 || right.size == 1;
        if (!isNumeric(left) || !isNumeric(right) || !sizes) fail(e, left, right);
        if (compares) return boolean;
        if (left == whole && right == whole) return whole;
        return vec(std::max(left.size, right.size));
    }

    Type choice(Expression& e) {
        expectType(*e.operands[0], boolean, "the condition of '?'");
        Type yes = typeOf(*e.operands[1]), no = typeOf(*e.operands[2]);
        if (yes == nothing || yes == sampler || (!fits(yes, no) && !fits(no, yes)))
            throw Mistake(e.line, "the two values of '?' have to be of one type, not " + nameOf(yes) +
                                      " and " + nameOf(no));
        return fits(yes, no) ? no : yes;
    }

    void refuseConst(const Expression& target) const {
        const Expression* e = &target;
        if (e->kind == Kind::swizzle) {
            for (int i = 0; i < e->type.size; ++i)
                for (int j = 0; j < i; ++j)
                    if (e->lanes[i] == e->lanes[j])
                        throw Mistake(e->line,
                                      "'." + e->text + "' names a component twice and cannot be changed");
            e = e->operands[0].get();
        }
        if (e->kind != Kind::variable)
            throw Mistake(e->line, "only a variable or its components can be changed");
        const Name* name = find(e->text);
        if (name->isConst || name->type == sampler)
            throw Mistake(e->line, "'" + e->text + "' is " + (name->isConst ? "const" : "a sampler") +
                                       " and cannot be changed");
    }

    Type assign(Expression& e) {
        Type target = typeOf(*e.operands[0]), value = typeOf(*e.operands[1]);
        refuseConst(*e.operands[0]);
        Type result =
            e.text == "=" ? value : binary({Kind::binary, e.line, e.text.substr(0, 1)}, target, value);
        if (!fits(result, target))
            throw Mistake(e.line,
                          "'" + e.text + "' expects " + withArticle(target) + ", not " + withArticle(result));
        return target;
    }

    Type swizzle(Expression& e) {
        Type type = typeOf(*e.operands[0]);
        if (!type.isNumber() || type.size == 1)
            throw Mistake(e.line, "" + withArticle(type) + " has no component '." + e.text + "'");
        for (std::string_view letters : {"xyzw", "rgba", "stpq"}) {
            if (e.text.size() > 4 || e.text.find_first_not_of(letters) != e.text.npos) continue;
            for (std::size_t i = 0; i < e.text.size(); ++i) {
                e.lanes[i] = static_cast<int>(letters.find(e.text[i]));
                if (e.lanes[i] >= type.size)
                    throw Mistake(e.line, "" + withArticle(type) + " has no component '." + e.text[i] + "'");
            }
            return vec(static_cast<int>(e.text.size()));
        }
        throw Mistake(e.line,
                      "expected up to four components of xyzw, of rgba or of stpq, not '." + e.text + "'");
    }

    Type construct(Expression& e) {
        Type made = e.type;
        if (made == nothing || made == sampler)
            throw Mistake(e.line, "" + withArticle(made) + " cannot be made");
        int given = 0;
        for (ExpressionPtr& operand : e.operands) {
            Type type = typeOf(*operand);
            if (type == nothing || type == sampler)
                throw Mistake(operand->line,
                              "" + withArticle(made) + " cannot be made of " + withArticle(type));
            if (given >= made.size) throw Mistake(operand->line, "too many values for " + withArticle(made));
            given += type.size;
        }
        bool repeated = e.operands.size() == 1 && given == 1;
        if (given < made.size && !repeated)
            throw Mistake(e.line, "" + withArticle(made) + " needs " + std::to_string(made.size) +
                                      " numbers, not " + std::to_string(given));
        return made;
    }

    // ------------------------------------------------------------------------------------------- calls

    static std::string listed(const Expression& e) {
        std::string types;
        for (const ExpressionPtr& operand : e.operands)
            types += (types.empty() ? "" : ", ") + nameOf(operand->type);
        return e.text + "(" + types + ")";
    }

    Type call(Expression& e) {
        for (ExpressionPtr& operand : e.operands)
            if (typeOf(*operand) == nothing) throw Mistake(operand->line, "an argument cannot be void");
        bool isKnown = false;
        for (bool exactly : {true, false})
            for (const Function* function : functions_) {
                if (function->name != e.text) continue;
                isKnown = true;
                if (function->isKernel) throw Mistake(e.line, "the kernel " + e.text + " cannot be called");
                if (takes(*function, e, exactly)) return callOf(*function, e);
            }
        for (const Builtin& builtin : builtins()) {
            if (builtin.name != e.text) continue;
            isKnown = true;
            if (auto result = resultOf(builtin, e)) {
                e.builtin = &builtin;
                return *result;
            }
        }
        if (isMissingBuiltin(e.text)) throw Mistake(e.line, "kernels have no function '" + e.text + "'");
        if (!isKnown) throw Mistake(e.line, "there is no function '" + e.text + "'");
        throw Mistake(e.line, "there is no " + listed(e) + "; expected " + signatures(e.text));
    }

    static bool takes(const Function& function, const Expression& e, bool exactly) {
        return std::equal(function.parameters.begin(), function.parameters.end(), e.operands.begin(),
                          e.operands.end(), [&](const FunctionParameter& p, const ExpressionPtr& o) {
                              bool same = exactly || p.way != FunctionParameter::Way::in;
                              return same ? o->type == p.variable.type : fits(o->type, p.variable.type);
                          });
    }

    Type callOf(const Function& function, Expression& e) {
        for (std::size_t i = 0; i < e.operands.size(); ++i)
            if (function.parameters[i].way != FunctionParameter::Way::in) refuseConst(*e.operands[i]);
        e.function = &function;
        calls_[function_].emplace_back(&function, e.line);
        return function.result;
    }

    static std::optional<Type> resultOf(const Builtin& builtin, const Expression& e) {
        std::string_view parameters = builtin.signature.substr(1);
        if (parameters.size() != e.operands.size()) return {};
        int size = 0; // that all n have
        for (std::size_t i = 0; i < parameters.size(); ++i) {
            Type given = e.operands[i]->type;
            if (given == whole) given = number;
            if (parameters[i] == 's') {
                if (given != sampler) return {};
            } else if (parameters[i] == 'n') {
                if (!given.isNumber() || (size && size != given.size)) return {};
                size = given.size;
            } else if (given != vec(parameters[i] - '0')) {
                return {};
            }
        }
        char result = builtin.signature[0];
        return vec(result == 'n' ? size : result - '0');
    }

    /// What a name can be called with, for a message.
    std::string signatures(const std::string& name) const {
        std::set<std::string> all;
        auto add = [&](const std::vector<std::string>& types) {
            std::string text;
            for (const std::string& type : types) text += (text.empty() ? "" : ", ") + type;
            all.insert(name + "(" + text + ")");
        };
        for (const Function* function : functions_) {
            if (function->name != name) continue;
            std::vector<std::string> types;
            for (const FunctionParameter& p : function->parameters) types.push_back(nameOf(p.variable.type));
            add(types);
        }
        for (const Builtin& builtin : builtins()) {
            if (builtin.name != name) continue;
            std::vector<std::string> types;
            for (char c : builtin.signature.substr(1))
                types.push_back(c == 's' ? "sampler" : c == 'n' ? "T" : nameOf(vec(c - '0')));
            add(types);
        }
        std::string text;
        for (const std::string& one : all) text += (text.empty() ? "" : " or ") + one;
        bool generic = text.find('T') != text.npos;
        return generic ? text + " with float, vec2, vec3 or vec4 for T" : text;
    }

    Unit& unit_;
    Function* function_ = nullptr;
    std::vector<std::map<std::string, Name>> scopes_;
    std::vector<const Function*> functions_;
    std::map<const Function*, std::vector<std::pair<const Function*, int>>> calls_;
    std::set<const Function*> ended_;
    int constants_ = 0;
};

} // namespace

void check(Unit& unit) { Checker(unit).all(); }

} // namespace engine::kernels
