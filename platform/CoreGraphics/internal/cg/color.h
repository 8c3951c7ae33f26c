// The payload of CGColor objects.
#pragma once

#include <CoreGraphics/CGColor.h>

#include <cg/colorspace.h>

#include <vector>

namespace cg {

class CG_INTERNAL Color final : public Payload {
  public:
    using Ref = CGColorRef;

    /// The components of the space, then alpha.
    Color(CGColorSpaceRef space, std::vector<CGFloat> components);

    const char* typeName() const override { return "CGColor"; }
    std::string detail() const override;
    bool equals(const Payload& other) const override;
    std::size_t hash() const override { return components_.size(); }

    CGColorSpaceRef space() const { return space_.get(); }
    const std::vector<CGFloat>& components() const { return components_; }

  private:
    Retained<CGColorSpaceRef> space_;
    std::vector<CGFloat> components_;
};

/// The components of the colour in another space, and alpha; empty for null.
CG_INTERNAL std::vector<CGFloat> convertColor(CGColorRef color, CGColorSpaceRef space) noexcept;

} // namespace cg
