// Images loaded by a worker thread. Built twice: with the dispatch library and without.
#include "CIImageLoading.h"
#include "bridge_test.h"

#include <bridge/guard.h>
#include <bridge/threads.h>

#import <QuartzCore/QuartzCore.h>

#include <cstdlib>
#include <objc/runtime.h>
#include <pthread.h>
#include <string>
#include <utility>
#include <vector>

namespace {

using coreimage::DoWork;
using coreimage::ImageLoadRequest;

class Loading : public BridgeTest {
  protected:
    ~Loading() override { [request.result release]; }

    static NSURL* photo() {
        const char* folder = std::getenv("KAZ_PHOTOS");
        return [NSURL fileURLWithPath:[NSString stringWithFormat:@"%s/astronaut.png", folder ? folder : "."]];
    }

    // What the work wrote to the log.
    std::string load() {
        testing::internal::CaptureStderr();
        RunThreaded(&request, DoWork, nullptr);
        return testing::internal::GetCapturedStderr();
    }

    static std::string nameOfThisThread() {
        char name[32] = "";
        pthread_getname_np(pthread_self(), name, sizeof name);
        return name;
    }
    // After a load of nothing.
    static std::string nameOfWorker() {
        struct Named {
            ImageLoadRequest request;
            std::string name;
        } named;
        RunThreaded(
            &named,
            [](void* data) {
                auto* self = static_cast<Named*>(data);
                DoWork(&self->request);
                self->name = nameOfThisThread();
            },
            nullptr);
        return named.name;
    }

    CGFloat width() const { return [request.result extent].size.width; }

    bridge::AutoreleasePool pool;
    ImageLoadRequest request;
};

TEST_F(Loading, DataGivesAnImage) {
    request.data = [NSData dataWithContentsOfURL:photo()];
    EXPECT_EQ(load(), "");
    EXPECT_EQ(width(), 512);
    EXPECT_EQ([request.result retainCount], 1u);
}

TEST_F(Loading, AURLGivesAnImage) {
    request.url = photo();
    EXPECT_EQ(load(), "");
    EXPECT_EQ(width(), 512);
    EXPECT_EQ([request.result retainCount], 1u);
}

TEST_F(Loading, OptionsGoWithTheURL) {
    NSDictionary* properties = [NSDictionary dictionaryWithObject:@"yes" forKey:@"mine"];
    request.url = photo();
    request.options = [NSDictionary dictionaryWithObject:properties forKey:kCIImageProperties];
    EXPECT_EQ(load(), "");
    EXPECT_EQ(width(), 512);
    EXPECT_TRUE([[[request.result properties] objectForKey:@"mine"] isEqual:@"yes"]);
}

TEST_F(Loading, NothingGivesNothing) {
    EXPECT_EQ(load(), "");
    EXPECT_EQ(request.result, nil);
}

TEST_F(Loading, WhatIsNoPictureGivesNothing) {
    request.data = [NSData dataWithBytes:"no picture" length:10];
    EXPECT_EQ(load(), "");
    EXPECT_EQ(request.result, nil);
}

TEST_F(Loading, TheWorkerIsNamed) { EXPECT_EQ(nameOfWorker(), "CIImageLoad"); }

} // namespace

namespace {

// Core Image's loaders as functions of the test, which write down what they were sent and answer an image
// each.
class SentLoad : public Loading {
  protected:
    SentLoad() {
        auto replace = [](SEL selector, auto* function) {
            class_replaceMethod(object_getClass([CIImage class]), selector, reinterpret_cast<IMP>(function),
                                "@@:@@");
        };
        replace(
            @selector(imageWithData:),
            +[](id, SEL selector, id data) -> id { return answer(selector, data); });
        replace(
            @selector(imageWithContentsOfURL:),
            +[](id, SEL selector, id url) -> id { return answer(selector, url); });
        replace(
            @selector(imageWithContentsOfURL:options:), +[](id, SEL selector, id url, id options) -> id {
                EXPECT_EQ(options, theOptions);
                return answer(selector, url);
            });
        sent.clear();
        images.clear();
        request.data = theData;
        request.url = theURL;
        request.options = theOptions = [NSDictionary dictionary];
    }
    ~SentLoad() override {
        for (id image : images) [image release];
    }

    static id answer(SEL selector, id argument) {
        sent.emplace_back(sel_getName(selector), argument);
        id image = [[CIImage alloc] init]; // the test's; the loader's own reference ends with its pool
        images.push_back(image);
        return [[image retain] autorelease];
    }

