// CIKernel and its kinds, and how a filter applies one.
#import <QuartzCore/CIKernel.h>

#include "CIKernelInternal.h"
#include "Internal.h"
#include "Raise.h"

#include <Block.h>

#include <cstdarg>
#include <mutex>
#include <stdexcept>

static cg::LiveCount live("CIKernel");

struct CIKernelState {
    engine::kernels::KernelPtr kernel;
    SEL roiSelector = nullptr;
};

namespace {

namespace kernels = engine::kernels;
using kernels::ParameterKind;

bool has(const kernels::Kernel& kernel, ParameterKind kind) {
    const auto& all = kernel.parameters();
    return std::any_of(all.begin(), all.end(), [=](const kernels::Parameter& p) { return p.kind == kind; });
}

/// Whether a kernel can be one of a class.
bool isOf(const kernels::Kernel& kernel, Class c) {
    if ([c isSubclassOfClass:[CIWarpKernel class]]) return kernel.isWarp();
    if ([c isSubclassOfClass:[CIColorKernel class]])
        return !kernel.isWarp() && !has(kernel, ParameterKind::sampler);
    return true;
}

/// The class that says most about a kernel.
Class classOf(const kernels::Kernel& kernel) {
    if (kernel.isWarp()) return [CIWarpKernel class];
    bool color = isOf(kernel, [CIColorKernel class]) && has(kernel, ParameterKind::sample);
    return color ? [CIColorKernel class] : [CIKernel class];
}

std::vector<kernels::KernelPtr> compiled(NSString* text) {
    ci::Failure failure;
    auto found = ci::compileKernels(text ? [text UTF8String] : "", failure);
    if (failure) NSLog(@"CIKernel: %s", failure.reason.c_str());
    return found;
}

// --- arguments --------------------------------------------------------------------------------------------

/// An object as an argument; what is wrong with it is up to the kernel, unless no argument is of its class.
std::optional<kernels::Argument> argumentOf(id object) {
    if ([object isKindOfClass:[CISampler class]]) return [(CISampler*)object reader];
    if ([object isKindOfClass:[CIImage class]]) return kernels::Sampler{[(CIImage*)object recipe]};
    if ([object isKindOfClass:[NSNumber class]]) return engine::Numbers{[object doubleValue]};
    if ([object isKindOfClass:[CIColor class]]) return ci::fromCG([(CIColor*)object CGColor]);
    if (![object isKindOfClass:[CIVector class]]) return {};
    engine::Numbers numbers([(CIVector*)object count]);
    for (size_t i = 0; i < numbers.size(); ++i) numbers[i] = [(CIVector*)object valueAtIndex:i];
    return numbers;
}

std::vector<kernels::Argument> argumentsOf(NSArray* objects, NSString* who) {
    std::vector<kernels::Argument> arguments;
    for (id object in objects) {
        auto argument = argumentOf(object);
        if (!argument)
            [NSException
                 raise:NSInvalidArgumentException
                format:
                    @"%@: argument %u must be a CISampler, CIImage, NSNumber, CIVector or CIColor, not a %@",
                    who, unsigned(arguments.size() + 1), NSStringFromClass([object class])];
        arguments.push_back(std::move(*argument));
    }
    return arguments;
}

// --- regions ----------------------------------------------------------------------------------------------

/// A region function that asks a program's own code, one thread at a time; an exception of Cocoa's becomes
/// one of C++.
template <class Ask>
kernels::RegionFunction regionFrom(const char* who, Ask ask) {
    return [=, mutex = std::make_shared<std::mutex>()](std::size_t index, const engine::Rect& area) {
        std::lock_guard lock(*mutex);
        std::string reason;
        CGRect region = CGRectNull;
        @autoreleasepool {
            @try {
                region = ask(static_cast<int>(index), ci::toCG(area));
            } @catch (NSException* e) {
                reason = std::string(who) + " raised " + [[e name] UTF8String] + ": " +
                         ([e reason] ? [[e reason] UTF8String] : "");
            }
        }
        if (!reason.empty()) throw std::runtime_error(reason);
        return ci::fromCG(region);
    };
}

kernels::RegionFunction regionBySelector(id target, SEL selector, id info) {
    using Method = CGRect (*)(id, SEL, int, CGRect, id);
    auto method = reinterpret_cast<Method>([target methodForSelector:selector]);
    cg::Retained<CFTypeRef> filter((CFTypeRef)target), details((CFTypeRef)info);
    return regionFrom("the ROI selector", [=](int index, CGRect area) {
        return method((id)filter.get(), selector, index, area, (id)details.get());
    });
}

/// A block as compilers lay it out; this file is compiled without blocks.
struct RegionBlock {
    void* isa;
    int flags, reserved;
    CGRect (*invoke)(RegionBlock*, int index, CGRect area);
};

kernels::RegionFunction regionByBlock(RegionBlock* block) {
    if (!block) return {};
    std::shared_ptr<RegionBlock> copy(static_cast<RegionBlock*>(_Block_copy(block)), _Block_release);
    return regionFrom("the ROI callback",
                      [=](int index, CGRect area) { return copy->invoke(copy.get(), index, area); });
}

CIImage* apply(const kernels::KernelPtr& kernel, const std::vector<kernels::Argument>& arguments,
               const engine::Rect& extent, kernels::RegionFunction region, NSString* who) {
    ci::Failure failure;
    engine::Image image = ci::applyKernel(kernel, arguments, extent, std::move(region), failure);
    ci::raise(failure, who);
    return [CIImage imageWithRecipe:image];
}

// --- options ----------------------------------------------------------------------------------------------

/// A rectangle as an option gives it: a shape, a vector or four numbers; empty when there is none.
std::optional<engine::Rect> rectOf(NSDictionary* options, NSString* key, NSString* who) {
    id value = [options objectForKey:key];
    if (!value) return {};
    if ([value isKindOfClass:[CIFilterShape class]]) return ci::fromCG([(CIFilterShape*)value extent]);
    if ([value isKindOfClass:[CIVector class]] && [(CIVector*)value count] == 4)
        return ci::fromCG([(CIVector*)value CGRectValue]);
    bool numbers = [value isKindOfClass:[NSArray class]] && [(NSArray*)value count] == 4;
    for (NSUInteger i = 0; numbers && i < 4; ++i)
        numbers = [[(NSArray*)value objectAtIndex:i] isKindOfClass:[NSNumber class]];
    if (!numbers)
        [NSException
             raise:NSInvalidArgumentException
            format:@"%@: the value of %@ must be a CIFilterShape or an NSArray of four numbers", who, key];
    auto number = [&](NSUInteger i) { return [[(NSArray*)value objectAtIndex:i] doubleValue]; };
    return engine::Rect::ofSize(number(0), number(1), number(2), number(3));
}

/// Where images that a kernel reads can be seen; everywhere when it reads none.
engine::Rect definitionOf(NSArray* arguments) {
    engine::Rect all;
    bool any = false;
    for (id argument in arguments) {
        if ([argument isKindOfClass:[CISampler class]])
            all = all.unite(ci::fromCG([[(CISampler*)argument definition] extent])), any = true;
        else if ([argument isKindOfClass:[CIImage class]])
            all = all.unite([(CIImage*)argument recipe]->extent()), any = true;
    }
    return any ? all : engine::Rect::infinite();
}

} // namespace

