// Key values order the way the record manager orders each type.
#include "keyorder.h"
#include "numeric.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <memory>

using namespace recman;

namespace {

using Raw = std::vector<std::uint8_t>;

KeyDefinition singleKey(DataType type, std::uint32_t length, std::uint16_t flags = 0)
{
    KeyDefinition key;
    key.segments.push_back({0,
                            0,
                            static_cast<std::uint16_t>(flags | keyflag::Extended),
                            static_cast<std::uint8_t>(type),
                            0,
                            length,
                            0,
                            {}});
    return key;
}

Raw image(const KeyDefinition &key, const Raw &value)
{
    Raw out;
    appendSortImage(key, value, out);
    EXPECT_EQ(out.size(), sortImageLength(key));
    return out;
}

// Each value sorts strictly after the one before it.
void expectAscending(const KeyDefinition &key, const std::vector<Raw> &values)
{
    for (std::size_t i = 1; i < values.size(); ++i)
        EXPECT_LT(image(key, values[i - 1]), image(key, values[i])) << "between values " << i - 1 << " and " << i;
}

template <typename T> Raw le(T value)
{
    Raw raw(sizeof(T));
    std::memcpy(raw.data(), &value, sizeof(T));
    return raw;
}

Raw packed(std::int64_t unscaled, std::size_t size)
{
    Raw raw(size, 0);
    EXPECT_TRUE(packDecimal(unscaled, raw));
    return raw;
}

Raw text(const std::string &s)
{
    return Raw(s.begin(), s.end());
}

TEST(KeyOrder, IntegersAndBinaryTypes)
{
    expectAscending(singleKey(DataType::Integer, 2),
                    {le<std::int16_t>(-32768), le<std::int16_t>(-1), le<std::int16_t>(0), le<std::int16_t>(255),
                     le<std::int16_t>(256), le<std::int16_t>(32767)});
    expectAscending(singleKey(DataType::Integer, 8), {le<std::int64_t>(INT64_MIN), le<std::int64_t>(-2),
                                                      le<std::int64_t>(5), le<std::int64_t>(INT64_MAX)});
    expectAscending(singleKey(DataType::AutoIncrement, 4),
                    {le<std::int32_t>(-7), le<std::int32_t>(1), le<std::int32_t>(70000)});
    expectAscending(singleKey(DataType::Currency, 8), {le<std::int64_t>(-10000), le<std::int64_t>(1)});
    expectAscending(singleKey(DataType::Unsigned, 2),
                    {le<std::uint16_t>(1), le<std::uint16_t>(255), le<std::uint16_t>(256), le<std::uint16_t>(65535)});
    // Old-style binary keys (no extended type) are unsigned little-endian too.
    KeyDefinition binary;
    binary.segments.push_back({0, 0, keyflag::Binary, 0, 0, 4, 0, {}});
    expectAscending(binary, {le<std::uint32_t>(2), le<std::uint32_t>(0x100), le<std::uint32_t>(0xFFFFFFFF)});
}

TEST(KeyOrder, FloatsDatesTimesAndDecimals)
{
    expectAscending(singleKey(DataType::Float, 8), {le(-1e300), le(-2.5), le(-0.0), le(1e-300), le(3.0), le(1e300)});
    expectAscending(singleKey(DataType::Float, 4), {le(-2.5f), le(0.0f), le(0.5f), le(1e30f)});
    Raw mbfOne = {0, 0, 0, 0x81}, mbfTwo = {0, 0, 0, 0x82}, mbfMinusOne = {0, 0, 0x80, 0x81}, mbfZero = {0, 0, 0, 0};
    expectAscending(singleKey(DataType::BFloat, 4), {mbfMinusOne, mbfZero, mbfOne, mbfTwo});
    // Dates: day, month, year; later years win over larger days.
    expectAscending(singleKey(DataType::Date, 4),
                    {{31, 12, 0xCF, 0x07}, {1, 1, 0xD0, 0x07}, {2, 1, 0xD0, 0x07}, {1, 2, 0xD0, 0x07}});
    // Times: hundredths, seconds, minutes, hours.
    expectAscending(singleKey(DataType::Time, 4), {{99, 59, 59, 0}, {0, 0, 0, 1}, {1, 0, 0, 1}});
    expectAscending(singleKey(DataType::Decimal, 4), {packed(-1234567, 4), packed(-2, 4), packed(0, 4), packed(3, 4),
                                                      packed(1005, 4), packed(9999999, 4)});
    // Minus zero equals zero.
    Raw minusZero = packed(0, 4);
    minusZero[3] = 0x0D;
    EXPECT_EQ(image(singleKey(DataType::Decimal, 4), minusZero), image(singleKey(DataType::Decimal, 4), packed(0, 4)));
    expectAscending(singleKey(DataType::Numeric, 5),
                    {text("0012R"), text("0012J"), text("0000{"), text("00003"), text("0001A")});
    expectAscending(singleKey(DataType::NumericSts, 4), {text("012-"), text("000+"), text("005+")});
}

TEST(KeyOrder, StringsCaseAcsAndDescending)
{
    const auto zstring = singleKey(DataType::ZString, 6);
    expectAscending(zstring,
                    {Raw{'a', 'b', 0, 'z', 'z', 'z'}, Raw{'a', 'b', 'c', 0, 0, 0}, Raw{'a', 'b', 'd', 0, 0, 0}});
    // Bytes after the terminator do not count.
    EXPECT_EQ(image(zstring, Raw{'a', 'b', 0, 'x', 'y', 'z'}), image(zstring, Raw{'a', 'b', 0, 0, 0, 0}));
    const auto lstring = singleKey(DataType::LString, 5);
    expectAscending(lstring, {Raw{2, 'a', 'b', 'z', 'z'}, Raw{3, 'a', 'b', 0, 0}, Raw{1, 'b', 0, 0, 0}});
    const auto folded = singleKey(DataType::String, 3, keyflag::CaseInsensitive);
    EXPECT_EQ(image(folded, text("abc")), image(folded, text("ABC")));
    expectAscending(folded, {text("abc"), text("ABD"), text("b  ")});
    // An ACS that reverses the alphabet.
    auto reversed = std::make_shared<CollatingSequence>();
    for (int i = 0; i < 256; ++i)
        reversed->table[i] = static_cast<std::uint8_t>(i >= 'A' && i <= 'Z' ? 'Z' - (i - 'A') : i);
    auto acsKey = singleKey(DataType::String, 1, keyflag::Acs);
    acsKey.segments[0].acs = reversed;
    expectAscending(acsKey, {text("Z"), text("Y"), text("A")});
    expectAscending(singleKey(DataType::Integer, 2, keyflag::Descending),
                    {le<std::int16_t>(300), le<std::int16_t>(2), le<std::int16_t>(-5)});
}

TEST(KeyOrder, CompositeKeysCompareSegmentBySegment)
{
    KeyDefinition key;
    key.segments.push_back(
        {0, 0, keyflag::Extended | keyflag::Segmented, static_cast<std::uint8_t>(DataType::Integer), 0, 2, 0, {}});
    key.segments.push_back(
        {0, 1, keyflag::Extended | keyflag::Descending, static_cast<std::uint8_t>(DataType::String), 2, 2, 0, {}});
    // A plain byte comparison would put 256 (00 01) before 1 (01 00) and -1 last.
    expectAscending(key,
                    {Raw{0xFF, 0xFF, 'z', 'z'}, Raw{0xFF, 0xFF, 'a', 'a'}, Raw{1, 0, 'b', 'b'}, Raw{0, 1, 'c', 'c'}});
}

TEST(KeyOrder, NullKeyRules)
{
    auto all = singleKey(DataType::String, 2, keyflag::NullAll);
    all.segments[0].nullValue = ' ';
    all.segments.push_back(all.segments[0]);
    all.segments[1].offset = 2;
    EXPECT_TRUE(isNullKey(all, text("    ")));
    EXPECT_FALSE(isNullKey(all, text("  x ")));
    auto any = all;
    for (auto &segment : any.segments)
        segment.flags = keyflag::Extended | keyflag::NullAny;
    EXPECT_TRUE(isNullKey(any, text("  x ")));
    EXPECT_FALSE(isNullKey(any, text("y x ")));
    EXPECT_FALSE(isNullKey(singleKey(DataType::String, 2), text("  ")));
}

} // namespace
