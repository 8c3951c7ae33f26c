// From a checked kernel and its arguments to a program.
#include "specialiser.h"

#include <algorithm>
#include <utility>

namespace engine::kernels {

namespace {

using Kind = Expression::Kind;

/// At most so many statements and expressions are looked at, calls and iterations of loops included.
constexpr int mostSteps = 1 << 19;
/// The deepest that they are nested, which is followed on the stack.
constexpr int mostDepth = 1000;

class Specialiser {
  public:
    Specialiser(const Unit& unit, const std::vector<Reader>& readers, bool known)
        : emit_{graph_, readers, known} {
        active_ = yes();
        for (const Variable& constant : unit.constants)
            globals_.push_back(as(constant.type, evaluate(*constant.value)));
    }

    std::optional<Program> kernel(const Function& kernel, const std::vector<Binding>& bindings) {
        Frame frame(kernel);
        for (std::size_t i = 0; i < bindings.size(); ++i)
            frame.slots[i].value = bound(kernel.parameters[i].variable.type, bindings[i]);
        Operand result = run(kernel, frame);
        if (kernel.result == vec(2)) result = emit_.read(static_cast<int>(emit_.readers.size()) - 1, result);
        if (!emit_.known) return {};
        return graph_.program(result.lanes, emit_.readers);
    }

  private:
    /// A variable: its value, and how many conditions it was declared under.
    struct Slot {
        Operand value;
        std::size_t depth = 0;
        bool isOut = false;
    };

    /// A call that is being put in place.
    struct Frame {
        explicit Frame(const Function& function) : slots(function.slots) {}
        std::vector<Slot> slots;
        Operand result;
    };

    int yes() { return graph_.constant(1); }
    bool isDead() const { return graph_.known(active_) == 0.f; }
    int both(int a, int b) { return graph_.operation(Op::choose, a, b, graph_.constant(0)); }
    int either(int a, int b) { return graph_.operation(Op::choose, a, yes(), b); }
    int negated(int a) { return graph_.operation(Op::choose, a, graph_.constant(0), yes()); }

    /// Counts what is looked at, and how deep.
    struct Look {
        Look(Specialiser& of, int line) : of(of) {
            of.line_ = line;
            if (++of.steps_ > mostSteps) throw TooLong();
            if (++of.depth_ > mostDepth) throw Mistake(line, "calls and expressions are nested too deeply");
        }
        ~Look() { --of.depth_; }
        Specialiser& of;
    };

    Operand zero(const Type& type) {
        Operand made{type};
        std::fill_n(made.lanes.begin(), type.size, graph_.constant(0));
        return made;
    }

    Operand bound(const Type& type, const Binding& binding) {
        Operand made{type};
        for (int i = 0; i < type.size && binding.kind != Binding::Kind::sampler; ++i)
            made.lanes[i] = binding.kind == Binding::Kind::unknown   ? graph_.unknown()
                            : binding.kind == Binding::Kind::numbers ? graph_.constant(binding.numbers[i])
                            : binding.kind == Binding::Kind::color   ? graph_.color(binding.index, i)
                                                                     : -1;
        made.sampler = binding.index;
        if (binding.kind != Binding::Kind::sample) return made;
        return emit_.read(binding.index, emit_.toSampler(binding.index, emit_.place()));
    }

    // -------------------------------------------------------------------------------------- statements

    Operand run(const Function& function, Frame& frame) {
        Frame* outerFrame = std::exchange(frame_, &frame);
        std::vector<int> outerConditions = std::exchange(conditions_, {});
        int outerActive = std::exchange(active_, yes());
        if (function.result != nothing) frame.result = zero(function.result);
        run(*function.body);
        // Pixels that have returned go on with the caller.
        active_ = outerActive;
        conditions_ = std::move(outerConditions);
        frame_ = outerFrame;
        return frame.result;
    }

    void run(const Statement& s) {
        if (isDead()) return;
        Look look(*this, s.line);
        switch (s.kind) {
        case Statement::Kind::block:
            for (const StatementPtr& inner : s.inner) run(*inner);
            break;
        case Statement::Kind::declaration:
            for (const Variable& v : s.variables)
                frame_->slots[v.slot] = {v.value ? as(v.type, evaluate(*v.value)) : zero(v.type),
                                         conditions_.size()};
            break;
        case Statement::Kind::expression:
            evaluate(*s.expression);
            break;
        case Statement::Kind::branch:
            branch(evaluate(*s.expression).lanes[0], s.inner[0].get(), s.inner[1].get());
            break;
        case Statement::Kind::loop:
            loop(s);
            break;
        case Statement::Kind::result:
            if (s.expression) assign(frame_->result, evaluate(*s.expression), active_);
            active_ = graph_.constant(0);
            break;
        }
    }

    /// Does some work for the pixels of a condition. The result tells whether none of them has returned.
    template <class Work>
    bool under(int condition, Work work) {
        int begin = active_ = both(active_, condition);
        conditions_.push_back(condition);
        if (!isDead()) work();
        conditions_.pop_back();
        return active_ == begin;
    }

