// The values of filter inputs, between Cocoa's classes and the engine's variant.
#include "FilterValues.h"

#include "Internal.h"

#include <cf/memory.h>
#include <cg/colorspace.h>

namespace ci {

namespace {

/// One overload for each kind of value.
struct ToObject {
    id operator()(double v) const { return [NSNumber numberWithDouble:v]; }
    id operator()(const engine::Numbers& v) const {
        std::vector<CGFloat> values(v.begin(), v.end());
        return [CIVector vectorWithValues:values.data() count:values.size()];
    }
    id operator()(const engine::Color& c) const {
        return [CIColor colorWithRed:static_cast<CGFloat>(c.r)
                               green:static_cast<CGFloat>(c.g)
                                blue:static_cast<CGFloat>(c.b)
                               alpha:static_cast<CGFloat>(c.a)];
    }
    id operator()(const engine::Affine& m) const {
        NSAffineTransform* transform = [NSAffineTransform transform];
        auto f = [](double v) { return static_cast<CGFloat>(v); };
        [transform setTransformStruct:{f(m.a), f(m.b), f(m.c), f(m.d), f(m.tx), f(m.ty)}];
        return transform;
    }
    id operator()(const engine::Image& v) const { return [CIImage imageWithRecipe:v]; }
    id operator()(const std::string& v) const { return [NSString stringWithUTF8String:v.c_str()]; }
    id operator()(const engine::Bytes& v) const { return [NSData dataWithBytes:v.data() length:v.size()]; }
};

using MaybeValue = std::optional<engine::Value>;

MaybeValue imageIn(id object) {
    if ([object isKindOfClass:[CISampler class]]) return [(CISampler*)object recipe];
    if ([object isKindOfClass:[CIImage class]]) return [(CIImage*)object recipe];
    return {};
}

/// Text counts as the number that it says, as everywhere in Cocoa.
MaybeValue numberIn(id object) {
    bool says = [object isKindOfClass:[NSNumber class]] || [object isKindOfClass:[NSString class]];
    return says ? MaybeValue([object doubleValue]) : std::nullopt;
}

MaybeValue vectorIn(id object) {
    if (![object isKindOfClass:[CIVector class]]) return {};
    engine::Numbers numbers([(CIVector*)object count]);
    for (size_t i = 0; i < numbers.size(); ++i) numbers[i] = [(CIVector*)object valueAtIndex:i];
    return numbers;
}

MaybeValue colorIn(id object) {
    if (![object isKindOfClass:[CIColor class]]) return {};
    return fromCG([(CIColor*)object CGColor]);
}

MaybeValue transformIn(id object) {
    if (![object isKindOfClass:[NSAffineTransform class]]) return {};
    NSAffineTransformStruct m = [(NSAffineTransform*)object transformStruct];
    return engine::Affine{m.m11, m.m12, m.m21, m.m22, m.tX, m.tY};
}

MaybeValue textIn(id object) {
    if (![object isKindOfClass:[NSString class]]) return {};
    return std::string([(NSString*)object UTF8String]);
}

MaybeValue dataIn(id object) {
    if (![object isKindOfClass:[NSData class]]) return {};
    auto* bytes = static_cast<const std::uint8_t*>([(NSData*)object bytes]);
    return engine::Bytes(bytes, bytes + [(NSData*)object length]);
}

/// A colour space, or the data of its profile.
MaybeValue profileIn(id object) {
    if (MaybeValue data = dataIn(object)) return data;
    cg::ColorSpace* space = cg::get<cg::ColorSpace>((CFTypeRef)object);
    return space ? MaybeValue(space->space()->iccData()) : std::nullopt;
}

/// How a kind of input appears in Cocoa.
struct Face {
    NSString* className;
    MaybeValue (*valueIn)(id object);
};

Face faceOf(engine::InputKind kind) {
    switch (kind) {
    case engine::InputKind::number:
        return {@"NSNumber", numberIn};
    case engine::InputKind::vector:
        return {@"CIVector", vectorIn};
    case engine::InputKind::color:
        return {@"CIColor", colorIn};
    case engine::InputKind::transform:
        return {@"NSAffineTransform", transformIn};
    case engine::InputKind::image:
        return {@"CIImage", imageIn};
    case engine::InputKind::text:
        return {@"NSString", textIn};
    case engine::InputKind::data:
        return {@"NSData", dataIn};
    case engine::InputKind::colorSpace:
        return {@"NSObject", profileIn}; // which is not a class that Cocoa knows
    }
}

} // namespace

id objectOf(const engine::Value& value) {
    return cf::inMemory([&] { return std::visit(ToObject(), value); });
}

NSString* classNameOf(engine::InputKind kind) { return faceOf(kind).className; }

std::optional<engine::Value> valueOf(id object, engine::InputKind kind) {
    return cf::inMemory([&] { return faceOf(kind).valueIn(object); });
}

} // namespace ci
