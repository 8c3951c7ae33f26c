// Raising host exceptions, and the frame that turns Cocoa exceptions into them.
#include "bridge_test.h"

#include <bridge/errors.h>
#include <bridge/guard.h>
#include <bridge/registry.h>

#include <objc/runtime.h>

#include <cstdlib>
#include <cstring>
#include <vector>

// The heap refuses blocks of this size while it is not 0.
static std::size_t refusedSize = 0;
// Blocks of six bytes for each of so many units are counted.
std::size_t bufferUnits = 0;
int buffers = 0;

extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size) {
    if (bufferUnits && count == bufferUnits && size == 6) ++buffers;
    if (refusedSize && count * size == refusedSize) return nullptr;
    return __real_calloc(count, size);
}
}

namespace {

using studio::Value;

class Errors : public BridgeTest {
  protected:
    explicit Errors(std::set<std::string> withheld = {}) : BridgeTest({.withheld = std::move(withheld)}) {}

    struct Raised {
        std::string className, message;
        bool operator==(const Raised&) const = default;
    };

    // The exception that the call raised in the host.
    template <class Call>
    Raised raised(Call&& call) {
        call();
        Value exception = host.takePendingException();
        if (exception.isNil()) return {"(none)", ""};
        return {exception.className(), host.get(exception, "Message").text()};
    }

