#include <typeset/text.h>
#include <gtest/gtest.h>
TEST(Text, Width) { EXPECT_GT(typeset::Text("Hello", {}).width(), 1); }
