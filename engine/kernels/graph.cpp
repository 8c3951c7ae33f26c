// From values that depend on each other to a line of operations on registers.
#include "program.h"

#include <bit>

namespace engine::kernels {

int operandsOf(Op op) {
    switch (op) {
#define KERNEL_COUNT(name, count, formula)                                                                   \
    case Op::name:                                                                                           \
        return count;
        KERNEL_OPERATIONS(KERNEL_COUNT)
#undef KERNEL_COUNT
    case Op::read:
        return 2;
    case Op::component:
        return 1;
    default:
        return 0;
    }
}

int Graph::value(const Value& v) {
    std::array<int, 5> key{static_cast<int>(v.op), v.operands[0], v.operands[1], v.operands[2],
                           std::bit_cast<int>(v.constant)};
    auto [found, isNew] = numbers_.try_emplace(key, static_cast<int>(values_.size()));
    if (isNew) {
        if (values_.size() == mostValues) throw TooLong();
        values_.push_back(v);
        linear_.push_back(linearOf(v));
    }
    return found->second;
}

int Graph::constant(float v) { return value({Op::constant, {-1, -1, -1}, v}); }

std::optional<float> Graph::known(int v) const {
    if (values_[v].op != Op::constant) return {};
    return values_[v].constant;
}

int Graph::operation(Op op, int a, int b, int c) {
    auto knownA = known(a), knownB = b < 0 ? 0.f : known(b), knownC = c < 0 ? 0.f : known(c);
    if (knownA && knownB && knownC) return constant(computed(op, *knownA, *knownB, *knownC));
    // What changes nothing is left out: kernels with their arguments filled in are full of it.
    if (op == Op::choose && knownA) return *knownA != 0 ? b : c;
    if (op == Op::choose && b == c) return b;
    if (op == Op::multiply && knownA == 1.f) return b;
    if ((op == Op::multiply || op == Op::divide) && knownB == 1.f) return a;
    if (op == Op::add && knownA == 0.f) return b;
    if ((op == Op::add || op == Op::subtract) && knownB == 0.f) return a;
    return value({op, {a, b, c}});
}

int Graph::read(int index, int u, int v, int component) {
    int reading = value({Op::read, {u, v, index}});
    return value({Op::component, {reading, component, -1}});
}

std::optional<Graph::Linear> Graph::linearOf(const Value& v) const {
    auto of = [&](int i) { return i < 0 ? std::optional<Linear>() : linear_[v.operands[i]]; };
    auto sum = [](const Linear& p, const Linear& q, double factor) {
        return Linear{p.x + factor * q.x, p.y + factor * q.y, p.rest + factor * q.rest};
    };
    switch (v.op) {
    case Op::constant:
        return Linear{0, 0, static_cast<double>(v.constant)};
    case Op::placeX:
        return Linear{1, 0, 0};
    case Op::placeY:
        return Linear{0, 1, 0};
    case Op::negate:
        if (auto a = of(0)) return sum({}, *a, -1);
        return {};
    case Op::add:
    case Op::subtract:
        if (auto a = of(0), b = of(1); a && b) return sum(*a, *b, v.op == Op::add ? 1 : -1);
        return {};
    case Op::multiply:
        if (auto a = of(0), b = of(1); a && b) {
            if (b->x == 0 && b->y == 0) return sum({}, *a, b->rest);
            if (a->x == 0 && a->y == 0) return sum({}, *b, a->rest);
        }
        return {};
    default:
        return {};
    }
}

namespace {

/// The most that neighbours of one sampler lie apart; farther ones are read one by one.
constexpr int mostApart = 512;

} // namespace

Program Graph::program(const std::array<int, 4>& result, const std::vector<Reader>& readers) const {
    int count = static_cast<int>(values_.size());
    std::vector<Value> values = values_;
    std::vector<int> uses(count, 0);
    std::vector<char> wanted(count, 0);
    for (int v : result) wanted[v] = 1, ++uses[v];
    for (int v = count - 1; v >= 0; --v)
        if (wanted[v])
            for (int i = 0; i < operandsOf(values[v].op); ++i)
                wanted[values[v].operands[i]] = 1, ++uses[values[v].operands[i]];

    // A product that only a sum needs becomes one step with it.
    for (int v = 0; v < count; ++v) {
        if (!wanted[v] || values[v].op != Op::add) continue;
        for (int i : {0, 1}) {
            int product = values[v].operands[i], other = values[v].operands[1 - i];
            if (values[product].op != Op::multiply || uses[product] != 1) continue;
            values[v] = {Op::multiplyAdd, {values[product].operands[0], values[product].operands[1], other}};
            wanted[product] = 0;
            break;
        }
    }

    // How far each sampler is read.
    Program made;
    made.uses.resize(readers.size());
    struct Offset {
        int dx, dy;
    };
    std::vector<std::optional<Offset>> offsets(count);
    for (Program::Use& use : made.uses) use = {false, true, {}, std::vector<Affine>()};
    for (int v = 0; v < count; ++v) {
        if (!wanted[v] || values[v].op != Op::read) continue;
        auto [u, w, index] = values[v].operands;
        Program::Use& use = made.uses[index];
        auto across = linear_[u], along = linear_[w];
        if (!across || !along) {
            use.read = true, use.neighboursOnly = false;
            use.places.reset();
            continue;
        }
        if (use.places)
            use.places->push_back({across->x, along->x, across->y, along->y, across->rest, along->rest});
        bool moved = across->x == 1 && across->y == 0 && along->x == 0 && along->y == 1;
        double dx = across->rest, dy = along->rest;
        if (readers[index].interpolation == Interpolation::nearest)
            dx = std::floor(dx + 0.5), dy = std::floor(dy + 0.5);
        bool isWhole =
            dx == std::floor(dx) && dy == std::floor(dy) && std::abs(dx) < 1 << 20 && std::abs(dy) < 1 << 20;
        if (!moved || !isWhole) {
            use.read = true, use.neighboursOnly = false;
            continue;
        }
        Offset offset{static_cast<int>(dx), static_cast<int>(dy)};
        offsets[v] = offset;
        IntRect here{offset.dx, offset.dy, offset.dx, offset.dy};
        use.box = !use.read ? here
                            : IntRect{std::min(use.box.x0, here.x0), std::min(use.box.y0, here.y0),
                                      std::max(use.box.x1, here.x1), std::max(use.box.y1, here.y1)};
        use.read = true;
        if (use.box.width() > mostApart || use.box.height() > mostApart) use.neighboursOnly = false;
    }

    // The last step that needs each value; registers are used again after it. What holds for a whole render
    // keeps its register.
    std::vector<int> last(count, -1);
    for (int v = 0; v < count; ++v)
        if (wanted[v])
            for (int i = 0; i < operandsOf(values[v].op); ++i) last[values[v].operands[i]] = v;
    for (int v : result) last[v] = count;
    std::vector<Program::Register> of(count, 0), idle;
    auto fresh = [&]() -> Program::Register { return static_cast<Program::Register>(made.registers++); };
    auto take = [&] {
        if (idle.empty()) return fresh();
        Program::Register r = idle.back();
        idle.pop_back();
        return r;
    };
    std::vector<char> lasting(count, 0);
    std::vector<std::array<int, 4>> components(count, {-1, -1, -1, -1});
    for (int v = 0; v < count; ++v)
        if (wanted[v] && values[v].op == Op::component)
            components[values[v].operands[0]][values[v].operands[1]] = v;

    for (int v = 0; v < count; ++v) {
        if (!wanted[v]) continue;
        const Value& now = values[v];
        auto release = [&] {
            for (int i = 0; i < operandsOf(now.op); ++i) {
                int operand = now.operands[i];
                if (last[operand] == v && !lasting[operand])
                    idle.push_back(of[operand]), lasting[operand] = 1;
            }
        };
        auto operand = [&](int i) {
            return i < operandsOf(now.op) ? of[now.operands[i]] : Program::Register{};
        };
        switch (now.op) {
        case Op::constant:
            of[v] = fresh(), lasting[v] = 1;
            made.constants.push_back({of[v], now.constant});
            break;
        case Op::color:
            of[v] = fresh(), lasting[v] = 1;
            made.colors.push_back({of[v], now.operands[0], now.operands[1]});
            break;
        case Op::placeX:
            of[v] = fresh(), lasting[v] = 1;
            made.placeX = of[v];
            break;
        case Op::placeY:
            of[v] = fresh(), lasting[v] = 1;
            made.placeY = of[v];
            break;
        case Op::read: {
            int index = now.operands[2];
            // A component that nothing needs has a register all the same, which is free right after.
            std::array<Program::Register, 4> to;
            bool neighbour = made.uses[index].neighboursOnly;
            for (Program::Register& r : to) r = neighbour ? fresh() : take();
            if (neighbour) {
                made.neighbours.push_back({index, offsets[v]->dx, offsets[v]->dy, to});
            } else {
                made.steps.push_back({Op::read, static_cast<Program::Register>(made.readings.size()),
                                      operand(0), operand(1), 0});
                made.readings.push_back({index, to});
                release();
            }
            for (int c = 0; c < 4; ++c) {
                int part = components[v][c];
                if (part >= 0)
                    of[part] = to[c], lasting[part] = neighbour;
                else if (!neighbour)
                    idle.push_back(to[c]);
            }
            lasting[v] = 1;
            break;
        }
        case Op::component:
        case Op::unknown:
            break;
        default: {
            Program::Step step{now.op, 0, operand(0), operand(1), operand(2)};
            release();
            step.to = of[v] = take();
            made.steps.push_back(step);
        }
        }
    }
    for (int i = 0; i < 4; ++i) made.result[i] = of[result[i]];
    return made;
}

} // namespace engine::kernels
