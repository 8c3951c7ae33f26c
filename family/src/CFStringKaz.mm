// CFStringKaz: a Core Foundation string.
#include "support.h"

namespace family {
namespace {

// Stays empty for an empty text, which has no platform string.
void initWithText(REALobject self, REALstring text) {
    construct(self, [&] { return (id)RBString2CFString(text); });
}

REALstring text(REALobject self, std::uint32_t) {
    return stringResult([&] { return nativeHandle<NSString*>(self); });
}

std::int32_t length(REALobject self, std::uint32_t) {
    return guardedInPool([&] { return static_cast<std::int32_t>([nativeHandle<NSString*>(self) length]); });
}

REALproperty properties[] = {
    handleProperty(),
    property("Text", "String", text),
    property("Length", "Integer", length),
};

REALmethodDefinition methods[] = {
    method("Constructor(text as String)", initWithText),
};

} // namespace

REALclassDefinition CFStringKazClass =
    classDefinition({.name = "CFStringKaz", .constructor = constructWrapper, .destructor = destroyWrapper},
                    properties, methods);

} // namespace family
