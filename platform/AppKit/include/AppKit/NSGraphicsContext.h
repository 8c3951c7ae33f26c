// The context that Cocoa draws to.
#pragma once

#import <AppKit/NSGraphics.h>

@class CIContext;

/** A Core Graphics context for Cocoa to draw to. Each thread has a current one. */
@interface NSGraphicsContext : NSObject {
  @private
    CGContextRef _port;
    BOOL _flipped;
    CIContext* _coreImageContext;
}

/** Nil for a null port. */
+ (NSGraphicsContext*)graphicsContextWithGraphicsPort:(void*)graphicsPort flipped:(BOOL)flipped;
+ (NSGraphicsContext*)currentContext;
+ (void)setCurrentContext:(NSGraphicsContext*)context;

/** Save the current context and its state on this thread's stack and restore them. A lone restore does
 * nothing. */
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
- (void)saveGraphicsState;
- (void)restoreGraphicsState;

/** A CGContextRef, borrowed. */
- (void*)graphicsPort;
- (BOOL)isFlipped;
- (void)flushGraphics;
/** Draws into the same port; lives as long as the context. */
- (CIContext*)CIContext;

@end
