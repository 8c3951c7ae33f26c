// Host dictionaries against NSDictionary.
#pragma once

#include <hostapi/services.h>

@class NSDictionary;

// An autoreleased dictionary of a host Dictionary's entries; the immutable empty one for no entries. A value
// without a counterpart becomes NSNull; an entry whose key cannot be read is dropped.
NSDictionary* NewNSDictionary(REALobject dictionary);

// A new host Dictionary, locked for the caller; null for nil and when the host makes none.
REALobject NSDictionaryRB(NSDictionary* dictionary);

// The host's Dictionary methods, loaded for the dictionary that was converted last; null where the host lacks
// one. Values and keys come locked.
extern REALobject LastDictionary;
extern void (*LastDictionarySetter)(REALobject dictionary, REALobject key, REALobject value);
extern REALobject (*LastDictionaryGetter)(REALobject dictionary, REALobject key);
extern REALobject (*LastDictionaryKeyGetter)(REALobject dictionary, std::int32_t index);
