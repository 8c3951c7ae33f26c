// The frameworks of an application, as programs for the Mac import them.
#pragma once

#import <AppKit/AppKit.h>
#import <Foundation/Foundation.h>
