// Core Image of Mac OS X 10.5, as far as the product uses it, and what later systems brought.
#pragma once

#include <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

#define CORE_IMAGE_EXPORT FOUNDATION_EXPORT

@class CIContext, CIFilterShape, CIImage;

@interface CIVector : NSObject <NSCopying>
+ (CIVector*)vectorWithX:(CGFloat)x;
+ (CIVector*)vectorWithX:(CGFloat)x Y:(CGFloat)y;
+ (CIVector*)vectorWithX:(CGFloat)x Y:(CGFloat)y Z:(CGFloat)z;
+ (CIVector*)vectorWithX:(CGFloat)x Y:(CGFloat)y Z:(CGFloat)z W:(CGFloat)w;
+ (CIVector*)vectorWithString:(NSString*)representation;
- (id)initWithValues:(const CGFloat*)values count:(size_t)count;
- (id)initWithX:(CGFloat)x;
- (id)initWithX:(CGFloat)x Y:(CGFloat)y;
- (id)initWithX:(CGFloat)x Y:(CGFloat)y Z:(CGFloat)z;
- (id)initWithX:(CGFloat)x Y:(CGFloat)y Z:(CGFloat)z W:(CGFloat)w;
- (id)initWithString:(NSString*)representation;
- (CGFloat)valueAtIndex:(size_t)index;
- (size_t)count;
- (CGFloat)X;
- (CGFloat)Y;
- (CGFloat)Z;
- (CGFloat)W;
- (NSString*)stringRepresentation;
@end

@interface CIColor : NSObject <NSCopying>
+ (CIColor*)colorWithCGColor:(CGColorRef)c;
+ (CIColor*)colorWithRed:(CGFloat)r green:(CGFloat)g blue:(CGFloat)b alpha:(CGFloat)a;
+ (CIColor*)colorWithRed:(CGFloat)r green:(CGFloat)g blue:(CGFloat)b;
+ (CIColor*)colorWithString:(NSString*)representation;
- (id)initWithCGColor:(CGColorRef)c;
- (size_t)numberOfComponents;
- (const CGFloat*)components;
- (CGFloat)alpha;
- (CGColorSpaceRef)colorSpace;
- (CGFloat)red;
- (CGFloat)green;
- (CGFloat)blue;
- (NSString*)stringRepresentation;
@end

typedef int CIFormat;
CORE_IMAGE_EXPORT CIFormat kCIFormatARGB8;
CORE_IMAGE_EXPORT NSString* const kCIImageAutoAdjustEnhance __KAZ_MAC_SINCE(10.8);
CORE_IMAGE_EXPORT NSString* const kCIImageAutoAdjustRedEye __KAZ_MAC_SINCE(10.8);
CORE_IMAGE_EXPORT NSString* const kCIImageAutoAdjustFeatures __KAZ_MAC_SINCE(10.8);

@interface CIImage : NSObject <NSCopying>
+ (CIImage*)imageWithCGImage:(CGImageRef)image;
+ (CIImage*)imageWithCGImage:(CGImageRef)image options:(NSDictionary*)d;
+ (CIImage*)imageWithBitmapData:(NSData*)d
                    bytesPerRow:(size_t)bpr
                           size:(CGSize)size
                         format:(CIFormat)f
                     colorSpace:(CGColorSpaceRef)cs;
+ (CIImage*)imageWithContentsOfURL:(NSURL*)url;
+ (CIImage*)imageWithContentsOfURL:(NSURL*)url options:(NSDictionary*)d;
+ (CIImage*)imageWithData:(NSData*)data;
+ (CIImage*)imageWithData:(NSData*)data options:(NSDictionary*)d;
+ (CIImage*)imageWithColor:(CIColor*)color;
+ (CIImage*)emptyImage;
- (id)initWithCGImage:(CGImageRef)image;
- (id)initWithCGImage:(CGImageRef)image options:(NSDictionary*)d;
- (id)initWithData:(NSData*)data;
- (id)initWithData:(NSData*)data options:(NSDictionary*)d;
- (id)initWithBitmapData:(NSData*)d
             bytesPerRow:(size_t)bpr
                    size:(CGSize)size
                  format:(CIFormat)f
              colorSpace:(CGColorSpaceRef)c;
- (id)initWithContentsOfURL:(NSURL*)url;
- (id)initWithContentsOfURL:(NSURL*)url options:(NSDictionary*)d;
- (CIImage*)imageByApplyingTransform:(CGAffineTransform)matrix;
- (CIImage*)imageByCroppingToRect:(CGRect)r;
- (CGRect)extent;
- (CIFilterShape*)definition;
- (NSURL*)url;
- (CGColorSpaceRef)colorSpace;
- (NSDictionary*)properties __KAZ_MAC_SINCE(10.8);
- (NSArray*)autoAdjustmentFilters __KAZ_MAC_SINCE(10.8);
- (NSArray*)autoAdjustmentFiltersWithOptions:(NSDictionary*)options __KAZ_MAC_SINCE(10.8);
@end