    using Sent = std::vector<std::pair<std::string, id>>;
    static inline Sent sent;
    static inline std::vector<id> images;
    NSData* theData = [NSData data];
    NSURL* theURL = [NSURL URLWithString:@"file:///picture"];
    static inline NSDictionary* theOptions = nil;
};

TEST_F(SentLoad, DataAloneIsSentToItsLoader) {
    request.url = nil;
    load();
    EXPECT_EQ(sent, (Sent{{"imageWithData:", theData}}));
    EXPECT_EQ(request.result, images[0]);
    EXPECT_EQ([request.result retainCount], 2u);
}

TEST_F(SentLoad, AURLWithoutOptionsIsSentToTheLoaderWithoutOptions) {
    request.data = nil;
    request.options = nil;
    load();
    EXPECT_EQ(sent, (Sent{{"imageWithContentsOfURL:", theURL}}));
    EXPECT_EQ(request.result, images[0]);
    EXPECT_EQ([request.result retainCount], 2u);
}

TEST_F(SentLoad, AURLWithOptionsIsSentToTheLoaderWithOptions) {
    request.data = nil;
    load();
    EXPECT_EQ(sent, (Sent{{"imageWithContentsOfURL:options:", theURL}}));
    EXPECT_EQ(request.result, images[0]);
    EXPECT_EQ([request.result retainCount], 2u);
}

// Which no caller asks for.
TEST_F(SentLoad, OfBothTheURLsImageStandsAndTheDatasIsNotGivenBack) {
    load();
    EXPECT_EQ(sent, (Sent{{"imageWithData:", theData}, {"imageWithContentsOfURL:options:", theURL}}));
    EXPECT_EQ(request.result, images[1]);
    EXPECT_EQ([images[1] retainCount], 2u);
    EXPECT_EQ([images[0] retainCount], 2u);
    [images[0] release];
}

} // namespace

// Options that cannot be read, and say so in the way they are told.
@interface UnreadableOptions : NSObject {
  @public
    id thrown;
}
@end

@implementation UnreadableOptions
- (id)objectForKey:(id)key {
    @throw thrown;
}
@end

// Raises when it goes.
@interface RaisesInDealloc : NSObject
@end

@implementation RaisesInDealloc
- (void)dealloc {
    [super dealloc];
    [NSException raise:NSInternalInconsistencyException format:@"raised in dealloc"];
}
@end

// Options without an entry, that leave one such object in the pool.
@interface LitteringOptions : NSObject {
    BOOL littered;
}
@end

@implementation LitteringOptions
- (id)objectForKey:(id)key {
    if (!littered) [[[RaisesInDealloc alloc] init] autorelease];
    littered = YES;
    return nil;
}
@end

namespace {

class FailingLoad : public Loading {
  public:
    void fail(id thrown) {
        UnreadableOptions* options = [[[UnreadableOptions alloc] init] autorelease];
        options->thrown = thrown;
        request.url = photo();
        request.options = (NSDictionary*)options;
    }
};

TEST_F(FailingLoad, ACocoaExceptionIsLoggedOnceAndGivesNil) {
    NSException* exception = [NSException exceptionWithName:@"Unreadable"
                                                     reason:@"the disk is gone"
                                                   userInfo:nil];
    fail(exception);
    std::string log = load();
    EXPECT_EQ(request.result, nil);
    EXPECT_TRUE(host.takePendingException().isNil());

    // After the log's own prefix comes the exception's description and the end of the line, nothing more.
    std::string line = std::string("] ") + [[exception description] UTF8String] + "\n";
    ASSERT_GE(log.size(), line.size());
    EXPECT_EQ(log.substr(log.size() - line.size()), line);
    EXPECT_EQ(log.find("the disk is gone"), log.rfind("the disk is gone")) << "logged twice:\n" << log;
    expectClean();
}

TEST_F(FailingLoad, WhatAnObjectRaisesAsThePoolDrainsIsLoggedAndTheImageStays) {
    request.url = photo();
    request.options = (NSDictionary*)[[[LitteringOptions alloc] init] autorelease];
    std::string log = load();
    EXPECT_NE(log.find("raised in dealloc"), std::string::npos) << log;
    EXPECT_EQ(log.find("raised in dealloc"), log.rfind("raised in dealloc")) << "logged twice:\n" << log;
    EXPECT_NE(request.result, nil);
    EXPECT_TRUE(host.takePendingException().isNil());
    expectClean();
}

TEST_F(FailingLoad, AnythingElseThatIsThrownPasses) {
    fail(@"not an exception");
    testing::internal::CaptureStderr();
    bool passed = false;
    @try {
        DoWork(&request);
    } @catch (NSString*) {
        passed = true;
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(passed);
    EXPECT_EQ(request.result, nil);
}

} // namespace
