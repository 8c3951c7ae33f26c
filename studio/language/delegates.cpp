// AddressOf, delegates and the handlers of events.
#include "runtime/delegates.h"
#include "compiler.h"
#include "runtime/calls.h"
#include "runtime/exceptions.h"
#include "runtime/objects.h"
#include "runtime/references.h"
#include "syntax/ast.h"
#include "syntax/names.h"

#include <algorithm>

namespace studio {

namespace {

std::string shapeOf(const Signature& signature) {
    Signature shape = signature;
    shape.name = "Delegate";
    for (Parameter& p : shape.parameters) {
        p.name = "p";
        p.defaultValue.reset();
    }
    return shape.text();
}

bool sameShape(Signature a, const Signature& b) {
    a.name = b.name;
    return sameSignature(a, b);
}

} // namespace

Compiler::Addressed Compiler::addressed(const ast::Expr& e) {
    const ast::Expr& named = *e.a;
    Addressed result;
    if (named.kind == ast::ExprKind::Name) {
        if (hasSelf_ && !owner_->methodsNamed(named.text).empty()) {
            result.candidates = owner_->methodsNamed(named.text);
            result.self = selfOperand(named.position);
        } else if (owner_ && !owner_->sharedMethodsNamed(named.text).empty()) {
            result.candidates = owner_->sharedMethodsNamed(named.text);
        } else {
            result.candidates = functionsNamed(named.text);
        }
    } else if (named.kind == ast::ExprKind::Member) {
        if (Class* cls = findClass(*named.a)) {
            result.candidates = cls->sharedMethodsNamed(named.text);
        } else {
            Operand object = value(*named.a);
            if (object.type->kind == Kind::Object)
                result.candidates = object.type->cls->methodsNamed(named.text);
            result.self = std::move(object);
        }
    }
    if (result.candidates.empty())
        throw SourceError(named.position, "expected the name of a Sub or Function after 'AddressOf'");
    return result;
}

Class& Compiler::delegateFor(const Signature& signature) {
    Class& cls = *classes().named(shapeOf(signature)); // a program cannot write this name
    if (!cls.isDefined()) makeDelegateClass(cls, signature);
    return cls;
}

Operand Compiler::addressOf(const ast::Expr& e, Class* wanted) {
    Addressed target = addressed(e);
    if (!wanted) {
        if (target.candidates.size() > 1)
            throw SourceError(e.position, "there are " + std::to_string(target.candidates.size()) +
                                              " routines " + target.candidates[0]->signature.name +
                                              "; assign AddressOf to a variable of a delegate's type");
        return makeDelegate(e, delegateFor(target.candidates[0]->signature), *target.candidates[0],
                            std::move(target.self));
    }
    for (const Method* candidate : target.candidates)
        if (sameShape(candidate->signature, *wanted->delegate))
            return makeDelegate(e, *wanted, *candidate, std::move(target.self));
    throw SourceError(
        e.position, "expected " + std::string(wanted->delegate->result ? "a Function" : "a Sub") + " like " +
                        wanted->delegate->text() + ", found " + target.candidates[0]->signature.text());
}

Operand Compiler::makeDelegate(const ast::Expr& e, Class& type, const Method& method,
                               std::optional<Operand> self) {
    if (!method.routine && !method.function)
        throw SourceError(e.position, method.fullName() + " has no address");
    bool weak = e.text == "weak";
    const Type* selfType = self ? self->type : nullptr;
    return {type.type,
            [cls = &type, m = &method, weak, selfType, self = self ? self->code : Code(),
             program = &program_](Frame& f) {
                ObjectRef object(self ? self(f).object : nullptr);
                if (self && !object)
                    raise("NilObjectException",
                          "this " + selfType->name + " is nil and has no " + m->signature.name);
                const Method* target = m;
                if (object && m->routine) target = program->dispatch(*m->routine, object).method;
                return Bits::of(newDelegate(*cls, *target, object, weak));
            },
            e.position};
}

Operand Compiler::invokeDelegate(Operand delegate, const std::vector<const ast::Expr*>& arguments,
                                 Position position) {
    // Checked and converted as for a function of the delegate's signature.
    const Signature& signature = *delegate.type->cls->delegate;
    Method model;
    model.signature = signature;
    model.signature.name = "Invoke";
    std::vector<Operand> given;
    std::vector<const Type*> types;
    for (const ast::Expr* argument : arguments) {
        given.push_back(value(*argument));
        types.push_back(given.back().type);
    }
    Choice choice = chooseOverload({&model}, types, "Invoke");
    if (!choice.method) throw SourceError(position, choice.problem);
    PreparedArguments prepared = prepare(model, model.signature, std::move(given), arguments);
    std::vector<Code> codes;
    std::vector<const Type*> parameters;
    for (Operand& operand : prepared.operands) {
        codes.push_back(std::move(operand.code));
        parameters.push_back(operand.type);
    }
    return {signature.result ? signature.result : simpleType(Kind::Void),
            [delegate = delegate.code, codes, parameters, places = std::move(prepared.places),
             program = &program_](Frame& f) {
                ObjectRef target(delegate(f).object);
                struct Values {
                    const std::vector<const Type*>& types;
                    std::vector<Bits> bits;
                    ~Values() {
                        for (std::size_t i = 0; i < bits.size(); ++i) release(types[i], bits[i]);
                    }
                } values{parameters, {}};
                for (const Code& code : codes) values.bits.push_back(code(f));
                values.bits.emplace_back(); // so that data() is never null
                std::vector<Bits> arguments = std::exchange(values.bits, {});
                Bits result = program->callDelegate(target, arguments.data());
                for (std::size_t i = 0; i < places.size(); ++i)
                    if (places[i].store) places[i].store(f, arguments[i]);
                return result;
            },
            position};
}

Operand Compiler::raiseEvent(const ast::Expr& e, const std::vector<const ast::Expr*>& arguments) {
    const Event* event = owner_ ? findEvent(owner_, e.text) : nullptr;
    if (!hasSelf_ || !event) {
        std::vector<std::string> known;
        for (const Class* c = owner_; c; c = c->superclass)
            for (const Event& declared : events_[c]) known.push_back(declared.name);
        unknown(e.position, owner_ ? owner_->name + " declares no event" : "there is no object here to raise",
                e.text, known);
    }
    return invokeMethod({event->raise}, selfOperand(e.position), arguments, e.text, e.position);
}

// AddHandler and RemoveHandler.
Action Compiler::handlerStatement(const ast::Statement& s) {
    Operand object = value(*s.target->a);
    const std::string& name = s.target->text;
    if (object.type->kind != Kind::Object)
        throw SourceError(s.target->position, "expected an object with events, found " + object.type->name);
    const Event* event = findEvent(object.type->cls, name);
    Signature wanted;
    if (event) wanted = event->raise->signature;
    bool known = event;
    for (const Class* c = object.type->cls; c && !known; c = c->superclass)
        for (const std::string& declaration : c->events) {
            Signature declared = classes().parse(declaration);
            if (!sameName(declared.name, name)) continue;
            wanted = declared;
            known = true;
        }
    if (!known) throw SourceError(s.target->position, object.type->name + " has no event " + name);
    Parameter sender;
    sender.name = "sender";
    sender.type = object.type;
    wanted.parameters.insert(wanted.parameters.begin(), sender);

    bool removes = s.kind == ast::StatementKind::RemoveHandler;
    if (s.value->kind != ast::ExprKind::AddressOf)
        throw SourceError(s.value->position, "expected AddressOf and a Sub");
    Addressed target = addressed(*s.value);
    // The handler may take any class that the object is of.
    const Method* handler = nullptr;
    for (const Method* candidate : target.candidates) {
        Signature fitted = wanted;
        if (candidate->signature.parameters.empty()) continue;
        const Type* first = candidate->signature.parameters[0].type;
        if (first->kind == Kind::Object && object.type->cls->isA(first->cls))
            fitted.parameters[0].type = first;
        if (sameShape(candidate->signature, fitted)) handler = candidate;
    }
    if (!handler) {
        wanted.name = target.candidates[0]->signature.name;
        throw SourceError(s.value->position, std::string("expected a ") +
                                                 (wanted.result ? "Function" : "Sub") + " declared as " +
                                                 wanted.text());
    }
    Operand delegate =
        makeDelegate(*s.value, delegateFor(handler->signature), *handler, std::move(target.self));
    return [code = object.code, delegate = delegate.code, name, removes,
            offset = event ? event->handler : 0](Frame& f) {
        ObjectRef held(code(f).object);
        if (!held) raise("NilObjectException", "the object whose event is to be handled is nil");
        ObjectRef handler(removes ? nullptr : delegate(f).object);
        if (offset)
            heap().release(std::exchange(dataAt<Bits>(held, offset).object, handler.release()));
        else
            setHandler(held, name, handler);
        return Flow::Next;
    };
}

} // namespace studio