    Raised outOfBounds(std::int64_t value, std::int64_t count, const char* parameter = "index",
                       const char* method = "Component") {
        return raised([&] { RaiseOutOfBoundsException(value, 0, count, parameter, method); });
    }
};

#define EXPECT_RAISED(call, expectedClass, expectedMessage)                                                  \
    do {                                                                                                     \
        auto was = call;                                                                                     \
        EXPECT_EQ(was.className, expectedClass);                                                             \
        EXPECT_EQ(was.message, expectedMessage);                                                             \
    } while (false)

TEST_F(Errors, AnExceptionCarriesItsClassAndMessage) {
    EXPECT_RAISED(raised([] { RaiseException("NilObjectException", "image is nil"); }), "NilObjectException",
                  "image is nil");
    expectClean();
}

TEST_F(Errors, MessagesAreTaggedASCII) {
    RaiseException("NilObjectException", "image is nil");
    {
        Value exception = host.takePendingException();
        Value message = host.get(exception, "Message");
        EXPECT_EQ(REALGetStringEncoding(message.stringHandle()), kREALTextEncodingASCII);
    }
    expectClean();
}

TEST_F(Errors, AnEmptyMessageIsANullString) {
    for (const char* message : {"", static_cast<const char*>(nullptr)}) {
        RaiseException("RuntimeException", message);
        Value exception = host.takePendingException();
        REALstring text = nullptr;
        ASSERT_TRUE(REALGetPropValueString(exception.object(), "Message", &text));
        EXPECT_EQ(text, nullptr);
    }
    expectClean();
}

TEST_F(Errors, AnUnknownClassBecomesARuntimeException) {
    EXPECT_RAISED(raised([] { RaiseException("NoSuchException", "what happened"); }), "RuntimeException",
                  "what happened");
    expectClean();
}

TEST_F(Errors, ANegativeIndexIsTooSmall) {
    EXPECT_RAISED(outOfBounds(-1, 4), "OutOfBoundsException",
                  "Parameter index to method Component is too small. Range is 0 to 3, but value is -1.");
}

TEST_F(Errors, AnIndexPastTheEndIsTooBig) {
    EXPECT_RAISED(outOfBounds(7, 4), "OutOfBoundsException",
                  "Parameter index to method Component is too big. Range is 0 to 3, but value is 7.");
}

TEST_F(Errors, TheFirstIndexOfNothingIsTooBig) {
    EXPECT_RAISED(outOfBounds(0, 0), "OutOfBoundsException",
                  "Parameter index to method Component is too big. Range is 0 to -1, but value is 0.");
}

TEST_F(Errors, AnUnsignedIndexIsAlwaysTooBig) {
    EXPECT_RAISED(
        outOfBounds(static_cast<std::uint32_t>(-1), 4), "OutOfBoundsException",
        "Parameter index to method Component is too big. Range is 0 to 3, but value is 4294967295.");
}

TEST_F(Errors, NumbersAreSixtyFourBitsWide) {
    EXPECT_RAISED(outOfBounds(-0x123456789ALL, 0x100000000LL), "OutOfBoundsException",
                  "Parameter index to method Component is too small. Range is 0 to 4294967295, but value is "
                  "-78187493530.");
}

TEST_F(Errors, TheLowerBoundIsPrintedAs0WhateverItIs) {
    EXPECT_RAISED(raised([] { RaiseOutOfBoundsException(7, 5, 4, "index", "Component"); }),
                  "OutOfBoundsException",
                  "Parameter index to method Component is too big. Range is 0 to 3, but value is 7.");
}

// The services that are called for an exception, with the text that they are given.
std::vector<std::string> namesOf(const std::vector<studio::ServiceCall>& calls) {
    std::vector<std::string> names;
    for (const studio::ServiceCall& call : calls)
        names.push_back(call.service + (call.text.empty() ? "" : " " + call.text));
    return names;
}

TEST_F(Errors, AnExceptionGetsItsMessageBeforeItIsRaisedAndIsThenGivenBack) {
    using Names = std::vector<std::string>;
    std::vector<studio::ServiceCall> calls =
        host.callsDuring([] { RaiseException("NilObjectException", "image is nil"); });
    EXPECT_EQ(namesOf(calls), (Names{"REALBuildString image is nil", "REALSetStringEncoding",
                                     "PluginNewInstance NilObjectException", "REALSetPropValueString Message",
                                     "RuntimeRaiseException", "REALUnlockObject", "REALUnlockString"}));
    for (int i : {4, 5}) EXPECT_EQ(calls[std::size_t(i)].subject, calls[3].subject); // the exception
    EXPECT_EQ(calls[6].subject, calls[1].subject);                                   // the message
    host.takePendingException();

    calls = host.callsDuring([] { RaiseException("NoSuchException", ""); });
    EXPECT_EQ(namesOf(calls),
              (Names{"PluginNewInstance NoSuchException", "PluginNewInstance RuntimeException",
                     "REALSetPropValueString Message", "RuntimeRaiseException", "REALUnlockObject"}));
    host.takePendingException();
    expectClean();
}

TEST_F(Errors, MissingNamesBecomeQuestionMarks) {
    EXPECT_RAISED(outOfBounds(1, 1, nullptr, nullptr), "OutOfBoundsException",
                  "Parameter ? to method ? is too big. Range is 0 to 0, but value is 1.");
    expectClean();
}

TEST_F(Errors, WithoutMemoryForTheMessageItIsTheShortOne) {
    refusedSize = std::strlen("index") + std::strlen("Component") + 200;
    Raised shortened = outOfBounds(7, 4);
    refusedSize = 0;
    EXPECT_RAISED(shortened, "OutOfBoundsException", "Out of Bounds");
    expectClean();
}

// What was written to the property "Message" last.
int messagesSet = 0;
REALstring lastMessage = nullptr;

TEST_F(Errors, AnEmptyMessageIsSetAllTheSame) {
    static auto original =
        reinterpret_cast<host::service::REALSetPropValueString>(gResolver("REALSetPropValueString"));
    gResolver = [](const char* name) -> void* {
        if (std::strcmp(name, "REALSetPropValueString") != 0) return studio::Host::current().resolver()(name);
        return reinterpret_cast<void*>(+[](REALobject object, const char* property, REALstring value) {
            if (std::strcmp(property, "Message") == 0) ++messagesSet, lastMessage = value;
            return original(object, property, value);
        });
    };
    lastMessage = reinterpret_cast<REALstring>(1);
    RaiseException("RuntimeException", "");
    EXPECT_EQ(messagesSet, 1);
    EXPECT_EQ(lastMessage, nullptr);
    host.takePendingException();
    expectClean();
}

class ErrorsWithoutInstances : public Errors {
  protected:
    ErrorsWithoutInstances() : Errors({"PluginNewInstance"}) {}
};

TEST_F(ErrorsWithoutInstances, NothingIsRaisedAndNothingLeaks) {
    EXPECT_RAISED(raised([] { RaiseException("NilObjectException", "image is nil"); }), "(none)", "");
    expectClean();
}

class ErrorsWithoutStrings : public Errors {
  protected:
    ErrorsWithoutStrings() : Errors({"REALBuildString"}) {}
};

TEST_F(ErrorsWithoutStrings, TheExceptionComesWithoutAMessage) {
    EXPECT_RAISED(raised([] { RaiseException("NilObjectException", "image is nil"); }), "NilObjectException",
                  "");
    expectClean();
}

// --- the guard frame --------------------------------------------------------------------------------------

int failingBody() {
    [NSException raise:NSInvalidArgumentException format:@"the reason"];
    return 1;
}

TEST_F(Errors, ACocoaExceptionGivesTheEmptyResultAndOneLineInTheLog) {
    testing::internal::CaptureStderr();
    int result = bridge::guarded([] { return failingBody(); });
    std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(result, 0);
    Value exception = host.takePendingException();
    EXPECT_EQ(exception.className(), "RuntimeException");
    EXPECT_EQ(host.get(exception, "Message").text(), "the reason");

    std::size_t line = log.find("A NSInvalidArgumentException: the reason, Info: ");
    ASSERT_NE(line, std::string::npos) << log;
    EXPECT_EQ(log.find("A NSInvalidArgumentException", line + 1), std::string::npos) << "logged twice";
    exception = {};
    expectClean();
}

TEST_F(Errors, EachResultTypeHasItsEmptyResult) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(bridge::guarded([] { return failingBody() + 0.5; }), 0.0);
    EXPECT_EQ(bridge::guarded([] { return failingBody() == 1; }), false);
    EXPECT_EQ(bridge::guarded([]() -> REALobject {
                  failingBody();
                  return nullptr;
              }),
              nullptr);
    bridge::guarded([] { failingBody(); });
    testing::internal::GetCapturedStderr();
    EXPECT_FALSE(host.takePendingException().isNil());
}

