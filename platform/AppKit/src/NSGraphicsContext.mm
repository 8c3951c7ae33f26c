// NSGraphicsContext: a CGContext, and the current one for each thread.
#import <AppKit/NSGraphicsContext.h>

#import <QuartzCore/CIContext.h>

// A thread's current context, and its stack of saved ones, live in its dictionary.
static NSString* const currentKey = @"NSGraphicsContextCurrent";
static NSString* const stackKey = @"NSGraphicsContextStack";

static NSMutableDictionary* threadValues() { return [[NSThread currentThread] threadDictionary]; }

@implementation NSGraphicsContext

+ (NSGraphicsContext*)graphicsContextWithGraphicsPort:(void*)graphicsPort flipped:(BOOL)flipped {
    if (!graphicsPort) return nil;
    NSGraphicsContext* context = [[[self alloc] init] autorelease];
    context->_port = CGContextRetain(static_cast<CGContextRef>(graphicsPort));
    context->_flipped = flipped;
    return context;
}

+ (NSGraphicsContext*)currentContext {
    return [threadValues() objectForKey:currentKey];
}

+ (void)setCurrentContext:(NSGraphicsContext*)context {
    if (context)
        [threadValues() setObject:context forKey:currentKey];
    else
        [threadValues() removeObjectForKey:currentKey];
}

+ (void)saveGraphicsState {
    NSGraphicsContext* context = [self currentContext];
    [context saveGraphicsState];
    NSMutableArray* stack = [threadValues() objectForKey:stackKey];
    if (!stack) {
        stack = [NSMutableArray array];
        [threadValues() setObject:stack forKey:stackKey];
    }
    [stack addObject:context ? (id)context : (id)[NSNull null]];
}

+ (void)restoreGraphicsState {
    NSMutableArray* stack = [threadValues() objectForKey:stackKey];
    if (![stack count]) return;
    id context = [[[stack lastObject] retain] autorelease];
    [stack removeLastObject];
    [self setCurrentContext:context == [NSNull null] ? nil : context];
    [[self currentContext] restoreGraphicsState];
}

- (void)dealloc {
    [_coreImageContext release];
    CGContextRelease(_port);
    [super dealloc];
}

- (void)saveGraphicsState {
    CGContextSaveGState(_port);
}

- (void)restoreGraphicsState {
    CGContextRestoreGState(_port);
}

- (void*)graphicsPort {
    return _port;
}

- (BOOL)isFlipped {
    return _flipped;
}

- (CIContext*)CIContext {
    if (!_coreImageContext) _coreImageContext = [[CIContext contextWithCGContext:_port options:nil] retain];
    return _coreImageContext;
}

- (void)flushGraphics {
    CGContextFlush(_port);
}

@end
