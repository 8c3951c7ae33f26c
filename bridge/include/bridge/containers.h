// Host arrays, memory blocks, files and dates against their Cocoa counterparts.
#pragma once

#include <hostapi/services.h>

@class NSAffineTransform, NSArray, NSData, NSDate, NSImage, NSURL;

// Fills a host string array from element 0 on. The array is neither cleared nor resized first.
void FillStringArray(REALstringArray array, NSArray* strings);

// Likewise an object array, with what `convert` makes of each element: a host object with a reference for us,
// which is given back once the array has its own, or null.
void FillObjectArray(REALarray array, NSArray* elements, REALobject (*convert)(id element));

// A new memory block with a copy of the bytes; null for no bytes. Raises "OutOfMemoryException" when the host
// cannot make a block of that size.
REALmemoryBlock NSDataRB(NSData* data);

// An autoreleased file URL; nil when neither the item nor its folder can be named. The item need not exist.
NSURL* NewNSURLfile(REALfolderItem item);

// A folder item for a file URL whose item, or at least whose folder, exists; else null.
REALfolderItem NSURLRBFile(NSURL* url);

// The host date's fields taken as local wall-clock time, autoreleased; nil when a field cannot be read.
NSDate* NewNSDate(REALobject date);

// Hand a Cocoa object to a class of a sibling part: its registered wrapper, or a new one that retains it.
// Null when that part is not loaded.
REALobject NewNSImageKaz(NSImage* image);
REALobject NewNSAffineTransformKaz(NSAffineTransform* transform);

// The host's Dictionary methods, loaded for the dictionary that was converted last; null where the host lacks
// one. Values and keys come locked.
extern REALobject LastDictionary;
extern void (*LastDictionarySetter)(REALobject dictionary, REALobject key, REALobject value);
extern REALobject (*LastDictionaryGetter)(REALobject dictionary, REALobject key);
extern REALobject (*LastDictionaryKeyGetter)(REALobject dictionary, std::int32_t index);

namespace bridge {

// Loads the methods above unless they are this dictionary's already.
void refreshDictionaryMethods(REALobject dictionary);

} // namespace bridge
