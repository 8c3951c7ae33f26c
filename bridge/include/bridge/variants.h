// Host variants against any Cocoa object, both ways. Each direction is a table of rules in the order in which
// types are tested; that order is part of the behaviour.
#pragma once

#include <hostapi/services.h>

#import <Foundation/Foundation.h>

// The Cocoa object for a variant: autoreleased or owned elsewhere; nil for null and for what Cocoa has no
// counterpart of. An array with an element that converts to nil raises Cocoa's invalid-argument exception.
id GetVariantAsNSObject(REALobject variant);

// A variant, locked for the caller, for any Cocoa object; null for nil, NSNull and what the host has no
// counterpart of.
REALobject NewVariantFromNSObject(id object);
