// What a scope owns is given back when Cocoa raises: where destructors run on the way (as built here) and
// where they are skipped by longjmp (KAZ_LONGJMP, as on 32-bit Mac OS X).
#include <bridge/guard.h>
#include <bridge/owned.h>

#include <gtest/gtest.h>

#include <malloc.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

void raise() { [NSException raise:NSGenericException format:@"the reason"]; }

std::string givenBack; // in order
void note(const char* name) { givenBack += name; }
using Noted = host::Entry<const char*, note>;

class LedgerTest : public testing::Test {
  protected:
    LedgerTest() { givenBack.clear(); }
};

struct Witness {
    int& ends;
    ~Witness() { ++ends; }
};

TEST_F(LedgerTest, ADestructorRunsOnlyWhereExceptionsUnwind) {
    int ends = 0;
    NSException* raised = bridge::raisedBy([&] {
        Witness witness{ends};
        raise();
    });
    EXPECT_STREQ([[raised reason] UTF8String], "the reason");
#if KAZ_LONGJMP
    EXPECT_EQ(ends, 0);
#else
    EXPECT_EQ(ends, 1);
#endif
}

TEST_F(LedgerTest, WithoutAnExceptionAScopeGivesBackAtItsEnd) {
    EXPECT_EQ(bridge::raisedBy([] {
                  Noted a("a"), b("b");
                  EXPECT_EQ(givenBack, "");
              }),
              nil);
    EXPECT_EQ(givenBack, "ba");
}

TEST_F(LedgerTest, SkippedScopesGiveBackInnermostFirst) {
    bridge::raisedBy([] {
        Noted a("a");
        [] {
            Noted b("b"), c("c");
            raise();
        }();
    });
    EXPECT_EQ(givenBack, "cba");
}

TEST_F(LedgerTest, WhatWasReleasedIsTheCallers) {
    bridge::raisedBy([] {
        Noted a("a"), b("b");
        EXPECT_STREQ(b.release(), "b");
        EXPECT_FALSE(b);
        raise();
    });
    EXPECT_EQ(givenBack, "a");
}

TEST_F(LedgerTest, NullOwnsNothing) {
    bridge::raisedBy([] {
        Noted none(nullptr);
        raise();
    });
    EXPECT_EQ(givenBack, "");
}

TEST_F(LedgerTest, AHandlerLeavesWhatScopesAroundItOwn) {
    bridge::raisedBy([] {
        Noted a("a");
        bridge::raisedBy([] {
            Noted b("b");
            raise();
        });
        EXPECT_EQ(givenBack, "b");
        givenBack += "-";
        raise();
    });
    EXPECT_EQ(givenBack, "b-a");
}

TEST_F(LedgerTest, AThingMayBeGivenBackInsideOfAHandlerThatItIsOlderThan) {
    auto a = std::make_unique<Noted>("a");
    bridge::raisedBy([&] {
        a.reset();
        Noted b("b");
        raise();
    });
    EXPECT_EQ(givenBack, "ab");
}

TEST_F(LedgerTest, ThingsMayBeGivenBackInAnyOrder) {
    auto a = std::make_unique<Noted>("a");
    Noted b("b");
    bridge::raisedBy([&] {
        Noted c("c");
        a.reset();
        raise();
    });
    EXPECT_EQ(givenBack, "ac");
}

TEST_F(LedgerTest, ALedgerGrows) {
    constexpr int deep = 1000;
    struct Nest {
        static void open(int left) {
            Noted a("a");
            if (left > 1)
                open(left - 1);
            else
                raise();
        }
    };
    bridge::raisedBy([] { Nest::open(deep); });
    EXPECT_EQ(givenBack, std::string(deep, 'a'));
}

