// Core Foundation hands nothing to the caller's autorelease pool, so that plain C programs can use it: every
// function that makes temporary Cocoa objects drains a pool of its own.
#pragma once

#import <Foundation/Foundation.h>

class TemporaryPool {
  public:
    TemporaryPool() : pool([[NSAutoreleasePool alloc] init]) {}
    ~TemporaryPool() { [pool release]; }
    TemporaryPool(const TemporaryPool&) = delete;
    TemporaryPool& operator=(const TemporaryPool&) = delete;

  private:
    NSAutoreleasePool* pool;
};
