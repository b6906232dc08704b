#include "currency.h"

#include <gtest/gtest.h>

TEST(Currency, ParsesWhatUsersTypeAndDatabasesPrint)
{
    EXPECT_EQ(Currency::parse("1234.5")->raw(), 12345000);
    EXPECT_EQ(Currency::parse(" $1,234.50 ")->raw(), 12345000);
    EXPECT_EQ(Currency::parse("-1,000")->raw(), -10000000);
    EXPECT_EQ(Currency::parse("(12.00)")->raw(), -120000);
    EXPECT_EQ(Currency::parse(".25")->raw(), 2500);
    EXPECT_EQ(Currency::parse("0.00005")->raw(), 1); // rounds half away from zero
    EXPECT_EQ(Currency::parse("-0.00005")->raw(), -1);
    EXPECT_EQ(Currency::parse("0.00004")->raw(), 0);
    for (const char *bad : {"", " ", "abc", "12x", "1.2.3", "$", "--1", "1e5"})
        EXPECT_FALSE(Currency::parse(bad).has_value()) << bad;
}

TEST(Currency, RefusesAmountsBeyondRangeInsteadOfWrapping)
{
    EXPECT_TRUE(Currency::parse("922337203685477.5807").has_value());
    EXPECT_FALSE(Currency::parse("922337203685478").has_value());
    EXPECT_FALSE(Currency::parse("99999999999999999999").has_value());
    EXPECT_FALSE(Currency::fromDouble(1e300).has_value());
    EXPECT_FALSE(Currency::fromDouble(std::numeric_limits<double>::quiet_NaN()).has_value());
}

TEST(Currency, RoundsDriverDoublesToFourPlaces)
{
    // 0.1 + 0.2 is not 0.3 in binary; the amount must be.
    EXPECT_EQ(Currency::fromDouble(0.1 + 0.2)->raw(), 3000);
    EXPECT_EQ(Currency::fromDouble(123456789.12345)->raw(), 1234567891235);
    EXPECT_EQ(Currency::fromDouble(-2.00005)->raw(), -20001);
}

TEST(Currency, FormatsForSqlAndForGrids)
{
    const auto amount = *Currency::parse("-1234567.891");
    EXPECT_EQ(amount.toSqlText(), "-1234567.891");
    EXPECT_EQ(amount.toDisplayText(), "-1,234,567.89");
    EXPECT_EQ(Currency().toSqlText(), "0");
    EXPECT_EQ(Currency().toDisplayText(), "0.00");
    EXPECT_EQ(Currency::parse("999.995")->toDisplayText(), "1,000.00");
    EXPECT_EQ(Currency::parse("-0.05")->toDisplayText(), "-0.05");
    EXPECT_EQ(Currency::fromRaw(std::numeric_limits<std::int64_t>::min()).toSqlText(), "-922337203685477.5808");
    // Text written for SQL reads back to the same amount.
    for (const char *text : {"0.0001", "-42", "100000000.5", "922337203685477.5807"})
        EXPECT_EQ(*Currency::parse(Currency::parse(text)->toSqlText()), *Currency::parse(text)) << text;
}
