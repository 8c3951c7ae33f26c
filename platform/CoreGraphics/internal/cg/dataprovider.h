// The payload of CGDataProvider objects.
#pragma once

#include <CoreGraphics/CGDataProvider.h>

#include <cg/object.h>

#include <cstdint>
#include <functional>
#include <string>

namespace cg {

/// Bytes that stay where they are as long as the object lives.
class CG_INTERNAL DataProvider final : public Payload {
  public:
    using Ref = CGDataProviderRef;

    /// `release` is called at the end, and until then keeps what it captures alive.
    DataProvider(const std::uint8_t* bytes, std::size_t size, std::function<void()> release);
    ~DataProvider() override;

    const char* typeName() const override { return "CGDataProvider"; }
    const std::uint8_t* bytes() const { return bytes_; }
    std::size_t size() const { return size_; }

  private:
    const std::uint8_t* bytes_;
    std::size_t size_;
    std::function<void()> release_;
};

/// A provider of bytes that `owner` keeps alive. Null if memory is short.
CG_INTERNAL CGDataProviderRef makeProvider(const std::uint8_t* bytes, std::size_t size,
                                           std::shared_ptr<const void> owner) noexcept;

/// The path of a file URL; empty for any other URL and for null.
CG_INTERNAL std::string filePath(CFURLRef url);

} // namespace cg
