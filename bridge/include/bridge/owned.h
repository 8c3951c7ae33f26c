// Core Foundation objects that are released at the end of a scope.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

namespace bridge {

// A Core Foundation object that is released at the end of its scope.
template <class Ref>
class Owned {
  public:
    explicit Owned(Ref object = nullptr) : object(object) {}
    ~Owned() {
        if (object) CFRelease(object);
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;

    Ref get() const { return object; }
    explicit operator bool() const { return object != nullptr; }
    Ref release() {
        Ref result = object;
        object = nullptr;
        return result;
    }

  private:
    Ref object;
};

} // namespace bridge