TEST_F(Errors, AResultPassesThroughUntouched) {
    EXPECT_EQ(bridge::guarded([] { return 42; }), 42);
    EXPECT_TRUE(host.takePendingException().isNil());
}

// Counts its deallocations, to show that autorelease pools are drained.
} // namespace

@interface NSException (FamilyOfTheTest)
+ (CFMutableDictionaryRef)GetInstancesDictionaryKaz;
+ (void)PrepareNSExceptionKaz;
+ (REALobject)NewNSExceptionKaz:(NSException*)exception;
@end

@interface DrainWitness : NSObject
@end
static int drained = 0;
@implementation DrainWitness
- (void)dealloc {
    ++drained;
    [super dealloc];
}
@end

namespace {

TEST_F(Errors, ThePoolIsDrainedOnEveryPath) {
    drained = 0;
    bridge::guardedInPool([] { [[[DrainWitness alloc] init] autorelease]; });
    EXPECT_EQ(drained, 1);
    testing::internal::CaptureStderr();
    bridge::guardedInPool([] {
        [[[DrainWitness alloc] init] autorelease];
        failingBody();
    });
    EXPECT_EQ(drained, 2);
    // Another object than an NSException is not the guard's: it passes, and the autorelease pool is drained
    // on its way.
    bool passed = false;
    @try {
        bridge::guardedInPool([] {
            [[[DrainWitness alloc] init] autorelease];
            @throw @"not an exception";
        });
    } @catch (NSString*) {
        passed = true;
    }
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(passed);
    EXPECT_EQ(drained, 3);
    host.takePendingException();
}

} // namespace

// Raises when it goes.
@interface RaisesInDealloc : NSObject
@end
@implementation RaisesInDealloc
- (void)dealloc {
    ++drained;
    [super dealloc];
    [NSException raise:NSInternalInconsistencyException format:@"raised in dealloc"];
}
@end