@implementation CIKernel

+ (NSArray*)kernelsWithString:(NSString*)s {
    auto found = compiled(s);
    if (found.empty()) return nil;
    NSMutableArray* all = [NSMutableArray array];
    for (const kernels::KernelPtr& kernel : found)
        [all addObject:[[[classOf(*kernel) alloc] initWithKernel:kernel] autorelease]];
    return all;
}

+ (CIKernel*)kernelWithString:(NSString*)s {
    auto found = compiled(s);
    if (found.empty()) return nil;
    if (isOf(*found[0], self))
        return [[[(self == [CIKernel class] ? classOf(*found[0]) : self) alloc] initWithKernel:found[0]]
            autorelease];
    NSLog(@"%@: the kernel %s is not one of this class", NSStringFromClass(self), found[0]->name().c_str());
    return nil;
}

- (id)initWithKernel:(const kernels::KernelPtr&)kernel {
    if (!(self = [super init])) return nil;
    if (!(_state = new (std::nothrow) CIKernelState{kernel})) {
        [self release];
        return nil;
    }
    live.born();
    return self;
}

/// Kernels are made from texts.
- (id)init {
    [self release];
    return nil;
}

- (void)dealloc {
    if (_state) live.gone();
    delete _state;
    [super dealloc];
}

- (NSString*)name {
    return [NSString stringWithUTF8String:_state->kernel->name().c_str()];
}

