// The values of filter inputs, between Cocoa's classes and the engine's variant.
#pragma once

#import <Foundation/Foundation.h>

#include <engine/engine.h>

#include <optional>

namespace ci {

/// An autoreleased number, vector, colour, transform, image, string or data.
id objectOf(const engine::Value& value);
/// The class that Core Image names for inputs of a kind.
NSString* classNameOf(engine::InputKind kind);
/// The object as an input of that kind takes it; empty when it cannot.
std::optional<engine::Value> valueOf(id object, engine::InputKind kind);

} // namespace ci
