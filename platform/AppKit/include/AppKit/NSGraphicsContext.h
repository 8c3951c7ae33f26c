#pragma once

#import <AppKit/NSGraphics.h>

/** The Core Graphics context that Cocoa's drawing goes to. One is current for each thread. */
@interface NSGraphicsContext : NSObject {
  @private
    CGContextRef _port;
    BOOL _flipped;
}

/** Nil for a null port. */
+ (NSGraphicsContext*)graphicsContextWithGraphicsPort:(void*)graphicsPort flipped:(BOOL)flipped;
+ (NSGraphicsContext*)currentContext;
+ (void)setCurrentContext:(NSGraphicsContext*)context;

/** The current context and its state onto this thread's stack, and back. A lone restore does nothing. */
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
- (void)saveGraphicsState;
- (void)restoreGraphicsState;

/** A CGContextRef, borrowed. */
- (void*)graphicsPort;
- (BOOL)isFlipped;
- (void)flushGraphics;

@end
