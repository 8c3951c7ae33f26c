// The built-in functions, by what they are made of.
#include "specialiser.h"

#include <algorithm>
#include <numbers>

namespace engine::kernels {

Operand Emitter::each(Op op, Type type, const Operand& a, const Operand& b, const Operand& c) {
    Operand made{type};
    for (int i = 0; i < type.size; ++i) {
        auto lane = [i](const Operand& o) { return o.lanes[o.type.size == 1 ? 0 : i]; };
        made.lanes[i] = graph.operation(op, lane(a), lane(b), lane(c));
    }
    return made;
}

int Emitter::dot(const Operand& a, const Operand& b) {
    int sum = multiply(a.lanes[0], b.lanes[0]);
    for (int i = 1; i < a.type.size; ++i) sum = add(sum, multiply(a.lanes[i], b.lanes[i]));
    return sum;
}

Operand Emitter::scaled(const Operand& v, int factor) {
    return each(Op::multiply, v.type, v, {vec(1), {factor}});
}

Operand Emitter::place() { return {vec(2), {graph.placeX(), graph.placeY()}}; }

Operand Emitter::toSampler(int sampler, const Operand& at) {
    const Affine& m = readers[sampler].fromPlace;
    auto row = [&](double x, double y, double rest) {
        auto term = [&](double factor, int lane) {
            return multiply(lane, number(static_cast<float>(factor)));
        };
        int sum = number(static_cast<float>(rest));
        if (x != 0) sum = add(term(x, at.lanes[0]), sum);
        if (y != 0) sum = add(term(y, at.lanes[1]), sum);
        return sum;
    };
    return {vec(2), {row(m.a, m.c, m.tx), row(m.b, m.d, m.ty)}};
}

Operand Emitter::read(int sampler, const Operand& at) {
    Operand made{vec(4)};
    for (int c = 0; c < 4; ++c) made.lanes[c] = graph.read(sampler, at.lanes[0], at.lanes[1], c);
    return made;
}

Operand Emitter::extent(int sampler) {
    Operand made{vec(4)};
    const Rect& r = readers[sampler].extent;
    const double edges[]{r.x0, r.y0, r.width(), r.height()};
    for (int i = 0; i < 4; ++i)
        made.lanes[i] = known ? number(static_cast<float>(edges[i])) : graph.unknown();
    return made;
}

namespace {

using std::numbers::pi;

Operand single(int lane) { return {vec(1), {lane}}; }

/// An operand times a constant, before or after an operation.
template <Op op>
Operand before(Emitter& emit, const Operand& a, double factor) {
    return emit.each(op, a.type, emit.scaled(a, emit.number(static_cast<float>(factor))));
}
template <Op op>
Operand after(Emitter& emit, const Operand& a, double factor) {
    return emit.scaled(emit.each(op, a.type, a), emit.number(static_cast<float>(factor)));
}

Operand sine(Emitter& emit, const Operand* o) { return emit.each(Op::sine, o[0].type, o[0]); }
Operand cosine(Emitter& emit, const Operand* o) { return emit.each(Op::cosine, o[0].type, o[0]); }
Operand tangent(Emitter& emit, const Operand* o) {
    return emit.each(Op::divide, o[0].type, sine(emit, o), cosine(emit, o));
}
Operand cosineAndSine(Emitter& emit, const Operand* o) {
    return {vec(2), {cosine(emit, o).lanes[0], sine(emit, o).lanes[0]}};
}
Operand sineAndCosine(Emitter& emit, const Operand* o) {
    return {vec(2), {sine(emit, o).lanes[0], cosine(emit, o).lanes[0]}};
}
/// sqrt(1 - x^2), the other side of the triangle that arc functions measure.
Operand otherSide(Emitter& emit, const Operand& x) {
    Operand one = single(emit.number(1));
    Operand square = emit.each(Op::multiply, x.type, emit.each(Op::subtract, x.type, one, x),
                               emit.each(Op::add, x.type, one, x));
    return emit.each(Op::squareRoot, x.type, square);
}
Operand arcSine(Emitter& emit, const Operand* o) {
    return emit.each(Op::arcTangent, o[0].type, o[0], otherSide(emit, o[0]));
}
Operand arcCosine(Emitter& emit, const Operand* o) {
    return emit.each(Op::arcTangent, o[0].type, otherSide(emit, o[0]), o[0]);
}
Operand arcTangent(Emitter& emit, const Operand* o) {
    return emit.each(Op::arcTangent, o[0].type, o[0], single(emit.number(1)));
}
Operand clamped(Emitter& emit, const Operand* o) {
    return emit.each(Op::minimum, o[0].type, emit.each(Op::maximum, o[0].type, o[0], o[1]), o[2]);
}
Operand mixed(Emitter& emit, const Operand* o) {
    Type type = o[0].type;
    return emit.each(Op::add, type,
                     emit.each(Op::multiply, type, emit.each(Op::subtract, type, o[1], o[0]), o[2]), o[0]);
}
Operand stepped(Emitter& emit, const Operand* o) { return emit.each(Op::atMost, o[1].type, o[0], o[1]); }
/// 3t^2 - 2t^3 between the edges.
Operand smoothStepped(Emitter& emit, const Operand* o) {
    Type type = o[2].type;
    Operand t = emit.each(Op::divide, type, emit.each(Op::subtract, type, o[2], o[0]),
                          emit.each(Op::subtract, type, o[1], o[0]));
    const Operand unit[]{t, single(emit.number(0)), single(emit.number(1))};
    t = clamped(emit, unit);
    Operand rest = emit.each(Op::subtract, type, single(emit.number(3)), emit.scaled(t, emit.number(2)));
    return emit.each(Op::multiply, type, emit.each(Op::multiply, type, t, t), rest);
}
Operand compared(Emitter& emit, const Operand* o) {
    Operand below = emit.each(Op::less, o[0].type, o[0], single(emit.number(0)));
    return emit.each(Op::choose, o[0].type, below, o[1], o[2]);
}
Operand dotted(Emitter& emit, const Operand* o) { return single(emit.dot(o[0], o[1])); }
Operand lengthOf(Emitter& emit, const Operand* o) {
    return single(emit.graph.operation(Op::squareRoot, emit.dot(o[0], o[0])));
}
Operand distanceOf(Emitter& emit, const Operand* o) {
    Operand way = emit.each(Op::subtract, o[0].type, o[0], o[1]);
    return lengthOf(emit, &way);
}
Operand normalized(Emitter& emit, const Operand* o) {
    return emit.scaled(o[0], emit.graph.operation(Op::inverseRoot, emit.dot(o[0], o[0])));
}
Operand crossed(Emitter& emit, const Operand* o) {
    Operand made{vec(3)};
    const auto &a = o[0].lanes, &b = o[1].lanes;
    for (int i = 0; i < 3; ++i) {
        int j = (i + 1) % 3, k = (i + 2) % 3;
        made.lanes[i] = emit.subtract(emit.multiply(a[j], b[k]), emit.multiply(a[k], b[j]));
    }
    return made;
}
Operand facingForward(Emitter& emit, const Operand* o) {
    Operand against = single(emit.graph.operation(Op::less, emit.dot(o[2], o[1]), emit.number(0)));
    return emit.each(Op::choose, o[0].type, against, o[0], emit.each(Op::negate, o[0].type, o[0]));
}
Operand reflected(Emitter& emit, const Operand* o) {
    int twice = emit.multiply(emit.number(2), emit.dot(o[1], o[0]));
    return emit.each(Op::subtract, o[0].type, o[0], emit.scaled(o[1], twice));
}
/// The colours times a number; alpha stays.
Operand colorsTimes(Emitter& emit, const Operand& pixel, int factor) {
    Operand made = emit.scaled(pixel, factor);
    made.lanes[3] = pixel.lanes[3];
    return made;
}

constexpr Builtin table[]{
    {"radians", "nn",
     [](Emitter& e, const Operand* o) { return e.scaled(o[0], e.number(static_cast<float>(pi / 180))); }},
    {"degrees", "nn",
     [](Emitter& e, const Operand* o) { return e.scaled(o[0], e.number(static_cast<float>(180 / pi))); }},
    {"sin", "nn", sine},
    {"cos", "nn", cosine},
    {"tan", "nn", tangent},
    {"asin", "nn", arcSine},
    {"acos", "nn", arcCosine},
    {"atan", "nn", arcTangent},
    {"atan", "nnn", nullptr, Op::arcTangent},
    {"sin_", "nn", sine},
    {"cos_", "nn", cosine},
    {"tan_", "nn", tangent},
    {"cossin", "21", cosineAndSine},
    {"cossin_", "21", cosineAndSine},
    {"sincos", "21", sineAndCosine},
    {"sincos_", "21", sineAndCosine},
    {"pow", "nnn", nullptr, Op::power},
    {"exp", "nn",
     [](Emitter& e, const Operand* o) { return before<Op::exp2>(e, o[0], std::numbers::log2e); }},
    {"log", "nn", [](Emitter& e, const Operand* o) { return after<Op::log2>(e, o[0], std::numbers::ln2); }},
    {"exp2", "nn", nullptr, Op::exp2},
    {"log2", "nn", nullptr, Op::log2},
    {"sqrt", "nn", nullptr, Op::squareRoot},
    {"inversesqrt", "nn", nullptr, Op::inverseRoot},
    {"rsqrt", "nn", nullptr, Op::inverseRoot},
    {"abs", "nn", nullptr, Op::absolute},
    {"sign", "nn", nullptr, Op::sign},
    {"floor", "nn", nullptr, Op::floor},
    {"ceil", "nn", nullptr, Op::ceiling},
    {"fract", "nn", nullptr, Op::fraction},
    {"mod", "nnn", nullptr, Op::modulo},
    {"mod", "nn1", nullptr, Op::modulo},
    {"min", "nnn", nullptr, Op::minimum},
    {"min", "nn1", nullptr, Op::minimum},
    {"max", "nnn", nullptr, Op::maximum},
    {"max", "nn1", nullptr, Op::maximum},
    {"clamp", "nnnn", clamped},
    {"clamp", "nn11", clamped},
    {"mix", "nnnn", mixed},
    {"mix", "nnn1", mixed},
    {"step", "nnn", stepped},
    {"step", "n1n", stepped},
    {"smoothstep", "nnnn", smoothStepped},
    {"smoothstep", "n11n", smoothStepped},
    {"compare", "nnnn", compared},
    {"length", "1n", lengthOf},
    {"distance", "1nn", distanceOf},
    {"dot", "1nn", dotted},
    {"cross", "333", crossed},
    {"normalize", "nn", normalized},
    {"faceforward", "nnnn", facingForward},
    {"reflect", "nnn", reflected},
    {"premultiply", "44", [](Emitter& e, const Operand* o) { return colorsTimes(e, o[0], o[0].lanes[3]); }},
    {"unpremultiply", "44",
     [](Emitter& e, const Operand* o) {
         return colorsTimes(e, o[0], e.graph.operation(Op::inverseAlpha, o[0].lanes[3]));
     }},
    {"destCoord", "2", [](Emitter& e, const Operand*) { return e.place(); }},
    {"sample", "4s2", [](Emitter& e, const Operand* o) { return e.read(o[0].sampler, o[1]); }},
    {"samplerCoord", "2s", [](Emitter& e, const Operand* o) { return e.toSampler(o[0].sampler, e.place()); }},
    {"samplerTransform", "2s2", [](Emitter& e, const Operand* o) { return e.toSampler(o[0].sampler, o[1]); }},
    {"samplerExtent", "4s", [](Emitter& e, const Operand* o) { return e.extent(o[0].sampler); }},
    {"samplerOrigin", "2s",
     [](Emitter& e, const Operand* o) {
         Operand all = e.extent(o[0].sampler);
         return Operand{vec(2), {all.lanes[0], all.lanes[1]}};
     }},
    {"samplerSize", "2s",
     [](Emitter& e, const Operand* o) {
         Operand all = e.extent(o[0].sampler);
         return Operand{vec(2), {all.lanes[2], all.lanes[3]}};
     }},
};

} // namespace

Operand Builtin::operator()(Emitter& emit, Type result, const Operand* operands) const {
    if (make) return make(emit, operands);
    const Operand none;
    return emit.each(op, result, operands[0], signature.size() > 2 ? operands[1] : none);
}

std::span<const Builtin> builtins() { return table; }

bool isMissingBuiltin(std::string_view name) {
    constexpr std::string_view missing[]{"ftransform", "matrixCompMult", "dFdx",   "dFdy",   "fwidth",
                                         "noise1",     "noise2",         "noise3", "noise4", "refract",
                                         "texture2D",  "lessThan",       "any",    "all",    "not"};
    return std::find(std::begin(missing), std::end(missing), name) != std::end(missing);
}

} // namespace engine::kernels
