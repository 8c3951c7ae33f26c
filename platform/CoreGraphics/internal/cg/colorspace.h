// The payload of CGColorSpace objects.
#pragma once

#include <CoreGraphics/CGColorSpace.h>

#include <cg/object.h>
#include <color/color.h>

namespace cg {

class CG_INTERNAL ColorSpace final : public Payload {
  public:
    using Ref = CGColorSpaceRef;

    /// The device spaces and the named ones live as long as the process.
    enum class Life { counted, endless };

    /// Throws std::invalid_argument for null.
    explicit ColorSpace(color::ColorSpacePtr space, Life life = Life::counted, CFStringRef name = nullptr);

    const char* typeName() const override { return "CGColorSpace"; }
    std::string detail() const override;
    bool equals(const Payload& other) const override;
    std::size_t hash() const override { return static_cast<std::size_t>(space_->components()); }

    const color::ColorSpacePtr& space() const { return space_; }
    int components() const { return space_->components(); }
    CFStringRef name() const { return name_; }

  private:
    color::ColorSpacePtr space_;
    CFStringRef name_;
};

/// Gray with sRGB's curve, so that it is the same gray as equal parts of device RGB.
CG_INTERNAL color::ColorSpacePtr deviceGray();
/// The colour space behind the reference; null for null.
CG_INTERNAL color::ColorSpacePtr spaceOf(CGColorSpaceRef ref);
/// An object for `space`, with one reference: the shared one for sRGB and the device spaces, otherwise a new
/// one.
CG_INTERNAL CGColorSpaceRef makeColorSpace(color::ColorSpacePtr space) noexcept;

} // namespace cg
