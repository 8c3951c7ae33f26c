// From a checked kernel and its arguments to a program: functions are put in place of their calls, loops are
// unrolled, and what depends on constants alone is computed.
#pragma once

#include "program.h"
#include "syntax.h"

namespace engine::kernels {

/// What a parameter stands for.
struct Binding {
    enum class Kind { unknown, numbers, color, sampler, sample };
    Kind kind = Kind::unknown;
    std::array<float, 4> numbers{};
    /// Which colour or which sampler.
    int index = 0;
};

/// Throws Mistake for a kernel that cannot be specialised whatever its arguments are: for a loop whose number
/// of iterations does not follow from the text, and for one that becomes too long.
void verify(const Unit& unit, const Function& kernel);
/// The program that computes the kernel's result: a pixel, which for a warp is read from the last of the
/// samplers. Throws Mistake as verify() does.
Program specialise(const Unit& unit, const Function& kernel, const std::vector<Binding>& bindings,
                   const std::vector<Reader>& readers);

/// A value in the making: up to four numbers of a graph, or a sampler.
struct Operand {
    Type type;
    std::array<int, 4> lanes{-1, -1, -1, -1};
    int sampler = -1;
};

/// What a built-in function is made with.
struct Emitter {
    Graph& graph;
    const std::vector<Reader>& readers;
    /// Whether the readers are those of a render; otherwise nothing is known about them yet.
    bool known;

    int number(float v) { return graph.constant(v); }
    int add(int a, int b) { return graph.operation(Op::add, a, b); }
    int subtract(int a, int b) { return graph.operation(Op::subtract, a, b); }
    int multiply(int a, int b) { return graph.operation(Op::multiply, a, b); }
    int choose(int condition, int yes, int no) { return graph.operation(Op::choose, condition, yes, no); }
    /// An operation on each component; single numbers go with every component of the others.
    Operand each(Op op, Type type, const Operand& a, const Operand& b = {}, const Operand& c = {});
    int dot(const Operand& a, const Operand& b);
    Operand scaled(const Operand& v, int factor);
    Operand place();
    /// From where images are seen to where a sampler's pixels are.
    Operand toSampler(int sampler, const Operand& place);
    Operand read(int sampler, const Operand& at);
    /// x, y, width and height of a sampler.
    Operand extent(int sampler);
};

/// A built-in function.
struct Builtin {
    std::string_view name;
    /// The result, then the parameters: n for vectors of one size or single numbers, 1 to 4 for that many
    /// numbers, s for a sampler.
    std::string_view signature;
    /// What it makes of its operands; null when `op` does.
    Operand (*make)(Emitter& emit, const Operand* operands);
    Op op = Op::add;

    Operand operator()(Emitter& emit, Type result, const Operand* operands) const;
};

/// The built-in functions, those of one name side by side.
std::span<const Builtin> builtins();
/// A function of the language's ancestor that kernels do not have.
bool isMissingBuiltin(std::string_view name);

} // namespace engine::kernels
