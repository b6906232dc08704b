#include "padstring.h"

#include <gtest/gtest.h>

TEST(PadString, PadLeftRightAlignsAndKeepsTheRightEnd)
{
    EXPECT_EQ(PadLeft("ABCDEF", 4), "CDEF");
    EXPECT_EQ(PadLeft("ABCDEF", 0), "ABCDEF");
    EXPECT_EQ(PadLeft("ABCDEF", -3), "ABCDEF");
    EXPECT_EQ(PadLeft("12", 10), "        12");
    EXPECT_EQ(PadLeft("", 3), "   ");
    EXPECT_EQ(PadLeft(QString::fromUtf8("Zürich"), 7), QString::fromUtf8(" Zürich"));
}

TEST(PadString, CollapseBlanksLeavesOneBlankPerRun)
{
    EXPECT_EQ(CollapseBlanks("GENERAL   FUND"), "GENERAL FUND");
    EXPECT_EQ(CollapseBlanks("  lead and trail  "), " lead and trail ");
    EXPECT_EQ(CollapseBlanks(""), "");
    EXPECT_EQ(CollapseBlanks("a\t\tb"), "a\t\tb") << "only blanks are collapsed";
}

TEST(PadString, AmountFromTextReadsTheLeadingNumberLikeVal)
{
    EXPECT_DOUBLE_EQ(AmountFromText("$1,234.50", false), 1234.5);
    EXPECT_DOUBLE_EQ(AmountFromText("-$5", true), 5.0);
    EXPECT_DOUBLE_EQ(AmountFromText("-$5", false), -5.0);
    EXPECT_DOUBLE_EQ(AmountFromText(" 1 000.25 ", false), 1000.25);
    EXPECT_DOUBLE_EQ(AmountFromText("12.5abc", false), 12.5);
    EXPECT_DOUBLE_EQ(AmountFromText("1.5E3", false), 1500.0);
    EXPECT_DOUBLE_EQ(AmountFromText("2e", false), 2.0);
    EXPECT_DOUBLE_EQ(AmountFromText(".75", false), 0.75);
    EXPECT_DOUBLE_EQ(AmountFromText("abc", false), 0.0);
    EXPECT_DOUBLE_EQ(AmountFromText("", true), 0.0);
    EXPECT_DOUBLE_EQ(AmountFromText("-", false), 0.0);
    EXPECT_DOUBLE_EQ(AmountFromText("1e999", false), 0.0) << "an overflowing value is no number";
}
