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
    /// The text; empty while the object is empty.
    ///     Print self.Text
    property("Text", "String", text),
    /// The length in UTF-16 units; 0 while the object is empty.
    ///     Print Str(self.Length)
    property("Length", "Integer", length),
};

REALmethodDefinition methods[] = {
    /// Makes a string of the text; empty text leaves the object empty.
    ///     Dim pear As New CFStringKaz("pear")
    method("Constructor(text as String)", initWithText),
};

} // namespace

/// A Core Foundation string.
///     Dim string As New CFStringKaz("fig")
REALclassDefinition CFStringKazClass =
    classDefinition({.name = "CFStringKaz", .constructor = constructWrapper, .destructor = destroyWrapper},
                    properties, methods);

} // namespace family
