// The values of filter inputs, between Cocoa's classes and the engine's variant.
#include "FilterValues.h"

#include "Internal.h"

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

engine::Bytes bytesOf(NSData* data) {
    auto* bytes = static_cast<const std::uint8_t*>([data bytes]);
    return engine::Bytes(bytes, bytes + [data length]);
}

} // namespace

id objectOf(const engine::Value& value) { return std::visit(ToObject(), value); }

std::optional<engine::Value> valueOf(id object, const std::string& className) {
    auto is = [object](Class c) { return [object isKindOfClass:c]; };
    if (className == "CIImage") {
        if (is([CIImage class])) return [(CIImage*)object recipe];
        if (is([CISampler class])) return [(CISampler*)object recipe];
    } else if (className == "NSNumber") {
        // Text is parsed as a number, as everywhere in Cocoa.
        if (is([NSNumber class]) || is([NSString class])) return [object doubleValue];
    } else if (className == "CIVector") {
        if (!is([CIVector class])) return {};
        engine::Numbers numbers([(CIVector*)object count]);
        for (size_t i = 0; i < numbers.size(); ++i) numbers[i] = [(CIVector*)object valueAtIndex:i];
        return numbers;
    } else if (className == "CIColor") {
        if (is([CIColor class])) return fromCG([(CIColor*)object CGColor]);
    } else if (className == "NSAffineTransform") {
        if (!is([NSAffineTransform class])) return {};
        NSAffineTransformStruct m = [(NSAffineTransform*)object transformStruct];
        return engine::Affine{m.m11, m.m12, m.m21, m.m22, m.tX, m.tY};
    } else if (className == "NSString") {
        if (is([NSString class])) return std::string([(NSString*)object UTF8String]);
    } else if (is([NSData class])) {
        return bytesOf((NSData*)object);
    } else if (cg::ColorSpace* space = cg::get<cg::ColorSpace>((CFTypeRef)object)) {
        // The engine takes a colour space as the bytes of its profile.
        return space->space()->iccData();
    }
    return {};
}

} // namespace ci
