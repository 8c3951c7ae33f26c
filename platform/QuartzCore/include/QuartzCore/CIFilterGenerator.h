// Filters made of filters.
#pragma once

#import <QuartzCore/CIFilter.h>

/** Keys of an exported key's dictionary, beside its attributes: the object's key, the object itself, and the
 * name that it is exported under. */
CORE_IMAGE_EXPORT NSString* const kCIFilterGeneratorExportedKey;
CORE_IMAGE_EXPORT NSString* const kCIFilterGeneratorExportedKeyTargetObject;
CORE_IMAGE_EXPORT NSString* const kCIFilterGeneratorExportedKeyName;

/**
 * Connects filters, and makes filters of what is connected. A filter that it makes has the exported keys as
 * its inputs and outputs, and copies of the connected filters of its own.
 */
@interface CIFilterGenerator : NSObject <NSCopying, CIFilterConstructor> {
  @private
    struct CIFilterGeneratorState* _state;
}

+ (CIFilterGenerator*)filterGenerator;
/** Nil unless the file is one that -writeToURL:atomically: wrote, of filters that are known here. */
+ (CIFilterGenerator*)filterGeneratorWithContentsOfURL:(NSURL*)aURL;
- (id)initWithContentsOfURL:(NSURL*)aURL;

/**
 * The value of the source's key becomes the target's value. The target is a CIFilter. A source that is a
 * filter gives its "outputImage" if the key is nil; of any other object, a nil key means the object itself. A
 * connection to the same input replaces the former one. A nil object, and a connection that would close a
 * circle, raise NSInvalidArgumentException.
 */
- (void)connectObject:(id)sourceObject
              withKey:(NSString*)sourceKey
             toObject:(id)targetObject
              withKey:(NSString*)targetKey;
- (void)disconnectObject:(id)sourceObject
                 withKey:(NSString*)sourceKey
                toObject:(id)targetObject
                 withKey:(NSString*)targetKey;

/** An input or output of a filter becomes one of the filters made here; under its own key if the name is nil.
 */
- (void)exportKey:(NSString*)key fromObject:(id)targetObject withName:(NSString*)exportedKeyName;
- (void)removeExportedKey:(NSString*)exportedKeyName;
/** By exported name, a dictionary of the kCIFilterGeneratorExportedKey keys and of its attributes. */
- (NSDictionary*)exportedKeys;
/** Replaces attributes that the key has by itself. Unknown names are ignored. */
- (void)setAttributes:(NSDictionary*)attributes forExportedKey:(NSString*)exportedKeyName;

/** The keys of the whole filter. */
- (NSDictionary*)classAttributes;
- (void)setClassAttributes:(NSDictionary*)attributes;

/** A filter with the values that the connected ones have now, autoreleased. */
- (CIFilter*)filter;
/** Under CIFilter's catalogue, as it is now, with the class attributes. */
- (void)registerFilterName:(NSString*)name;

/**
 * A property list of filters, values and connections. NO if a value cannot be written: those can that are
 * numbers, texts, data, vectors, colours, transforms, and images that were read from a file, as its URL.
 */
- (BOOL)writeToURL:(NSURL*)aURL atomically:(BOOL)flag;

@end