namespace {

TEST_F(Errors, WhatAnObjectRaisesAsThePoolDrainsBecomesAHostException) {
    drained = 0;
    testing::internal::CaptureStderr();
    REALobject result = bridge::guardedInPool([] {
        [[[DrainWitness alloc] init] autorelease];
        [[[RaisesInDealloc alloc] init] autorelease];
        [[[DrainWitness alloc] init] autorelease];
        return REALnewInstance("Dictionary");
    });
    std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(result, nullptr);
    EXPECT_NE(log.find("A NSInternalInconsistencyException: raised in dealloc, Info: "), std::string::npos);
    {
        Value exception = host.takePendingException();
        EXPECT_EQ(exception.className(), "RuntimeException");
        EXPECT_EQ(host.get(exception, "Message").text(), "raised in dealloc");
    }
    EXPECT_GE(drained, 2);
    expectClean(); // the dictionary was given back

    // The next pool works as ever.
    drained = 0;
    bridge::guardedInPool([] { [[[DrainWitness alloc] init] autorelease]; });
    EXPECT_GE(drained, 1);
    EXPECT_TRUE(host.takePendingException().isNil());
}

TEST_F(Errors, WhatPassesTheGuardPassesThoughAnObjectRaisesAsThePoolDrains) {
    NSString* passed = nil;
    testing::internal::CaptureStderr();
    @try {
        bridge::guardedInPool([] {
            [[[RaisesInDealloc alloc] init] autorelease];
            @throw @"not an exception";
        });
    } @catch (NSString* thrown) {
        passed = thrown;
    }
    std::string log = testing::internal::GetCapturedStderr();
    EXPECT_STREQ([passed UTF8String], "not an exception");
    EXPECT_NE(log.find("raised in dealloc"), std::string::npos) << log;
    EXPECT_TRUE(host.takePendingException().isNil());
}

TEST_F(Errors, WithoutTheFamilyThereIsNoRegistry) {
    bridge::ensureFamily();
    bridge::registerWrapper(this, reinterpret_cast<REALobject>(this));
    EXPECT_EQ(bridge::lockRegisteredWrapper(this), nullptr);
    bridge::unregisterWrapper(this);
}

// --- what the family publishes ----------------------------------------------------------------------------

int registriesAsked = 0, preparations = 0;
CFMutableDictionaryRef registry(id, SEL) {
    static CFMutableDictionaryRef dictionary = CFDictionaryCreateMutable(nullptr, 0, nullptr, nullptr);
    ++registriesAsked;
    return dictionary;
}
void prepare(id, SEL) { ++preparations; }

template <class Function>
void publish(SEL selector, Function* function) {
    class_addMethod(object_getClass([NSException class]), selector, reinterpret_cast<IMP>(function),
                    "@8@0:4");
}

TEST_F(Errors, TheFamilyIsAskedOnceAndWheneverItComes) {
    bridge::ensureFamily();
    publish(@selector(GetInstancesDictionaryKaz), registry);
    publish(@selector(PrepareNSExceptionKaz), prepare);
    bridge::ensureFamily();
    bridge::ensureFamily();
    EXPECT_EQ(registriesAsked, 1);
    EXPECT_EQ(preparations, 1);

    Value object = host.create("Dictionary");
    bridge::registerWrapper(this, object.object());
    REALobject locked = bridge::lockRegisteredWrapper(this);
    EXPECT_EQ(locked, object.object());
    bridge::unregisterWrapper(this);
    EXPECT_EQ(bridge::lockRegisteredWrapper(this), nullptr);
    REALUnlockObject(locked);
    object = {};
    expectClean();
}

TEST_F(Errors, TheHostGetsTheExceptionThatTheFamilyMakes) {
    publish(
        @selector(NewNSExceptionKaz:),
        +[](id, SEL, NSException*) { return REALnewInstance("OutOfBoundsException"); });
    testing::internal::CaptureStderr();
    bridge::guarded([] { failingBody(); });
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(host.takePendingException().className(), "OutOfBoundsException");
    expectClean();
}

TEST_F(Errors, AFamilyThatComesLaterMakesTheExceptionsFromThenOn) {
    testing::internal::CaptureStderr();
    bridge::guarded([] { failingBody(); });
    EXPECT_EQ(host.takePendingException().className(), "RuntimeException");
    publish(
        @selector(NewNSExceptionKaz:),
        +[](id, SEL, NSException*) { return REALnewInstance("OutOfBoundsException"); });
    bridge::guarded([] { failingBody(); });
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(host.takePendingException().className(), "OutOfBoundsException");
    expectClean();
}

// The maker is sent its message without being asked first, so one that Cocoa forwards counts as well.
TEST_F(Errors, AMakerThatAnswersByForwardingIsSentTheMessage) {
    publish(
        @selector(methodSignatureForSelector:),
        +[](id, SEL, SEL) { return [NSMethodSignature signatureWithObjCTypes:"^v12@0:4@8"]; });
    publish(
        @selector(forwardInvocation:), +[](id, SEL, NSInvocation* invocation) {
            REALobject made = REALnewInstance("OutOfBoundsException");
            [invocation setReturnValue:&made];
        });
    testing::internal::CaptureStderr();
    bridge::guarded([] { failingBody(); });
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(host.takePendingException().className(), "OutOfBoundsException");
    expectClean();
}

} // namespace

