// Colour spaces and their C functions.
#include <cg/colorspace.h>
#include <cg/dataprovider.h>

#include <algorithm>
#include <span>
#include <vector>

#include <lcms2.h>

namespace cg {

static LiveCount live("CGColorSpace");

color::ColorSpacePtr deviceGray() {
    static const color::ColorSpacePtr space = [] {
        const cmsFloat64Number parameters[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
        std::unique_ptr<cmsToneCurve, void (*)(cmsToneCurve*)> curve(
            cmsBuildParametricToneCurve(nullptr, 4, parameters), cmsFreeToneCurve);
        std::unique_ptr<void, cmsBool (*)(void*)> profile(cmsCreateGrayProfile(cmsD50_xyY(), curve.get()),
                                                          cmsCloseProfile);
        cmsUInt32Number size = 0;
        cmsSaveProfileToMem(profile.get(), nullptr, &size);
        std::vector<std::uint8_t> icc(size);
        cmsSaveProfileToMem(profile.get(), icc.data(), &size);
        return color::ColorSpace::fromICC(icc);
    }();
    return space;
}

ColorSpace::ColorSpace(color::ColorSpacePtr space, Life life, CFStringRef name)
    : Payload(life == Life::counted ? &live : nullptr), space_(std::move(space)), name_(name) {
    if (!space_) throw std::invalid_argument("no colour space");
}

std::string ColorSpace::detail() const { return " (" + space_->name() + ")"; }

bool ColorSpace::equals(const Payload& other) const {
    auto* theirs = dynamic_cast<const ColorSpace*>(&other);
    return theirs && space_->sameAs(*theirs->space_);
}

color::ColorSpacePtr spaceOf(CGColorSpaceRef ref) {
    ColorSpace* space = get<ColorSpace>(ref);
    return space ? space->space() : nullptr;
}

CGColorSpaceRef makeColorSpace(color::ColorSpacePtr space) noexcept {
    if (space == color::ColorSpace::sRGB()) return CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
    if (space == color::ColorSpace::deviceRGB()) return CGColorSpaceCreateDeviceRGB();
    if (space == color::ColorSpace::deviceCMYK()) return CGColorSpaceCreateDeviceCMYK();
    if (space == deviceGray()) return CGColorSpaceCreateDeviceGray();
    return make<ColorSpace>(std::move(space));
}

namespace {

/// An object that is made once and lives as long as the process; every caller gets a reference.
template <color::ColorSpacePtr (*space)()>
CGColorSpaceRef shared(CFStringRef name) {
    static const CGColorSpaceRef object = make<ColorSpace>(space(), ColorSpace::Life::endless, name);
    return CGColorSpaceRetain(object);
}

constexpr std::array<double, 3> d50 = {0.9642, 1, 0.8249};

/// The Mac's generic RGB before the days of sRGB: gamma 1.8 and the primaries of the displays of the time,
/// adapted to D50.
color::ColorSpacePtr genericRGB() {
    return color::ColorSpace::calibratedRGB(
        d50, {}, {1.8, 1.8, 1.8},
        {0.45427, 0.24263, 0.01482, 0.35332, 0.67441, 0.09042, 0.15661, 0.08296, 0.71966});
}

color::ColorSpacePtr genericGray() { return color::ColorSpace::calibratedGray(d50, {}, 1.8); }

struct Named {
    CFStringRef name;
    CGColorSpaceRef (*create)(CFStringRef);
};

std::array<double, 3> triple(const CGFloat* values, std::array<double, 3> missing) {
    return values ? std::array<double, 3>{values[0], values[1], values[2]} : missing;
}

} // namespace

} // namespace cg

using namespace cg;

CGColorSpaceRef CGColorSpaceCreateDeviceGray() { return shared<deviceGray>(nullptr); }
CGColorSpaceRef CGColorSpaceCreateDeviceRGB() { return shared<color::ColorSpace::deviceRGB>(nullptr); }
CGColorSpaceRef CGColorSpaceCreateDeviceCMYK() { return shared<color::ColorSpace::deviceCMYK>(nullptr); }

CGColorSpaceRef CGColorSpaceCreateWithName(CFStringRef name) {
    // Generic linear RGB is Core Image's working space, which has the primaries of sRGB.
    const Named all[] = {{kCGColorSpaceSRGB, shared<color::ColorSpace::sRGB>},
                         {kCGColorSpaceGenericRGB, shared<genericRGB>},
                         {kCGColorSpaceGenericRGBLinear, shared<color::ColorSpace::linearSRGB>},
                         {kCGColorSpaceAdobeRGB1998, shared<color::ColorSpace::adobeRGB>},
                         {kCGColorSpaceGenericGray, shared<genericGray>},
                         {kCGColorSpaceGenericGrayGamma2_2, shared<color::ColorSpace::deviceGray>},
                         {kCGColorSpaceGenericCMYK, shared<color::ColorSpace::deviceCMYK>}};
    if (!name) return nullptr;
    for (const Named& known : all)
        if (CFEqual(known.name, name)) return known.create(known.name);
    return nullptr;
}

CGColorSpaceRef CGColorSpaceCreateCalibratedGray(const CGFloat whitePoint[3], const CGFloat blackPoint[3],
                                                 CGFloat gamma) {
    if (!whitePoint) return nullptr;
    return guarded([&] {
        return make<ColorSpace>(
            color::ColorSpace::calibratedGray(triple(whitePoint, {}), triple(blackPoint, {}), gamma));
    });
}

CGColorSpaceRef CGColorSpaceCreateCalibratedRGB(const CGFloat whitePoint[3], const CGFloat blackPoint[3],
                                                const CGFloat gamma[3], const CGFloat matrix[9]) {
    if (!whitePoint) return nullptr;
    return guarded([&] {
        std::array<double, 9> primaries = {1, 0, 0, 0, 1, 0, 0, 0, 1};
        if (matrix) std::copy_n(matrix, 9, primaries.begin());
        return make<ColorSpace>(color::ColorSpace::calibratedRGB(
            triple(whitePoint, {}), triple(blackPoint, {}), triple(gamma, {1, 1, 1}), primaries));
    });
}

static CGColorSpaceRef createFromICC(const std::uint8_t* bytes, std::size_t size) {
    return guarded([&] { return make<ColorSpace>(color::ColorSpace::fromICC({bytes, size})); });
}

CGColorSpaceRef CGColorSpaceCreateWithICCProfile(CFDataRef data) {
    return data ? createFromICC(CFDataGetBytePtr(data), static_cast<std::size_t>(CFDataGetLength(data)))
                : nullptr;
}

CGColorSpaceRef CGColorSpaceCreateICCBased(size_t componentCount, const CGFloat* range,
                                           CGDataProviderRef profile, CGColorSpaceRef alternate) {
    if (DataProvider* data = get<DataProvider>(profile)) {
        auto space = Retained<CGColorSpaceRef>::adopt(createFromICC(data->bytes(), data->size()));
        if (CGColorSpaceGetNumberOfComponents(space.get()) == componentCount && space) return space.release();
    }
    return CGColorSpaceGetNumberOfComponents(alternate) == componentCount ? CGColorSpaceRetain(alternate)
                                                                          : nullptr;
}

size_t CGColorSpaceGetNumberOfComponents(CGColorSpaceRef space) {
    ColorSpace* self = get<ColorSpace>(space);
    return self ? static_cast<size_t>(self->components()) : 0;
}

CGColorSpaceModel CGColorSpaceGetModel(CGColorSpaceRef space) {
    ColorSpace* self = get<ColorSpace>(space);
    if (!self) return kCGColorSpaceModelUnknown;
    switch (self->space()->model()) {
    case color::Model::gray:
        return kCGColorSpaceModelMonochrome;
    case color::Model::rgb:
        return kCGColorSpaceModelRGB;
    case color::Model::cmyk:
        return kCGColorSpaceModelCMYK;
    case color::Model::lab:
        return kCGColorSpaceModelLab;
    }
    return kCGColorSpaceModelUnknown;
}

CFDataRef CGColorSpaceCopyICCProfile(CGColorSpaceRef space) {
    ColorSpace* self = get<ColorSpace>(space);
    if (!self || self->space()->iccData().empty()) return nullptr;
    const auto& icc = self->space()->iccData();
    return CFDataCreate(kCFAllocatorDefault, icc.data(), static_cast<CFIndex>(icc.size()));
}

CFStringRef CGColorSpaceCopyName(CGColorSpaceRef space) {
    ColorSpace* self = get<ColorSpace>(space);
    return self && self->name() ? static_cast<CFStringRef>(CFRetain(self->name())) : nullptr;
}

CGColorSpaceRef CGColorSpaceRetain(CGColorSpaceRef space) {
    if (space) CFRetain(space);
    return space;
}

void CGColorSpaceRelease(CGColorSpaceRef space) {
    if (space) CFRelease(space);
}
