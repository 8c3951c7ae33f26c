// Helpers that several classes of this plugin share.
#pragma once

#include <bridge/owned.h>
#include <objects/graphics.h>
#include <objects/wrapper.h>

namespace family {

using namespace objects;
using bridge::Owned;

template <class Ref>
Ref argumentOf(std::size_t (*)(Ref)); // only its type counts

// A getter that asks Core Graphics for a number; 0 for an empty wrapper.
template <auto get>
std::int32_t number(REALobject self, std::uint32_t) {
    auto native = nativeHandle<decltype(argumentOf(get))>(self);
    return native ? static_cast<std::int32_t>(get(native)) : 0;
}

// A copy of a Core Graphics image in a new picture of its size, locked for the caller; null for null and when
// the host makes no picture.
REALpicture newPictureOf(CGImageRef image);

} // namespace family
