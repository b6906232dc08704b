#include "exactarithmetic.h"
#include "formulatesting.h"

TEST(FormulaArithmetic, IsExactToFourPlacesAndRoundsHalfAwayFromZero)
{
    const struct {
        const char *formula;
        const char *expected;
    } cases[] = {
        {"0.1 + 0.2", "0.3"},
        {"1 / 3", "0.3333"},
        {"2 / 3", "0.6667"},
        {"-2 / 3", "-0.6667"},
        {"0.0001 * 0.5", "0.0001"},   // half rounds up...
        {"-0.0001 * 0.5", "-0.0001"}, // ...and away from zero when negative
        {"0.0001 * 0.4999", "0"},
        {"123456789.1234 * 1000", "123456789123.4"},
        {"922337203685477 / 7", "131762457669353.8571"},
        {"50 % 200", "25"},
        {"1 % 3", "33.3333"},
        {"10 - 2 * 3", "4"},
        {"(10 - 2) * 3", "24"},
        {"-2 * -3", "6"},
        {"8 / 4 / 2", "1"},
        {"10 - 4 - 3", "3"},
        {"round(2.5)", "3"},
        {"round(-2.5)", "-3"},
        {"round(-2.4)", "-2"},
        {"round(1.23456, 2)", "1.23"},
        {"round(1.235, 2)", "1.24"},
        {"abs(-7.5)", "7.5"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(evaluated(c.formula), number(c.expected)) << c.formula;
}

TEST(FormulaArithmetic, ProductsBeyondSixtyFourBitsStayExact)
{
    // 900,000,000 × 9,000 overflows 64 bits in ten-thousandths before the rescale.
    EXPECT_EQ(multiplyExact(*Currency::parse("900000000"), *Currency::parse("9000")),
              Currency::parse("8100000000000"));
    EXPECT_EQ(divideExact(*Currency::parse("900000000000"), *Currency::parse("0.0003")), std::nullopt);
    EXPECT_EQ(multiplyExact(*Currency::parse("922337203685477"), *Currency::parse("2")), std::nullopt);
    EXPECT_EQ(addExact(Currency::fromRaw(INT64_MAX), Currency::fromRaw(1)), std::nullopt);
    EXPECT_EQ(roundExact(Currency::fromRaw(INT64_MAX), 0), std::nullopt);
    EXPECT_EQ(refusal("922337203685477 * 2"), "Number too large at position 16");
}

TEST(FormulaArithmetic, NullSpreadsThroughArithmeticButJoinsAsNothing)
{
    MapContext row;
    row.fields["T.Missing"] = ReportValue();
    row.fields["T.Amount"] = number("12.5");
    for (const char *formula : {"{T.Missing} + 1", "{T.Amount} * {T.Missing}", "-{T.Missing}", "{T.Missing} / 0",
                                "round({T.Missing}, 2)", "{T.Missing} + 'a'"})
        EXPECT_EQ(evaluated(formula, row), ReportValue()) << formula;
    EXPECT_EQ(evaluated("'[' & {T.Missing} & ']'", row), text("[]"));
    EXPECT_EQ(evaluated("totext({T.Missing})", row), text(""));
    EXPECT_EQ(evaluated("isnull({T.Missing}) and not isnull({T.Amount})", row), ReportValue::boolean(true));
}

TEST(FormulaArithmetic, DatesMoveByWholeDays)
{
    EXPECT_EQ(evaluated("date(2024, 2, 28) + 1"), ReportValue::date(QDate(2024, 2, 29)));
    EXPECT_EQ(evaluated("date(2025, 1, 1) - date(2024, 1, 1)"), number("366"));
    EXPECT_EQ(evaluated("year(date(2025, 7, 1) - 200)"), number("2024"));
    EXPECT_EQ(refusal("date(2025, 1, 1) + 0.5"), "A date moves by whole days, not 0.5 at position 17");
}
