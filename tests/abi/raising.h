// Native objects and classes that raise whatever they are sent.
#pragma once

// The reason of what they raise.
inline constexpr char kRaisedReason[] = "sent in vain";

// An object that raises at every message but those that count its references. Lives for good.
const void* raisingObject();

// While one exists, Core Image's classes and new objects raise at what the plugin sends to make things.
class RaisingClasses {
  public:
    RaisingClasses();
    ~RaisingClasses();
    RaisingClasses(const RaisingClasses&) = delete;
    RaisingClasses& operator=(const RaisingClasses&) = delete;
};
