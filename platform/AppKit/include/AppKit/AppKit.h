// The part of AppKit that draws pictures.
#pragma once

#import <Foundation/Foundation.h>

#import <CoreGraphics/CoreGraphics.h>

#import <AppKit/AppKitDefines.h>
#import <AppKit/NSBitmapImageRep.h>
#import <AppKit/NSCIImageRep.h>
#import <AppKit/NSColor.h>
#import <AppKit/NSErrors.h>
#import <AppKit/NSGraphics.h>
#import <AppKit/NSGraphicsContext.h>
#import <AppKit/NSImage.h>
#import <AppKit/NSImageRep.h>
