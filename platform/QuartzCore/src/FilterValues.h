// The values of filter inputs, between Cocoa's classes and the engine's variant.
#pragma once

#import <Foundation/Foundation.h>

#include <engine/engine.h>

#include <optional>

namespace ci {

/// An autoreleased number, vector, colour, transform, image, string or data.
id objectOf(const engine::Value& value);
/// The value of the object for an input of the class `className`; empty if the input cannot use it.
std::optional<engine::Value> valueOf(id object, const std::string& className);

} // namespace ci