    /// Both sides run, each for its pixels.
    void branch(int condition, const Statement* first, const Statement* second) {
        if (auto known = graph_.known(condition)) {
            if (const Statement* side = *known != 0 ? first : second) run(*side);
            return;
        }
        int before = active_;
        bool allGoOn = under(condition, [&] { run(*first); });
        int after = std::exchange(active_, before);
        allGoOn = under(negated(condition),
                        [&] {
                            if (second) run(*second);
                        }) &&
                  allGoOn;
        active_ = allGoOn ? before : either(after, active_);
    }

    void loop(const Statement& s) {
        if (s.inner[0]) run(*s.inner[0]);
        for (bool first = true;; first = false) {
            Look look(*this, s.line);
            if (isDead()) return;
            if (s.expression && !(first && s.testsLast)) {
                auto goesOn = graph_.known(evaluate(*s.expression).lanes[0]);
                if (!goesOn)
                    throw Mistake(
                        s.line, "the condition of a loop has to follow from constants, so that the number of "
                                "iterations is known when the kernel is compiled");
                if (*goesOn == 0) return;
            }
            run(*s.inner[1]);
            if (s.step && !isDead()) evaluate(*s.step);
        }
    }

    // ------------------------------------------------------------------------------------- expressions

    /// Whole numbers, numbers and booleans are all kept as numbers.
    static Operand as(const Type& type, Operand value) {
        value.type = type;
        return value;
    }

    void assign(Operand& target, const Operand& value, int mask) {
        for (int i = 0; i < target.type.size; ++i)
            target.lanes[i] = emit_.choose(mask, value.lanes[i], target.lanes[i]);
    }

    const Operand& variable(const Expression& e) const {
        return e.slot < 0 ? globals_[-2 - e.slot] : frame_->slots[e.slot].value;
    }

    /// Changes a variable for the pixels of the conditions that came after its declaration. What it is for
    /// pixels that have returned does not matter, so that loops can count on; only the caller sees it.
    void store(const Expression& target, const Operand& value) {
        bool whole = target.kind != Kind::swizzle;
        Slot& slot = frame_->slots[whole ? target.slot : target.operands[0]->slot];
        Operand changed = whole ? value : slot.value;
        for (int i = 0; i < target.type.size && !whole; ++i) changed.lanes[target.lanes[i]] = value.lanes[i];
        int mask = yes();
        for (std::size_t i = slot.depth; i < conditions_.size(); ++i) mask = both(mask, conditions_[i]);
        assign(slot.value, changed, slot.isOut ? active_ : mask);
    }

    Operand evaluate(const Expression& e) {
        Look look(*this, e.line);
        switch (e.kind) {
        case Kind::literal:
            return {e.type, {graph_.constant(static_cast<float>(e.value))}};
        case Kind::variable:
            return variable(e);
        case Kind::unary: {
            Operand a = evaluate(*e.operands[0]);
            if (e.text == "!") return {boolean, {negated(a.lanes[0])}};
            return e.text == "-" ? emit_.each(Op::negate, a.type, a) : a;
        }
        case Kind::binary:
            return binary(e);
        case Kind::choice:
            return choice(e);
        case Kind::assign: {
            const Expression& target = *e.operands[0];
            Operand value = evaluate(*e.operands[1]);
            if (e.text != "=") value = arithmetic(e.text[0], e.type, evaluate(target), value);
            value = as(e.type, value);
            store(target, value);
            return value;
        }
        case Kind::step: {
            Operand before = evaluate(*e.operands[0]);
            Operand one{e.type.base == Type::Base::whole ? whole : number, {yes()}};
            Operand after = arithmetic(e.text[0], e.type, before, one);
            store(*e.operands[0], after);
            return e.value != 0 ? after : before;
        }
        case Kind::call:
            return call(e);
        case Kind::construct:
            return construct(e);
        case Kind::swizzle: {
            Operand inner = evaluate(*e.operands[0]), made{e.type};
            for (int i = 0; i < e.type.size; ++i) made.lanes[i] = inner.lanes[e.lanes[i]];
            return made;
        }
        case Kind::sequence:
            evaluate(*e.operands[0]);
            return evaluate(*e.operands[1]);
        }
    }

    Operand arithmetic(char symbol, const Type& type, const Operand& a, const Operand& b) {
        Op op = symbol == '+'   ? Op::add
                : symbol == '-' ? Op::subtract
                : symbol == '*' ? Op::multiply
                                : Op::divide;
        Operand made = emit_.each(op, type, a, b);
        return type == whole && op == Op::divide ? emit_.each(Op::truncate, type, made) : made;
    }

