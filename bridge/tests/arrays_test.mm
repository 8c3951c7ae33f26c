// Filling host arrays from NSArray.
#include "conversion_test.h"

#include <bridge/arrays.h>

namespace {

using studio::Value;

class FilledArrays : public OnEveryHost {};

REALstringArray handleOf(const Value& array) { return reinterpret_cast<REALstringArray>(array.object()); }

TEST_P(FilledArrays, AStringArrayIsFilledInOrder) {
    Value array = host.array("String");
    FillStringArray(handleOf(array), [NSArray arrayWithObjects:@"one", @"two", @"", @"four", nil]);
    ASSERT_EQ(array.count(), 4);
    EXPECT_EQ(array.at(0).text(), "one");
    EXPECT_EQ(array.at(1).text(), "two");
    EXPECT_EQ(array.at(2).text(), "");
    EXPECT_EQ(array.at(3).text(), "four");
}

TEST_P(FilledArrays, AStringArrayKeepsWhatItHeldBehindTheNewElements) {
    Value array = host.array("String", {"old", "older"});
    FillStringArray(handleOf(array), [NSArray arrayWithObject:@"new"]);
    ASSERT_EQ(array.count(), 3);
    EXPECT_EQ(array.at(0).text(), "new");
    EXPECT_EQ(array.at(2).text(), "older");
}

TEST_P(FilledArrays, FillingWithNothingOrIntoNothingDoesNothing) {
    Value array = host.array("String", {"old"});
    FillStringArray(handleOf(array), nil);
    FillStringArray(handleOf(array), [NSArray array]);
    FillStringArray(nullptr, [NSArray arrayWithObject:@"text"]);
    EXPECT_EQ(array.count(), 1);
}

INSTANTIATE_TEST_SUITE_P(Hosts, FilledArrays, testing::ValuesIn(kHostVersions),
                         [](const auto& info) { return info.param.name; });

class WithoutInsertProc : public Without {
  protected:
    WithoutInsertProc() : Without({"RuntimeArrayDirectGetInsertProc"}) {}
};
TEST_F(WithoutInsertProc, TheArrayStaysAndTheStringsAreGivenBack) {
    Value array = host.array("String", {"old"});
    FillStringArray(handleOf(array), [NSArray arrayWithObjects:@"one", @"two", nil]);
    EXPECT_EQ(array.count(), 1);
}

} // namespace