TEST_F(LedgerTest, WhatPassesTheHandlerIsGivenBackAllTheSame) {
    NSString* passed = nil;
    @try {
        bridge::raisedBy([] {
            Noted a("a");
            @throw @"no exception";
        });
    } @catch (NSString* thrown) {
        passed = thrown;
    }
    EXPECT_STREQ([passed UTF8String], "no exception");
    EXPECT_EQ(givenBack, "a");
}

TEST_F(LedgerTest, WhatAHandlerThrowsReachesTheNextOne) {
    NSException* outer = bridge::raisedBy([] {
        Noted a("a");
        NSException* inner = bridge::raisedBy([] {
            Noted b("b");
            raise();
        });
        @throw inner;
    });
    EXPECT_STREQ([[outer reason] UTF8String], "the reason");
    EXPECT_EQ(givenBack, "ba");
}

TEST_F(LedgerTest, WhatAScopeHasGivenBackIsNotGivenBackAgain) {
    bridge::raisedBy([] {
        alignas(Noted) unsigned char skipped[sizeof(Noted)];
        auto older = std::make_unique<Noted>("a");
        new (skipped) Noted("b");
        older.reset(); // its line is below an open one
        raise();
    });
    EXPECT_EQ(givenBack, "ab");
}

TEST_F(LedgerTest, NothingStaysInTheLedger) {
    std::uint32_t before = host::Ledger::ofThisThread()->size();
    bridge::raisedBy([] { Noted a("a"), b("b"); });
    EXPECT_EQ(host::Ledger::ofThisThread()->size(), before);
    bridge::raisedBy([] {
        Noted a("a");
        raise();
    });
    EXPECT_EQ(host::Ledger::ofThisThread()->size(), before);
    auto older = std::make_unique<Noted>("a");
    auto younger = std::make_unique<Noted>("b");
    older.reset();
    younger.reset();
    EXPECT_EQ(host::Ledger::ofThisThread()->size(), before);
}

TEST_F(LedgerTest, TheLedgerOfAThreadGoesWithIt) {
    constexpr std::size_t kThreads = 256;
    auto own = [] { host::Entry<const char*, [](const char*) {}> entry("a"); };
    std::thread(own).join(); // what a first thread makes for all
    std::size_t before = mallinfo2().uordblks;
    for (std::size_t i = 0; i < kThreads; ++i) std::thread(own).join();
    EXPECT_LT(mallinfo2().uordblks, before + kThreads * sizeof(host::Ledger::Line));
}

TEST_F(LedgerTest, CoreFoundationAndCocoaObjectsAreReleased) {
    NSObject* object = [[NSObject alloc] init];
    bridge::raisedBy([&] {
        bridge::Owned<CFTypeRef> owned(CFRetain((CFTypeRef)object));
        bridge::Retained retained([object retain]);
        EXPECT_EQ([object retainCount], 3u);
        raise();
    });
    EXPECT_EQ([object retainCount], 1u);
    [object release];
}

TEST_F(LedgerTest, APoolIsDrained) {
    NSObject* object = [[NSObject alloc] init];
    NSException* exception = [NSException exceptionWithName:NSGenericException reason:nil userInfo:nil];
    EXPECT_EQ(bridge::raisedBy([&] {
                  bridge::AutoreleasePool pool;
                  [[object retain] autorelease];
                  [exception raise];
              }),
              exception);
    EXPECT_EQ([object retainCount], 1u);
    [object release];
}

TEST_F(LedgerTest, AnExceptionOutlivesThePoolItIsInUntilThePoolAroundTheHandlerIsDrained) {
    NSException* exception = [[NSException alloc] initWithName:NSGenericException reason:nil userInfo:nil];
    {
        bridge::AutoreleasePool outer;
        bridge::raisedBy([&] {
            bridge::AutoreleasePool inner;
            [[exception retain] autorelease];
            [exception raise];
        });
        EXPECT_EQ([exception retainCount], 2u);
    }
    EXPECT_EQ([exception retainCount], 1u);
    [exception release];
}

} // namespace
