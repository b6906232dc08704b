// Field values decode from and encode to the bytes each data type uses, and
// text goes through the legacy code page, never assumed to be UTF-8.
#include "codepage.h"
#include "fieldcodec.h"

#include <gtest/gtest.h>

using namespace recman;

namespace {

using Raw = std::vector<std::uint8_t>;

Value decoded(const FieldDef &field, const Raw &record)
{
    Value value;
    std::string error;
    EXPECT_TRUE(decodeField(field, record, CodePage::windows1252(), value, error)) << error;
    return value;
}

Raw encoded(const FieldDef &field, const Value &value, std::size_t recordLength)
{
    Raw record(recordLength, 0xAA);
    std::string error;
    EXPECT_TRUE(encodeField(field, value, record, CodePage::windows1252(), error)) << error;
    return record;
}

FieldDef field(DataType type, std::uint32_t size, std::uint8_t decimals = 0, std::uint16_t flags = 0)
{
    return FieldDef{"f", type, 0, size, decimals, flags};
}

// Known bytes <-> known values, both ways.
struct Case {
    FieldDef field;
    Raw bytes;
    Value value;
};

TEST(FieldCodec, KnownBytesAndValuesRoundTrip)
{
    const std::vector<Case> cases = {
        {field(DataType::Decimal, 4, 2), {0x12, 0x34, 0x56, 0x7D}, Decimal{-1234567, 2}},
        {field(DataType::Decimal, 3, 0), {0x00, 0x04, 0x2F}, Decimal{42, 0}},
        {field(DataType::Money, 4, 2), {0x00, 0x01, 0x99, 0x9F}, Decimal{1999, 2}},
        {field(DataType::Numeric, 5, 1), {'0', '0', '1', '2', 'J'}, Decimal{-121, 1}},
        {field(DataType::Numeric, 4, 2), {'0', '1', '2', '5'}, Decimal{125, 2}},
        {field(DataType::NumericSts, 4, 0), {'0', '1', '2', '-'}, Decimal{-12, 0}},
        {field(DataType::Currency, 8), {0x10, 0x27, 0, 0, 0, 0, 0, 0}, Decimal{10000, 4}},
        {field(DataType::Date, 4), {11, 1, 0xCB, 0x07}, Date{1995, 1, 11}},
        {field(DataType::Time, 4), {50, 9, 5, 13}, Time{13, 5, 9, 50}},
        {field(DataType::Integer, 2), {0xFE, 0xFF}, std::int64_t{-2}},
        {field(DataType::Integer, 1), {0xFE}, std::int64_t{254}}, // old tools: 1-byte integers unsigned
        {field(DataType::Integer, 1, 0, fieldflag::SignedTinyInt), {0xFE}, std::int64_t{-2}},
        {field(DataType::Unsigned, 4), {0xFF, 0xFF, 0xFF, 0xFF}, std::int64_t{4294967295}},
        {field(DataType::AutoIncrement, 4), {7, 0, 0, 0}, std::int64_t{7}},
        {field(DataType::Float, 8), {0x00, 0x00, 0x00, 0xE0, 0x13, 0x54, 0xA2, 0x41}, 153750000.0},
        {field(DataType::Float, 4), {0, 0, 0xC0, 0x3F}, 1.5},
        {field(DataType::BFloat, 4), {0, 0, 0, 0x81}, 1.0},
        {field(DataType::BFloat, 4), {0, 0, 0xC0, 0x82}, -3.0},
        {field(DataType::BFloat, 8), {0, 0, 0, 0, 0, 0, 0x20, 0x84}, 10.0},
        {field(DataType::Logical, 1), {1}, true},
        {field(DataType::String, 6), {'A', 'b', 'c', ' ', ' ', ' '}, std::string("Abc")},
        {field(DataType::ZString, 5), {'h', 'i', 0, 0, 0}, std::string("hi")},
        {field(DataType::LString, 5), {3, 'a', 'b', 'c', 0}, std::string("abc")},
        {field(DataType::String, 2), {0x80, 0xE9}, std::string("€é")},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(toText(c.value));
        EXPECT_EQ(decoded(c.field, c.bytes), c.value);
        EXPECT_EQ(encoded(c.field, c.value, c.bytes.size()), c.bytes);
    }
}

TEST(FieldCodec, LenientReadsOfLegacyPadding)
{
    EXPECT_EQ(decoded(field(DataType::String, 5), {'a', 'b', 0, 0, 0}), Value{std::string("ab")});
    EXPECT_EQ(decoded(field(DataType::ZString, 6), {'a', 'b', 0, 'o', 'l', 'd'}), Value{std::string("ab")});
    EXPECT_EQ(decoded(field(DataType::Date, 4), {0, 0, 0, 0}), Value{Null{}});
    EXPECT_EQ(decoded(field(DataType::Numeric, 3), {' ', ' ', ' '}), Value{Null{}});
    // Packed decimal read with sign nibble C, and the other positive/negative codes.
    EXPECT_EQ(decoded(field(DataType::Decimal, 2, 1), Raw{0x12, 0x3C}), (Value{Decimal{123, 1}}));
    EXPECT_EQ(decoded(field(DataType::Decimal, 2, 1), Raw{0x12, 0x3B}), (Value{Decimal{-123, 1}}));
    // Bit fields share a byte; decimals is the bit number.
    FieldDef bit = field(DataType::Bit, 1, 3);
    EXPECT_EQ(decoded(bit, {0x08}), Value{true});
    Raw record = {0x01};
    std::string error;
    ASSERT_TRUE(encodeField(bit, true, record, CodePage::windows1252(), error));
    EXPECT_EQ(record, Raw{0x09});
    // Money without declared decimals has two.
    EXPECT_EQ(decoded(field(DataType::Money, 3), Raw{0x01, 0x23, 0x4F}), (Value{Decimal{1234, 2}}));
}

TEST(FieldCodec, ValuesThatDoNotFitAreRefusedAndLeaveTheRecordAlone)
{
    struct Refusal {
        FieldDef field;
        Value value;
    };
    const std::vector<Refusal> refusals = {
        {field(DataType::String, 3), std::string("four")},
        {field(DataType::ZString, 3), std::string("abc")}, // no room for the terminator
        {field(DataType::String, 3), std::string("日本")}, // not in Windows-1252
        {field(DataType::Integer, 2), std::int64_t{40000}},
        {field(DataType::Unsigned, 2), std::int64_t{-1}},
        {field(DataType::Decimal, 2, 2), Decimal{12345, 2}}, // 5 digits in 3
        {field(DataType::Decimal, 4, 2), Decimal{12345, 3}}, // a decimal would be lost
        {field(DataType::Currency, 8), std::string("1.23456")},
        {field(DataType::Date, 4), Date{2024, 13, 1}},
        {field(DataType::Time, 4), Time{24, 0, 0, 0}},
        {field(DataType::Logical, 1), std::int64_t{2}},
        {field(DataType::Integer, 3), std::int64_t{1}},
        {FieldDef{"f", DataType::String, 4, 4, 0, 0}, std::string("x")}, // beyond a 6-byte record
    };
    for (const auto &r : refusals) {
        SCOPED_TRACE(toText(r.value));
        Raw record(6, 0x55);
        std::string error;
        EXPECT_FALSE(encodeField(r.field, r.value, record, CodePage::windows1252(), error));
        EXPECT_FALSE(error.empty());
        EXPECT_EQ(record, Raw(6, 0x55));
    }
    // Text input for numbers is exact, and more decimals are fine when they are zeros.
    EXPECT_EQ(encoded(field(DataType::Currency, 8), std::string("-1,234.50"), 8),
              encoded(field(DataType::Currency, 8), Decimal{-12345000, 4}, 8));
    EXPECT_EQ(encoded(field(DataType::Decimal, 3, 1), Decimal{12300, 3}, 3), (Raw{0x00, 0x12, 0x3F}));
}

TEST(FieldCodec, UndecodableBytesAreReported)
{
    Value value;
    std::string error;
    const Raw badDecimal = {0x1A, 0x2F};
    EXPECT_FALSE(decodeField(field(DataType::Decimal, 2), badDecimal, CodePage::windows1252(), value, error));
    EXPECT_NE(error.find("\"f\""), std::string::npos);
    EXPECT_FALSE(decodeField(field(DataType::Date, 4), Raw{40, 2, 0xD0, 0x07}, CodePage::windows1252(), value, error));
    EXPECT_FALSE(decodeField(field(DataType::LString, 3), Raw{9, 'a', 'b'}, CodePage::windows1252(), value, error));
    EXPECT_FALSE(
        decodeField(FieldDef{"g", DataType::String, 2, 4, 0, 0}, Raw(5, 'x'), CodePage::windows1252(), value, error));
    EXPECT_FALSE(decodeField(field(DataType::Note, 4), Raw(4, 'x'), CodePage::windows1252(), value, error));
}

TEST(CodePages, EveryByteRoundTripsAndUnmappableTextIsFlagged)
{
    for (const auto *page : {&CodePage::windows1252(), &CodePage::dos437(), &CodePage::latin1(), &CodePage::dos866(),
                             &CodePage::windows1251()}) {
        SCOPED_TRACE(std::string(page->name()));
        for (int byte = 0; byte < 256; ++byte) {
            const std::uint8_t raw = static_cast<std::uint8_t>(byte);
            std::string back;
            EXPECT_TRUE(page->fromUtf8(page->toUtf8(Bytes(&raw, 1)), back)) << byte;
            EXPECT_EQ(back, std::string(1, static_cast<char>(raw))) << byte;
        }
    }
    const std::uint8_t dos[] = {0x82, 0xC9, 0xE1};
    EXPECT_EQ(CodePage::dos437().toUtf8(dos), "é╔ß");
    const std::uint8_t budget866[] = {0x81, 0xEE, 0xA4, 0xA6, 0xA5, 0xE2, 0xF1};
    EXPECT_EQ(CodePage::dos866().toUtf8(budget866), "Бюджетё");
    const std::uint8_t budget1251[] = {0xC1, 0xFE, 0xE4, 0xE6, 0xE5, 0xF2, 0xB8};
    EXPECT_EQ(CodePage::windows1251().toUtf8(budget1251), "Бюджетё");
    EXPECT_EQ(CodePage::byName("Windows-1251"), &CodePage::windows1251());
    EXPECT_EQ(CodePage::byName("866"), &CodePage::dos866());
    std::string out;
    EXPECT_FALSE(CodePage::windows1252().fromUtf8("a\xE2\x98\x83z", out)); // snowman
    EXPECT_EQ(out, "a?z");
    EXPECT_FALSE(CodePage::windows1252().fromUtf8("\xC3", out)); // cut UTF-8 sequence
    EXPECT_EQ(CodePage::byName("CP437"), &CodePage::dos437());
    EXPECT_EQ(CodePage::byName("utf-8"), nullptr);
}

} // namespace
