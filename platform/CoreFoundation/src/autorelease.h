// An autorelease pool for a scope. Core Foundation leaves nothing in the caller's pool, so that plain C
// programs can use it: every function that makes temporary Cocoa objects drains a pool of its own.
#pragma once

#import <Foundation/Foundation.h>

class AutoreleaseScope {
  public:
    AutoreleaseScope() : pool([[NSAutoreleasePool alloc] init]) {}
    ~AutoreleaseScope() { [pool release]; }
    AutoreleaseScope(const AutoreleaseScope&) = delete;
    AutoreleaseScope& operator=(const AutoreleaseScope&) = delete;

  private:
    NSAutoreleasePool* pool;
};
