#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "util/binaryio.h"

using namespace orv;

TEST(BinaryIo, FieldsAreLittleEndianOnDisk)
{
    CByteWriter w;
    w.I16(-2);
    w.U16(0x1234);
    w.I32(0x01020304);
    w.F64(1.0);
    const std::vector<std::uint8_t> expected{0xFE, 0xFF, 0x34, 0x12, 0x04, 0x03, 0x02, 0x01,
                                             0, 0, 0, 0, 0, 0, 0xF0, 0x3F};
    EXPECT_EQ(w.Data(), expected);
}

TEST(BinaryIo, RoundTripOfEveryFieldType)
{
    CByteWriter w;
    w.U8(250);
    w.I8(-100);
    w.I16(-32768);
    w.U16(65535);
    w.I32(-2147483647 - 1);
    w.U32(4000000000u);
    w.I64(-1234567890123456789LL);
    w.F32(-1.5f);
    w.F64(-0.1);
    w.CountedString("Orion and Taurus");
    w.FixedText("M42", 8);
    CByteReader r(w.Data());
    std::uint8_t u8{};
    std::int8_t i8{};
    std::int16_t i16{};
    std::uint16_t u16{};
    std::int32_t i32{};
    std::uint32_t u32{};
    std::int64_t i64{};
    float f32{};
    double f64{};
    std::string text, fixed;
    ASSERT_TRUE(r.U8(u8) && r.I8(i8) && r.I16(i16) && r.U16(u16) && r.I32(i32) && r.U32(u32) && r.I64(i64) &&
                r.F32(f32) && r.F64(f64) && r.CountedString(text) && r.FixedText(fixed, 8));
    EXPECT_EQ(u8, 250);
    EXPECT_EQ(i8, -100);
    EXPECT_EQ(i16, -32768);
    EXPECT_EQ(u16, 65535);
    EXPECT_EQ(i32, -2147483647 - 1);
    EXPECT_EQ(u32, 4000000000u);
    EXPECT_EQ(i64, -1234567890123456789LL);
    EXPECT_EQ(f32, -1.5f);
    EXPECT_EQ(f64, -0.1);
    EXPECT_EQ(text, "Orion and Taurus");
    EXPECT_EQ(fixed, "M42");
    EXPECT_TRUE(r.AtEnd());
    EXPECT_FALSE(r.ShortRead());
}

TEST(BinaryIo, FixedTextKeepsRoomForTheTerminator)
{
    CByteWriter w;
    w.FixedText(std::string(100, 'x'), 80);
    ASSERT_EQ(w.Size(), 80u);
    EXPECT_EQ(w.Data()[78], 'x');
    EXPECT_EQ(w.Data()[79], 0);
    CByteReader r(w.Data());
    std::string t;
    ASSERT_TRUE(r.FixedText(t, 80));
    EXPECT_EQ(t.size(), 79u);
}

TEST(BinaryIo, CountedStringOfZeroOrNegativeLengthConsumesNothingMore)
{
    CByteWriter w;
    w.I16(0);
    w.I16(-5);
    w.I16(7);
    CByteReader r(w.Data());
    std::string t = "stale";
    ASSERT_TRUE(r.CountedString(t));
    EXPECT_EQ(t, "");
    t = "stale";
    ASSERT_TRUE(r.CountedString(t));
    EXPECT_EQ(t, "");
    std::int16_t next = 0;
    ASSERT_TRUE(r.I16(next));
    EXPECT_EQ(next, 7);
}

TEST(BinaryIo, ShortReadsNeverPassTheEndAndLeaveTargetsUnchanged)
{
    const std::vector<std::uint8_t> bytes{1, 2, 3};
    CByteReader r(bytes);
    std::int16_t a = 0;
    ASSERT_TRUE(r.I16(a));
    std::int32_t b = 42;
    EXPECT_FALSE(r.I32(b));
    EXPECT_EQ(b, 42);
    EXPECT_TRUE(r.ShortRead());
    EXPECT_TRUE(r.AtEnd());
    double c = 7.0;
    EXPECT_FALSE(r.F64(c));
    EXPECT_EQ(c, 7.0);

    // A counted string claiming more bytes than remain takes what is there.
    CByteWriter w;
    w.I16(100);
    w.Bytes(std::vector<std::uint8_t>{'a', 'b'});
    CByteReader s(w.Data());
    std::string t;
    EXPECT_FALSE(s.CountedString(t));
    EXPECT_EQ(t, "ab");
    EXPECT_TRUE(s.ShortRead());
}
