// Colours and their C functions.
#include <CoreGraphics/CGColor.h>

#include "ColorMatch.h"

#include <cg/color.h>

#include <algorithm>

namespace cg {

static LiveCount live("CGColor");

Color::Color(CGColorSpaceRef space, std::vector<CGFloat> components)
    : Payload(&live), space_(space), components_(std::move(components)) {}

bool Color::equals(const Payload& other) const {
    auto* theirs = dynamic_cast<const Color*>(&other);
    return theirs && components_ == theirs->components_ && CFEqual(space_.get(), theirs->space_.get());
}

std::string Color::detail() const {
    std::string text = " [";
    for (CGFloat c : components_) text += (text.size() > 2 ? " " : "") + std::to_string(c);
    return text + "]";
}

std::vector<CGFloat> convertColor(CGColorRef ref, CGColorSpaceRef space) noexcept {
    const Color* color = get<Color>(ref);
    const ColorSpace* to = get<ColorSpace>(space);
    if (!color || !to) return {};
    return guarded([&] {
        std::array<float, 5> value = {};
        Planes planes;
        for (std::size_t k = 0; k < planes.size(); ++k) planes[k] = &value[k];
        std::copy(color->components().begin(), color->components().end() - 1, value.begin());
        ColorMatch(get<ColorSpace>(color->space()), to, false).apply(planes, 1);
        std::vector<CGFloat> components(value.begin(), value.begin() + to->components());
        components.push_back(color->components().back());
        return components;
    });
}

} // namespace cg

using namespace cg;

CGColorRef CGColorCreate(CGColorSpaceRef space, const CGFloat components[]) {
    ColorSpace* meaning = get<ColorSpace>(space);
    if (!meaning || !components) return nullptr;
    return guarded([&] {
        return make<Color>(space, std::vector<CGFloat>(components, components + meaning->components() + 1));
    });
}

static CGColorRef createIn(CFStringRef spaceName, std::initializer_list<CGFloat> components) {
    auto space = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(spaceName));
    return CGColorCreate(space.get(), components.begin());
}

CGColorRef CGColorCreateGenericGray(CGFloat gray, CGFloat alpha) {
    return createIn(kCGColorSpaceGenericGrayGamma2_2, {gray, alpha});
}
CGColorRef CGColorCreateGenericRGB(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha) {
    return createIn(kCGColorSpaceGenericRGB, {red, green, blue, alpha});
}
CGColorRef CGColorCreateGenericCMYK(CGFloat cyan, CGFloat magenta, CGFloat yellow, CGFloat black,
                                    CGFloat alpha) {
    return createIn(kCGColorSpaceGenericCMYK, {cyan, magenta, yellow, black, alpha});
}

CGColorRef CGColorCreateCopy(CGColorRef color) { return CGColorRetain(color); }

CGColorRef CGColorCreateCopyWithAlpha(CGColorRef color, CGFloat alpha) {
    Color* self = get<Color>(color);
    if (!self) return nullptr;
    return guarded([&] {
        std::vector<CGFloat> components = self->components();
        components.back() = alpha;
        return make<Color>(self->space(), std::move(components));
    });
}

bool CGColorEqualToColor(CGColorRef a, CGColorRef b) { return a == b || (a && b && CFEqual(a, b)); }

size_t CGColorGetNumberOfComponents(CGColorRef color) {
    Color* self = get<Color>(color);
    return self ? self->components().size() : 0;
}

const CGFloat* CGColorGetComponents(CGColorRef color) {
    Color* self = get<Color>(color);
    return self ? self->components().data() : nullptr;
}

CGFloat CGColorGetAlpha(CGColorRef color) {
    Color* self = get<Color>(color);
    return self ? self->components().back() : 0;
}

CGColorSpaceRef CGColorGetColorSpace(CGColorRef color) {
    Color* self = get<Color>(color);
    return self ? self->space() : nullptr;
}

CGColorRef CGColorRetain(CGColorRef color) {
    if (color) CFRetain(color);
    return color;
}

void CGColorRelease(CGColorRef color) {
    if (color) CFRelease(color);
}