@interface CIContext : NSObject
+ (CIContext*)contextWithCGContext:(CGContextRef)ctx options:(NSDictionary*)options;
- (void)drawImage:(CIImage*)image atPoint:(CGPoint)atPoint fromRect:(CGRect)fromRect;
- (void)drawImage:(CIImage*)image inRect:(CGRect)inRect fromRect:(CGRect)fromRect;
- (CGImageRef)createCGImage:(CIImage*)image fromRect:(CGRect)fromRect;
- (CGImageRef)createCGImage:(CIImage*)image
                   fromRect:(CGRect)fromRect
                     format:(CIFormat)format
                 colorSpace:(CGColorSpaceRef)colorSpace;
- (void)reclaimResources;
- (void)clearCaches;
@end

@interface CIFilter : NSObject <NSCopying>
+ (CIFilter*)filterWithName:(NSString*)name;
+ (NSArray*)filterNamesInCategory:(NSString*)category;
+ (NSArray*)filterNamesInCategories:(NSArray*)categories;
+ (NSString*)localizedNameForFilterName:(NSString*)filterName;
+ (NSString*)localizedNameForCategory:(NSString*)category;
+ (NSString*)localizedDescriptionForFilterName:(NSString*)filterName;
+ (NSURL*)localizedReferenceDocumentationForFilterName:(NSString*)filterName;
- (NSArray*)inputKeys;
- (NSArray*)outputKeys;
- (void)setDefaults;
- (NSDictionary*)attributes;
@end

@interface CIFilterShape : NSObject <NSCopying>
- (id)initWithRect:(CGRect)r;
- (CIFilterShape*)transformBy:(CGAffineTransform)m interior:(bool)flag;
- (CIFilterShape*)insetByX:(int)dx Y:(int)dy;
- (CIFilterShape*)unionWith:(CIFilterShape*)s2;
- (CIFilterShape*)unionWithRect:(CGRect)r;
- (CIFilterShape*)intersectWith:(CIFilterShape*)s2;
- (CIFilterShape*)intersectWithRect:(CGRect)r;
@end

@interface CISampler : NSObject <NSCopying>
+ (CISampler*)samplerWithImage:(CIImage*)im;
+ (CISampler*)samplerWithImage:(CIImage*)im options:(NSDictionary*)dict;
- (id)initWithImage:(CIImage*)im;
- (id)initWithImage:(CIImage*)im options:(NSDictionary*)dict;
- (CIFilterShape*)definition;
- (CGRect)extent;
@end

__KAZ_MAC_SINCE(10.7) @interface CIDetector : NSObject
+ (CIDetector*)detectorOfType:(NSString*)type context:(CIContext*)context options:(NSDictionary*)options;
- (NSArray*)featuresInImage:(CIImage*)image;
- (NSArray*)featuresInImage:(CIImage*)image options:(NSDictionary*)options __KAZ_MAC_SINCE(10.8);
@end
CORE_IMAGE_EXPORT NSString* const CIDetectorTypeFace __KAZ_MAC_SINCE(10.7);
CORE_IMAGE_EXPORT NSString* const CIDetectorAccuracy __KAZ_MAC_SINCE(10.7);
CORE_IMAGE_EXPORT NSString* const CIDetectorAccuracyLow __KAZ_MAC_SINCE(10.7);
CORE_IMAGE_EXPORT NSString* const CIDetectorAccuracyHigh __KAZ_MAC_SINCE(10.7);

__KAZ_MAC_SINCE(10.7) @interface CIFeature : NSObject
- (NSString*)type;
- (CGRect)bounds;
@end
CORE_IMAGE_EXPORT NSString* const CIFeatureTypeFace __KAZ_MAC_SINCE(10.7);

__KAZ_MAC_SINCE(10.7) @interface CIFaceFeature : CIFeature
- (BOOL)hasLeftEyePosition;
- (CGPoint)leftEyePosition;
- (BOOL)hasRightEyePosition;
- (CGPoint)rightEyePosition;
- (BOOL)hasMouthPosition;
- (CGPoint)mouthPosition;
- (BOOL)hasTrackingID __KAZ_MAC_SINCE(10.8);
- (int)trackingID __KAZ_MAC_SINCE(10.8);
- (BOOL)hasTrackingFrameCount __KAZ_MAC_SINCE(10.8);
- (int)trackingFrameCount __KAZ_MAC_SINCE(10.8);
@end