    Operand binary(const Expression& e) {
        Operand a = evaluate(*e.operands[0]);
        std::string_view symbol = e.text;
        if (symbol == "&&" || symbol == "||") {
            // The right side runs only where the left one does not decide, and may change variables there.
            int before = active_, left = a.lanes[0], right = left;
            under(symbol == "&&" ? left : negated(left), [&] { right = evaluate(*e.operands[1]).lanes[0]; });
            active_ = before;
            return {boolean, {symbol == "&&" ? both(left, right) : either(left, right)}};
        }
        Operand b = evaluate(*e.operands[1]);
        if (symbol == "^^") return {boolean, {negated(graph_.operation(Op::equal, a.lanes[0], b.lanes[0]))}};
        if (symbol == "==" || symbol == "!=") {
            int same = yes();
            for (int i = 0; i < a.type.size; ++i)
                same = both(same, graph_.operation(Op::equal, a.lanes[i], b.lanes[i]));
            return {boolean, {symbol == "==" ? same : negated(same)}};
        }
        auto compared = [&](Op op, const Operand& left, const Operand& right) -> Operand {
            return {boolean, {graph_.operation(op, left.lanes[0], right.lanes[0])}};
        };
        if (symbol == "<") return compared(Op::less, a, b);
        if (symbol == ">") return compared(Op::less, b, a);
        if (symbol == "<=") return compared(Op::atMost, a, b);
        if (symbol == ">=") return compared(Op::atMost, b, a);
        return arithmetic(symbol[0], e.type, a, b);
    }

    Operand choice(const Expression& e) {
        int condition = evaluate(*e.operands[0]).lanes[0], before = active_;
        if (auto known = graph_.known(condition))
            return as(e.type, evaluate(*e.operands[*known != 0 ? 1 : 2]));
        Operand first = zero(e.type), second = first, made{e.type};
        under(condition, [&] { first = evaluate(*e.operands[1]); });
        active_ = before;
        under(negated(condition), [&] { second = evaluate(*e.operands[2]); });
        active_ = before;
        for (int i = 0; i < e.type.size; ++i)
            made.lanes[i] = emit_.choose(condition, first.lanes[i], second.lanes[i]);
        return made;
    }

    Operand construct(const Expression& e) {
        Operand made{e.type};
        int given = 0;
        for (const ExpressionPtr& part : e.operands) {
            Operand value = evaluate(*part);
            for (int i = 0; i < value.type.size && given < e.type.size; ++i)
                made.lanes[given++] = converted(e.type, value, i);
        }
        for (; given < e.type.size; ++given) made.lanes[given] = made.lanes[0];
        return made;
    }

    int converted(const Type& to, const Operand& value, int lane) {
        int v = value.lanes[lane];
        if (to == whole && value.type.isNumber()) return graph_.operation(Op::truncate, v);
        if (to == boolean && value.type != boolean)
            return negated(graph_.operation(Op::equal, v, graph_.constant(0)));
        return v;
    }

    Operand call(const Expression& e) {
        std::vector<Operand> operands;
        for (const ExpressionPtr& operand : e.operands) operands.push_back(evaluate(*operand));
        if (e.builtin) return (*e.builtin)(emit_, e.type, operands.data());
        const Function& function = *e.function;
        Frame frame(function);
        for (std::size_t i = 0; i < operands.size(); ++i) {
            const FunctionParameter& p = function.parameters[i];
            bool isOut = p.way != FunctionParameter::Way::in;
            bool isNew = p.way == FunctionParameter::Way::out;
            frame.slots[i] = {isNew ? zero(p.variable.type) : as(p.variable.type, operands[i]), 0, isOut};
        }
        Operand result = run(function, frame);
        for (std::size_t i = 0; i < operands.size(); ++i)
            if (function.parameters[i].way != FunctionParameter::Way::in)
                store(*e.operands[i], frame.slots[i].value);
        return result;
    }

    Graph graph_;
    Emitter emit_;
    std::vector<Operand> globals_;
    // Of the function at hand: its variables, the conditions that the statement at hand is under, and 1 for
    // the pixels that it is for, which have not returned yet.
    Frame* frame_ = nullptr;
    std::vector<int> conditions_;
    int active_;
    int steps_ = 0, depth_ = 0, line_ = 1;
};

/// What both ways to specialise share: the text that became too long is a mistake of the kernel.
std::optional<Program> made(const Unit& unit, const Function& kernel, const std::vector<Binding>& bindings,
                            const std::vector<Reader>& readers, bool known) {
    try {
        return Specialiser(unit, readers, known).kernel(kernel, bindings);
    } catch (const TooLong&) {
        throw Mistake(kernel.line,
                      "the kernel " + kernel.name +
                          " becomes too long when its loops are unrolled and its functions inlined, or "
                          "one of its loops never ends");
    }
}

} // namespace

void verify(const Unit& unit, const Function& kernel) {
    std::vector<Binding> bindings;
    int samplers = 0;
    for (const FunctionParameter& p : kernel.parameters) {
        Binding binding;
        if (p.variable.type == sampler || p.isSample)
            binding = {p.isSample ? Binding::Kind::sample : Binding::Kind::sampler, {}, samplers++};
        bindings.push_back(binding);
    }
    made(unit, kernel, bindings, std::vector<Reader>(samplers + 1), false);
}

Program specialise(const Unit& unit, const Function& kernel, const std::vector<Binding>& bindings,
                   const std::vector<Reader>& readers) {
    return *made(unit, kernel, bindings, readers, true);
}

} // namespace engine::kernels
