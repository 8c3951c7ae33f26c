// The names of the exceptions that AppKit raises.
#pragma once

#import <Foundation/Foundation.h>

#import <AppKit/AppKitDefines.h>

APPKIT_EXTERN NSString* const NSImageCacheException;
