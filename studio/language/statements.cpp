// Statements.
#include "compiler.h"
#include "runtime/arrays.h"
#include "runtime/exceptions.h"
#include "runtime/objects.h"
#include "runtime/references.h"
#include "runtime/variants.h"
#include "syntax/ast.h"
#include "syntax/names.h"

#include <algorithm>

namespace studio {

// ---- blocks ----------------------------------------------------------------------------------------------

Action Compiler::scoped(const std::function<Action()>& body) {
    scopes_.emplace_back();
    Action action;
    try {
        action = body();
    } catch (...) {
        scopes_.pop_back();
        throw;
    }
    std::vector<std::pair<int, const Type*>> counted = std::move(scopes_.back().counted);
    scopes_.pop_back();
    if (counted.empty()) return action;
    return [action = std::move(action), counted = std::move(counted)](Frame& frame) {
        struct Release {
            Frame& frame;
            const std::vector<std::pair<int, const Type*>>& counted;
            ~Release() {
                for (auto& [slot, type] : counted) release(type, std::exchange(frame.slots[slot], Bits()));
            }
        } releaseAtEnd{frame, counted};
        return action(frame);
    };
}

Action Compiler::block(const ast::Block& statements) {
    return scoped([&]() -> Action {
        struct Step {
            Action action;
            Place place;
        };
        std::vector<Step> steps;
        std::map<int, std::size_t> places; // where the block's labels are
        for (const ast::StatementPtr& s : statements)
            if (s->kind == ast::StatementKind::Label) scopes_.back().labels[folded(s->text)] = nextLoop_++;
        for (const ast::StatementPtr& s : statements) {
            if (s->kind == ast::StatementKind::Label) {
                places[scopes_.back().labels[folded(s->text)]] = steps.size();
                label_ = s->text;
                continue;
            }
            try {
                if (Action action = statement(*s))
                    steps.push_back({std::move(action), {s->position.line, s->position.file}});
            } catch (const SourceError& error) {
                errors_.push_back(error);
            }
            label_.clear();
        }
        if (steps.empty()) return [](Frame&) { return Flow::Next; };
        if (!places.empty())
            return [steps = std::move(steps), places = std::move(places), program = &program_](Frame& frame) {
                for (std::size_t i = 0; i < steps.size(); ++i) {
                    program->at = steps[i].place;
                    Program::Statement statement(*program);
                    Flow flow = steps[i].action(frame);
                    if (flow == Flow::Next) continue;
                    auto place = flow == Flow::Goto ? places.find(frame.target) : places.end();
                    if (place == places.end()) return flow;
                    i = place->second - 1;
                }
                return Flow::Next;
            };
        return [steps = std::move(steps), program = &program_](Frame& frame) {
            for (const Step& step : steps) {
                program->at = step.place;
                Program::Statement statement(*program);
                if (Flow flow = step.action(frame); flow != Flow::Next) return flow;
            }
            return Flow::Next;
        };
    });
}

Action Compiler::statement(const ast::Statement& s) {
    using ast::StatementKind;
    switch (s.kind) {
    case StatementKind::Dim:
        return dim(s);
    case StatementKind::Const: {
        Local constant = constantOf(s.variables[0]);
        if (scopes_.size() > 1 || routine_ != &program_.main)
            declareLocal(s.variables[0].name, s.position, constant.type) = constant;
        return nullptr;
    }
    case StatementKind::Assign:
        return assign(*s.target, *s.value);
    case StatementKind::Call: {
        if (s.value->kind != ast::ExprKind::Call && s.value->kind != ast::ExprKind::Member &&
            s.value->kind != ast::ExprKind::Name && s.value->kind != ast::ExprKind::RaiseEvent)
            throw SourceError(s.position, "expected a statement, found a value");
        Operand operand = expression(*s.value);
        bool variable = s.value->kind == ast::ExprKind::Name && findVariable(s.value->text);
        if (variable) throw SourceError(s.position, "expected '=' after the variable");
        const Type* type = operand.type;
        return [code = std::move(operand.code), type](Frame& f) {
            release(type, code(f));
            return Flow::Next;
        };
    }
    case StatementKind::If:
        return ifStatement(s);
    case StatementKind::For:
        return forStatement(s);
    case StatementKind::ForEach:
        return forEachStatement(s);
    case StatementKind::While:
    case StatementKind::Do:
        return whileStatement(s);
    case StatementKind::Select:
        return selectStatement(s);
    case StatementKind::Exit:
    case StatementKind::Continue:
        return jump(s);
    case StatementKind::Return:
        return returnStatement(s);
    case StatementKind::Try:
        return tryStatement(s);
    case StatementKind::Raise: {
        Operand operand = value(*s.value);
        Class* exception = classes().named("RuntimeException");
        if (operand.type->kind != Kind::Object || !operand.type->cls->isA(exception))
            throw SourceError(s.value->position,
                              "expected an exception after 'Raise', found " + operand.type->name);
        return [code = operand.code](Frame& f) -> Flow {
            REALobject object = code(f).object;
            if (!object) raise("NilObjectException", "the exception to raise is nil");
            raise(Value::adopt(object));
        };
    }
    case StatementKind::Redim: {
        Operand array = value(*s.target->a);
        if (array.type->kind != Kind::Array)
            throw SourceError(s.target->position, "expected an array, found " + array.type->name);
        std::vector<Code> bounds = upperBounds(s.target->arguments, array.type->rank, s.target->position);
        return [array = array.code, bounds](Frame& f) {
            ObjectRef object(array(f).object);
            std::vector<std::int32_t> extents = extentsOf(bounds, f);
            if (!object) raise("NilObjectException", "this array is nil");
            ArrayObject& resized = arrayOf(object.handle);
            if (extents.size() == 1)
                arrayResize(resized, extents[0]);
            else
                arrayResize(resized, extents);
            return Flow::Next;
        };
    }
    case StatementKind::AddHandler:
    case StatementKind::RemoveHandler:
        return handlerStatement(s);
    case StatementKind::Label: // block() takes them
        return nullptr;
    case StatementKind::Goto: {
        for (auto scope = scopes_.rbegin(); scope != scopes_.rend(); ++scope)
            if (auto found = scope->labels.find(folded(s.label)); found != scope->labels.end())
                return [id = found->second](Frame& f) {
                    f.target = id;
                    return Flow::Goto;
                };
        throw SourceError(s.position, "there is no label '" + s.label + ":' in this block or around it");
    }
    }
    return nullptr;
}

// ---- Dim -------------------------------------------------------------------------------------------------

std::vector<Code> Compiler::upperBounds(const std::vector<ast::ExprPtr>& bounds, int rank,
                                        Position position) {
    if (int(bounds.size()) != rank)
        throw SourceError(position, "expected " + std::to_string(rank) +
                                        (rank == 1 ? " upper bound" : " upper bounds") + ", found " +
                                        std::to_string(bounds.size()));
    if (rank > kMostDimensions)
        throw SourceError(position,
                          "an array has at most " + std::to_string(kMostDimensions) + " dimensions");
    std::vector<Code> result;
    for (const ast::ExprPtr& bound : bounds)
        result.push_back(valueAs(*bound, simpleType(Kind::Int32), "the upper bound").code);
    return result;
}

std::vector<std::int32_t> Compiler::extentsOf(const std::vector<Code>& bounds, Frame& frame) {
    std::vector<std::int32_t> result;
    for (const Code& bound : bounds) {
        std::int32_t upper = bound(frame).i32;
        if (upper < -1) raise("OutOfBoundsException", "an upper bound must be at least -1");
        result.push_back(upper + 1);
    }
    return result;
}

// What a variable holds before it is assigned to; null for the empty value.
Code Compiler::emptyValue(const ast::Variable& v, const Type* type) {
    if (type->kind == Kind::Array && type->rank > 1 && v.bounds.empty()) {
        return [element = type->element, rank = type->rank](Frame&) {
            return Bits::of(newArray(element, std::vector<std::int32_t>(std::size_t(rank), 0)));
        };
    }
    if (type->kind == Kind::Array) {
        if (v.bounds.empty())
            return [element = type->element](Frame&) { return Bits::of(newArray(element)); };
        return [bounds = upperBounds(v.bounds, type->rank, v.position), element = type->element](Frame& f) {
            return Bits::of(newArray(element, extentsOf(bounds, f)));
        };
    }
    if (type->kind == Kind::Object && type->cls->copy)
        return [cls = type->cls](Frame&) { return Bits::of(newInstance(*cls)); };
    return nullptr;
}

Action Compiler::dim(const ast::Statement& s) {
    std::vector<Action> actions;
    for (const ast::Variable& v : s.variables)
        if (Action action = declare(v)) actions.push_back(std::move(action));
    if (actions.empty()) return nullptr;
    if (actions.size() == 1) return std::move(actions[0]);
    return [actions = std::move(actions)](Frame& f) {
        for (const Action& action : actions) action(f);
        return Flow::Next;
    };
}

Action Compiler::declare(const ast::Variable& v) {
    // Routines may use a global from the start; the main program only after its Dim.
    bool global = routine_ == &program_.main && scopes_.size() == 1;
    const Type* type = nullptr;
    try {
        type = resolveType(v.type);
    } catch (const SourceError&) {
        spoilt_.insert(folded(v.name));
        throw;
    }
    Local variable;
    Code initial;
    std::optional<SourceError> mistake; // declared all the same, or every use would be another mistake
    try {
        if (v.initial) {
            initial = valueAs(*v.initial, type, "'" + v.name + "'").code;
        } else {
            initial = emptyValue(v, type);
        }
        if (v.length) throw SourceError(v.length->position, "only a Structure's String has a fixed length");
    } catch (const SourceError& error) {
        mistake = error;
    }
    if (global) {
        Local& known = globals_[folded(v.name)];
        known.declaredYet = true;
        variable = known;
    } else if (v.isStatic) {
        program_.globals.push_back({v.name, type, Bits()});
        variable.type = type;
        variable.address = &program_.globals.back().bits;
        declareLocal(v.name, v.position, type) = variable;
    } else {
        variable = declareLocal(v.name, v.position, type);
    }
    if (mistake) throw *mistake;
    if (!initial) {
        if (global || v.isStatic) return nullptr;
        initial = [](Frame&) { return Bits(); }; // on every iteration of a loop
    }
    if (Bits* address = variable.address) {
        bool* done = nullptr; // a Static variable takes its value when it is first reached
        if (v.isStatic) {
            program_.globals.push_back({"(once)", simpleType(Kind::Boolean), Bits()});
            done = &program_.globals.back().bits.boolean;
        }
        return [initial, address, type, done](Frame& f) {
            if (done && std::exchange(*done, true)) return Flow::Next;
            Bits bits = initial(f);
            release(type, std::exchange(*address, bits));
            return Flow::Next;
        };
    }
    int slot = variable.slot;
    if (!type->isCounted())
        return [initial, slot](Frame& f) {
            f.slots[slot] = initial(f);
            return Flow::Next;
        };
    return [initial, slot, type](Frame& f) {
        Bits bits = initial(f);
        release(type, std::exchange(f.slots[slot], bits));
        return Flow::Next;
    };
}

// ---- choices ---------------------------------------------------------------------------------------------

Action Compiler::ifStatement(const ast::Statement& s) {
    struct Branch {
        Code condition; // empty for Else
        Action body;
    };
    std::vector<Branch> branches;
    for (const ast::Branch& b : s.branches) {
        Branch branch;
        try {
            if (b.condition) branch.condition = condition(*b.condition).code;
        } catch (const SourceError& error) { // the body may contain more
            errors_.push_back(error);
        }
        branch.body = block(b.body);
        branches.push_back(std::move(branch));
    }
    return [branches = std::move(branches)](Frame& f) {
        for (const Branch& branch : branches)
            if (!branch.condition || branch.condition(f).boolean) return branch.body(f);
        return Flow::Next;
    };
}

Action Compiler::selectStatement(const ast::Statement& s) {
    return scoped([&]() -> Action {
        Operand subject = value(*s.value);
        // A program cannot write this name.
        Local& held = declareLocal("(select)", s.position, subject.type);
        int slot = held.slot;
        struct Branch {
            std::vector<Code> tests; // empty for Else
            Action body;
        };
        std::vector<Branch> branches;
        for (const ast::Branch& b : s.branches) {
            Branch branch;
            for (const ast::CaseTest& test : b.tests) {
                auto compared = [&](const std::string& op, const ast::Expr& e) {
                    Operand other = value(e);
                    return comparison(op, variable(held, s.value->position), std::move(other), e.position)
                        .code;
                };
                if (test.comparison == "to") {
                    Code low = compared(">=", *test.value), high = compared("<=", *test.upper);
                    branch.tests.push_back(
                        [low, high](Frame& f) { return Bits::of(low(f).boolean && high(f).boolean); });
                } else {
                    branch.tests.push_back(compared(test.comparison, *test.value));
                }
            }
            branch.body = block(b.body);
            branches.push_back(std::move(branch));
        }
        return [branches = std::move(branches), slot, code = subject.code, type = subject.type](Frame& f) {
            Bits bits = code(f);
            release(type, std::exchange(f.slots[slot], bits));
            for (const Branch& branch : branches)
                if (branch.tests.empty() || std::any_of(branch.tests.begin(), branch.tests.end(),
                                                        [&](const Code& test) { return test(f).boolean; }))
                    return branch.body(f);
            return Flow::Next;
        };
    });
}

// ---- loops -----------------------------------------------------------------------------------------------

namespace {

// Decides after a loop's body: true ends the loop, and `flow` is then for the statement around it.
bool leaves(Flow& flow, const Frame& frame, int id) {
    if (flow == Flow::Next) return false;
    if (flow == Flow::Return || frame.target != id) return true;
    bool exits = flow == Flow::Exit;
    flow = Flow::Next;
    return exits;
}

template <class T>
Action countingLoop(std::function<Bits*(Frame&)> variable, Code first, Code last, Code step, bool down,
                    Action body, int id) {
    return [=](Frame& f) {
        Bits start = first(f), end = last(f), by = step(f);
        T limit = end.as<T>(), increment = by.as<T>();
        Bits* counter = variable(f);
        counter->as<T>() = start.as<T>();
        Flow flow = Flow::Next;
        while (down ? counter->as<T>() >= limit : counter->as<T>() <= limit) {
            flow = body(f);
            if (leaves(flow, f, id)) break;
            if constexpr (std::is_integral_v<T>) {
                T next;
                if (__builtin_add_overflow(counter->as<T>(), increment, &next)) break;
                counter->as<T>() = next;
            } else {
                counter->as<T>() += increment;
            }
        }
        return flow;
    };
}

} // namespace

Action Compiler::forStatement(const ast::Statement& s) {
    return scoped([&]() -> Action {
        const ast::Variable& v = s.variables[0];
        const Type* type;
        ast::Expr counterName{ast::ExprKind::Name, v.position, v.name, 0, 0, nullptr, nullptr, {}, {}};
        if (!v.type.name.empty()) {
            type = resolveType(v.type);
            declareLocal(v.name, v.position, type);
        } else {
            Local* known = findVariable(v.name);
            if (!known) unknown(v.position, "there is no", v.name, namesInScope());
            type = known->type;
        }
        if (!type->isNumber() || elementSize(type) < 4 || type->kind == Kind::UInt32 ||
            type->kind == Kind::UInt64)
            throw SourceError(v.position,
                              "a loop can count in Integer, Int64, Single or Double, not in " + type->name);
        Target counter = place(counterName);
        Code first = valueAs(*s.target, type, "the loop").code;
        Code last = valueAs(*s.value, type, "the loop").code;
        bool down = s.text == "downto";
        Operand by = s.step ? valueAs(*s.step, type, "Step") : Operand{};
        if (!s.step) {
            Literal one{simpleType(Kind::Int32), Bits::of(std::int32_t(1)), {}};
            by = coerce(literal(one, s.position), type, "");
        }
        if (by.constant && by.constant->type->isNumber()) {
            double amount = convert(type, simpleType(Kind::Double), by.constant->bits).f64;
            if (amount == 0) throw SourceError(by.position, "a Step of 0 never ends");
            if (amount < 0 && !down)
                down = true; // For i = 10 To 1 Step -1
            else if (down) {
                Literal negative{simpleType(Kind::Double), Bits::of(-std::abs(amount)), {}};
                by = coerce(literal(negative, s.position), type, "");
            }
        } else if (down) {
            ast::Expr minus{ast::ExprKind::Integer, s.position, "", 0, 0, nullptr, nullptr, {}, {}};
            by = coerce(
                arithmetic("-", literal(classes().literal(minus), s.position), std::move(by), s.position),
                type, "");
        }
        int id = openLoop("for", v.name);
        Action body = block(s.body);
        loops_.pop_back();
        auto make = [&](auto tag) {
            return countingLoop<decltype(tag)>(counter.address, first, last, by.code, down, body, id);
        };
        switch (type->kind) {
        case Kind::Int64:
            return make(std::int64_t());
        case Kind::Single:
            return make(float());
        case Kind::Double:
            return make(double());
        default:
            return make(std::int32_t());
        }
    });
}

Action Compiler::forEachStatement(const ast::Statement& s) {
    return scoped([&]() -> Action {
        const ast::Variable& v = s.variables[0];
        Operand array = value(*s.value);
        if (array.type->kind != Kind::Array || array.type->rank > 1)
            throw SourceError(s.value->position,
                              "expected an array of one dimension after 'In', found " + array.type->name);
        const Type* type = v.type.name.empty() ? array.type->element : resolveType(v.type);
        if (conversionCost(array.type->element, type) < 0)
            throw SourceError(v.position,
                              "the elements are " + array.type->element->name + ", not " + type->name);
        if (v.type.name.empty() && findVariable(v.name)) {
            type = findVariable(v.name)->type;
        } else {
            declareLocal(v.name, v.position, type);
        }
        Local element = *findVariable(v.name);
        ast::Expr elementName{ast::ExprKind::Name, v.position, v.name, 0, 0, nullptr, nullptr, {}, {}};
        Target target = place(elementName);
        Local held = declareLocal("(each)", s.position, array.type);
        int id = openLoop("for", v.name);
        Action body = block(s.body);
        loops_.pop_back();
        return [code = array.code, from = array.type->element, type, store = target.store, slot = held.slot,
                body, id, arrayType = array.type](Frame& f) {
            Bits bits = code(f);
            release(arrayType, std::exchange(f.slots[slot], bits));
            if (!bits.object) raise("NilObjectException", "this array is nil");
            Flow flow = Flow::Next;
            for (std::int32_t i = 0; i < arrayOf(f.slots[slot].object).count; ++i) {
                store(f, convert(from, type, arrayGet(arrayOf(f.slots[slot].object), i)));
                flow = body(f);
                if (leaves(flow, f, id)) break;
            }
            return flow;
        };
    });
}

// While, and Do in all its forms.
Action Compiler::whileStatement(const ast::Statement& s) {
    auto test = [&](const ast::ExprPtr& e, bool until) -> Code {
        if (!e) return nullptr;
        Code code = condition(*e).code;
        if (!until) return code;
        return [code](Frame& f) { return Bits::of(!code(f).boolean); };
    };
    Code before = test(s.value, s.text == "until"), after = test(s.loopCondition, s.suffix == "until");
    int id = openLoop(s.kind == ast::StatementKind::While ? "while" : "do", "");
    Action body = block(s.body);
    loops_.pop_back();
    Place first{s.position.line, s.position.file}, last = first;
    if (s.loopCondition) last.line = s.loopCondition->position.line;
    return [before, after, body, id, first, last, at = &program_.at](Frame& f) {
        Flow flow = Flow::Next;
        for (;;) {
            *at = first;
            if (before && !before(f).boolean) break;
            flow = body(f);
            if (leaves(flow, f, id)) break;
            *at = last;
            if (after && !after(f).boolean) break;
        }
        return flow;
    };
}

int Compiler::openLoop(const std::string& kind, const std::string& variable) {
    int id = nextLoop_++;
    loops_.push_back({kind, id, variable, std::exchange(label_, "")});
    return id;
}

Action Compiler::jump(const ast::Statement& s) {
    bool exits = s.kind == ast::StatementKind::Exit;
    if (exits && (s.text == "sub" || s.text == "function")) return [](Frame&) { return Flow::Return; };
    auto loop = std::find_if(loops_.rbegin(), loops_.rend(), [&](const Loop& l) {
        if (!s.text.empty() && l.kind != s.text) return false;
        return s.label.empty() || sameName(l.variable, s.label) || sameName(l.label, s.label);
    });
    if (loop == loops_.rend() && !s.label.empty())
        throw SourceError(s.position, "there is no loop '" + s.label + "' around this; expected a loop's " +
                                          "variable or the label in the line above the loop");
    if (loop == loops_.rend())
        throw SourceError(s.position, std::string("there is no ") +
                                          (s.text.empty() ? "" : "'" + s.text + "' ") + "loop to " +
                                          (exits ? "leave" : "continue") + " here");
    return [id = loop->id, flow = exits ? Flow::Exit : Flow::Continue](Frame& f) {
        f.target = id;
        return flow;
    };
}

// ---- leaving ---------------------------------------------------------------------------------------------

Action Compiler::returnStatement(const ast::Statement& s) {
    const Type* result = routine_->method ? routine_->method->signature.result : nullptr;
    if (!s.value) {
        if (result) throw SourceError(s.position, "expected the function's result, a " + result->name);
        return [](Frame&) { return Flow::Return; };
    }
    if (!result) throw SourceError(s.value->position, "there is no function here to return a value from");
    Operand operand = valueAs(*s.value, result, "the result");
    return [code = operand.code, result](Frame& f) {
        Bits bits = code(f);
        release(result, std::exchange(f.result, bits)); // Finally may return again
        return Flow::Return;
    };
}

Action Compiler::tryStatement(const ast::Statement& s) {
    struct Handler {
        Class* cls;
        int slot;
        Action body;
    };
    Action body = block(s.body);
    std::vector<Handler> handlers;
    for (const ast::Branch& b : s.branches) {
        Handler handler{classes().named("RuntimeException"), -1, nullptr};
        handler.body = scoped([&] {
            if (!b.caught.name.empty()) {
                const Type* type =
                    b.caught.type.name.empty() ? handler.cls->type : resolveType(b.caught.type);
                if (type->kind != Kind::Object || !type->cls->isA(classes().named("RuntimeException")))
                    throw SourceError(b.caught.type.position,
                                      "expected an exception's class, found " + type->name);
                handler.cls = type->cls;
                handler.slot = declareLocal(b.caught.name, b.caught.position, type).slot;
            }
            return block(b.body);
        });
        handlers.push_back(std::move(handler));
    }
    Action finally = s.hasFinally ? block(s.finally) : nullptr;

    Action guarded = [body, handlers](Frame& f) {
        std::optional<Raised> caught;
        try {
            return inMemory([&] { return body(f); });
        } catch (Raised& raised) {
            caught = std::move(raised);
        }
        REALobject exception = caught->exception.object();
        for (const Handler& handler : handlers) {
            if (!classOf(exception).isA(handler.cls)) continue;
            if (handler.slot >= 0) {
                Value held = std::move(caught->exception);
                caught.reset();
                f.slots[handler.slot] = held.release();
            }
            caught.reset();
            return handler.body(f);
        }
        throw std::move(*caught);
    };
    if (!finally) return guarded;
    return [guarded, finally](Frame& f) {
        Flow flow;
        int target = 0;
        try {
            flow = inMemory([&] { return guarded(f); });
            target = f.target;
        } catch (const Raised&) {
            if (Flow left = finally(f); left != Flow::Next) return left;
            throw;
        }
        Flow left = finally(f);
        if (left != Flow::Next) return left;
        f.target = target;
        return flow;
    };
}

} // namespace studio