- (void)setROISelector:(SEL)aMethod {
    _state->roiSelector = aMethod;
}

- (CIImage*)applyWithExtent:(CGRect)extent roiCallback:(void*)callback arguments:(NSArray*)args {
    NSString* who = [self description];
    return apply(_state->kernel, argumentsOf(args, who), ci::fromCG(extent),
                 regionByBlock(static_cast<RegionBlock*>(callback)), who);
}

- (CIImage*)applyFor:(CIFilter*)filter arguments:(NSArray*)args options:(NSDictionary*)options {
    NSString* who = [self description];
    kernels::RegionFunction region;
    if (SEL selector = _state->roiSelector) {
        if (![filter respondsToSelector:selector])
            [NSException raise:NSInvalidArgumentException
                        format:@"%@: %@ has no method %@ for the ROI selector", who,
                               NSStringFromClass([filter class]), NSStringFromSelector(selector)];
        region = regionBySelector(filter, selector, [options objectForKey:kCIApplyOptionUserInfo]);
    }
    auto extent = rectOf(options, kCIApplyOptionExtent, who),
         definition = rectOf(options, kCIApplyOptionDefinition, who);
    engine::Rect area = definition ? *definition : extent ? *extent : definitionOf(args);
    if (extent) area = area.intersect(*extent);
    return apply(_state->kernel, argumentsOf(args, who), area, std::move(region), who);
}

- (NSUInteger)argumentCount {
    return _state->kernel->parameters().size() + (_state->kernel->isWarp() ? 1 : 0);
}

- (NSString*)description {
    return [NSString stringWithFormat:@"%@ %@", NSStringFromClass([self class]), [self name]];
}

@end

@implementation CIColorKernel

+ (CIColorKernel*)kernelWithString:(NSString*)s {
    return (CIColorKernel*)[super kernelWithString:s];
}

- (CIImage*)applyWithExtent:(CGRect)extent arguments:(NSArray*)args {
    return [super applyWithExtent:extent roiCallback:nullptr arguments:args];
}

@end

@implementation CIWarpKernel

+ (CIWarpKernel*)kernelWithString:(NSString*)s {
    return (CIWarpKernel*)[super kernelWithString:s];
}

- (CIImage*)applyWithExtent:(CGRect)extent
                roiCallback:(void*)callback
                 inputImage:(CIImage*)image
                  arguments:(NSArray*)args {
    NSMutableArray* all = [NSMutableArray arrayWithArray:args];
    if (image) [all insertObject:image atIndex:0];
    return [super applyWithExtent:extent roiCallback:callback arguments:all];
}

@end

@implementation CIFilter (CIKernelApplying)

- (CIImage*)apply:(CIKernel*)k, ... {
    NSMutableArray* arguments = [NSMutableArray array];
    NSMutableDictionary* options = [NSMutableDictionary dictionary];
    va_list rest;
    va_start(rest, k);
    NSUInteger wanted = [k argumentCount];
    id next = nil;
    while ([arguments count] < wanted && (next = va_arg(rest, id))) [arguments addObject:next];
    while ([arguments count] >= wanted && (next = va_arg(rest, id))) {
        // What is no key is an argument too many, which the kernel refuses.
        bool isKey = [next isKindOfClass:[NSString class]];
        id value = isKey ? va_arg(rest, id) : nil;
        if (!isKey) [arguments addObject:next];
        if (isKey && !value) break;
        if (isKey) [options setObject:value forKey:next];
    }
    va_end(rest);
    return [self apply:k arguments:arguments options:options];
}

- (CIImage*)apply:(CIKernel*)k arguments:(NSArray*)args options:(NSDictionary*)dict {
    return [k applyFor:self arguments:args options:dict];
}

@end
