// Host variants and dictionaries against any Cocoa object, both ways.
#pragma once

#include <hostapi/services.h>

#import <Foundation/Foundation.h>

// The Cocoa object for a variant: autoreleased or owned elsewhere; nil for null and for what Cocoa has no
// counterpart of. An array with an element that converts to nil raises Cocoa's invalid-argument exception.
id GetVariantAsNSObject(REALobject variant);

// An autoreleased dictionary of a host Dictionary's entries; the immutable empty one for no entries. A value
// without a counterpart becomes NSNull; an entry whose key cannot be read is dropped.
NSDictionary* NewNSDictionary(REALobject dictionary);

// A variant, locked for the caller, for any Cocoa object; null for nil, NSNull and what the host has no
// counterpart of. The order in which classes are tested is part of the behaviour.
REALobject NewVariantFromNSObject(id object);

// A new host Dictionary, locked for the caller; null for nil and when the host makes none.
REALobject NSDictionaryRB(NSDictionary* dictionary);
