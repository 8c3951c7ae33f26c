// The platform's autorelease pool: a Cocoa host has one open around everything that it does.
#pragma once

namespace studio {

class AutoreleasePool {
  public:
    AutoreleasePool();
    ~AutoreleasePool();
    AutoreleasePool(const AutoreleasePool&) = delete;

  private:
    void* pool_;
};

} // namespace studio
