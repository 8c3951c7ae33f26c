// Strings, arrays and variants as plugins see them.
#include "service_of.h"

#include <studio/host.h>

#include <gtest/gtest.h>

#include <cstring>

using namespace studio;

TEST(Strings, LieOpenBefore2013) {
    Host host({.version = 2012.0});
    Value text("grün");
    REALstring handle = text.stringHandle();
    EXPECT_EQ(handle->length, 5u);
    EXPECT_EQ(handle->encoding, std::uint32_t(kREALTextEncodingUTF8));
    EXPECT_STREQ(handle->buffer + 1, "grün");
}

TEST(Strings, HideLater) {
    Host host({.version = 2013.0});
    Value text("hidden text");
    // Null where the open layout has the buffer, so reading it there faults.
    EXPECT_EQ(text.stringHandle()->buffer, nullptr);
    EXPECT_NE(text.stringHandle()->encoding, std::uint32_t(kREALTextEncodingUTF8));
}

TEST(Strings, ConvertBetweenEncodings) {
    Host host;
    auto convert = SERVICE_OF(host, REALConvertString);
    auto encoding = SERVICE_OF(host, REALGetStringEncoding);
    auto getData = SERVICE_OF(host, PluginGetStringData);
    auto dispose = SERVICE_OF(host, PluginDisposeStringData);
    auto unlock = SERVICE_OF(host, REALUnlockString);
    {
        Value text("é𝄞");
        REALstring wide = convert(text.stringHandle(), kREALTextEncodingUTF16);
        ASSERT_TRUE(wide);
        EXPECT_EQ(encoding(wide), std::uint32_t(kREALTextEncodingUTF16));
        REALstringData bytes;
        ASSERT_TRUE(getData(wide, kREALTextEncodingUnknown, &bytes));
        EXPECT_EQ(bytes.length, 6u);
        const std::uint16_t units[] = {0xE9, 0xD834, 0xDD1E, 0};
        EXPECT_EQ(std::memcmp(bytes.data, units, 8), 0);
        dispose(&bytes);
        ASSERT_TRUE(getData(wide, kREALTextEncodingUTF8, &bytes));
        EXPECT_STREQ(static_cast<char*>(bytes.data), "é𝄞");
        dispose(&bytes);
        EXPECT_FALSE(convert(text.stringHandle(), kREALTextEncodingASCII));
        unlock(wide);
    }
    EXPECT_TRUE(host.report().clean()) << host.report().text();
}

TEST(Arrays, ShowTheirStorageUpTo2013_9) {
    for (double version : {2012.0, 2013.9, 2014.01}) {
        Host host({.version = version});
        Value array = host.array("Single", {1.5, 2.5});
        auto* face = reinterpret_cast<REALarray>(array.object());
        if (version <= 2013.9) {
            ASSERT_TRUE(face->storage);
            EXPECT_EQ(static_cast<float*>(face->storage)[1], 2.5f);
        } else {
            EXPECT_FALSE(face->storage);
        }
    }
}

TEST(Variants, HaveTheTypeCodesOfTheInterface) {
    Host host;
    auto code = [&](Value value) { return host.function("VarType", {std::move(value)}).integer(); };
    EXPECT_EQ(code(nullptr), 0);
    EXPECT_EQ(code(1), 2);
    EXPECT_EQ(code(1LL), 3);
    EXPECT_EQ(code(1.0f), 4);
    EXPECT_EQ(code(1.0), 5);
    EXPECT_EQ(code(host.create("Date")), 7);
    EXPECT_EQ(code("text"), 8);
    EXPECT_EQ(code(host.create("Dictionary")), 9);
    EXPECT_EQ(code(true), 11);
    EXPECT_EQ(code(Value::color(0xFF112233)), 16);
    EXPECT_EQ(code(host.array("Integer")), 0x1002);
    EXPECT_EQ(code(host.array("String")), 0x1008);
    EXPECT_EQ(code(host.array("Variant")), 0x1009);
    EXPECT_EQ(code(host.array("Date")), 0x1007);
    EXPECT_EQ(code(host.array("Boolean")), 0x100B);
    // A code implies the size of the elements.
    for (const char* type : {"Int8", "UInt8", "Int16", "UInt16", "UInt32"})
        EXPECT_EQ(code(host.array(type)), 0x1011) << type;
    EXPECT_EQ(code(host.array("UInt64")), 0x1003);
}