// A text whose length cannot be asked for.
@interface RaisingText : NSString
@end
@implementation RaisingText
- (NSUInteger)length {
    [NSException raise:NSGenericException format:@"the text's own"];
    return 0;
}
- (unichar)characterAtIndex:(NSUInteger)index {
    return 0;
}
@end

namespace {

TEST_F(Errors, AMessageThatRaisesLeavesNothingBehind) {
    NSString* message = [[[RaisingText alloc] init] autorelease];
    NSException* raised = bridge::raisedBy([&] { bridge::newRuntimeException(message); });
    EXPECT_STREQ([[raised reason] UTF8String], "the text's own");
    expectClean(); // the exception in the making was given back
}

TEST_F(Errors, WhatTheFamilysMakerRaisesPasses) {
    publish(
        @selector(NewNSExceptionKaz:), +[](id, SEL, NSException*) -> REALobject {
            [NSException raise:NSGenericException format:@"the maker's own"];
            return nullptr;
        });
    std::string passed;
    testing::internal::CaptureStderr();
    @try {
        bridge::guarded([] { failingBody(); });
    } @catch (NSException* exception) {
        passed = [[exception reason] UTF8String];
    }
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(passed, "the maker's own");
    EXPECT_TRUE(host.takePendingException().isNil());
}

TEST_F(Errors, WhatTheFamilyMakesNothingOfIsLoggedAndNotRaised) {
    publish(
        @selector(NewNSExceptionKaz:), +[](id, SEL, NSException*) -> REALobject { return nullptr; });
    testing::internal::CaptureStderr();
    bridge::guarded([] { failingBody(); });
    std::string log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("A NSInvalidArgumentException: the reason, Info: "), std::string::npos) << log;
    EXPECT_TRUE(host.takePendingException().isNil());
    expectClean();
}

TEST_F(Errors, WhenHandlingThrowsThatPassesAndThePoolIsDrained) {
    publish(
        @selector(NewNSExceptionKaz:),
        +[](id, SEL, NSException*) -> REALobject { @throw @"handling failed"; });
    drained = 0;
    NSString* passed = nil;
    testing::internal::CaptureStderr();
    @try {
        bridge::guardedInPool([] {
            [[[DrainWitness alloc] init] autorelease];
            failingBody();
        });
    } @catch (NSString* thrown) {
        passed = thrown;
    }
    testing::internal::GetCapturedStderr();
    EXPECT_STREQ([passed UTF8String], "handling failed");
    EXPECT_EQ(drained, 1);
}

} // namespace
