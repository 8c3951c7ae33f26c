// The platform's autorelease pool: a Cocoa host has one open around everything that it does.
#pragma once

namespace studio {

class Pool {
  public:
    Pool();
    ~Pool();
    Pool(const Pool&) = delete;

  private:
    void* pool_;
};

} // namespace studio
