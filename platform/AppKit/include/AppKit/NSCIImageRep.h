// A Core Image recipe as a picture's representation.
#pragma once

#import <AppKit/NSImageRep.h>

@class CIImage;

/** A representation that renders its Core Image recipe when it is drawn. */
@interface NSCIImageRep : NSImageRep {
  @private
    CIImage* _image;
}

/** Its size is the image's extent. Nil for nil. */
+ (id)imageRepWithCIImage:(CIImage*)image;
- (id)initWithCIImage:(CIImage*)image;
- (CIImage*)CIImage;

@end
