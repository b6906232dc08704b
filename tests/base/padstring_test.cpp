#include "padstring.h"

#include <gtest/gtest.h>

TEST(PadString, PaddingAndBlankCollapsing)
{
    EXPECT_EQ(PadLeft("ABCDEF", 4), "CDEF");
    EXPECT_EQ(PadLeft("ABCDEF", 0), "ABCDEF");
    EXPECT_EQ(PadLeft("12", 5), "   12");
    EXPECT_EQ(CollapseBlanks("  GENERAL   FUND "), " GENERAL FUND ");
    EXPECT_EQ(CollapseBlanks("a\t\tb"), "a\t\tb") << "only blanks are collapsed";
}

TEST(PadString, AmountFromTextReadsTheLeadingNumber)
{
    EXPECT_DOUBLE_EQ(AmountFromText("$1,234.50", false), 1234.5);
    EXPECT_DOUBLE_EQ(AmountFromText("-$5", true), 5.0);
    EXPECT_DOUBLE_EQ(AmountFromText("-$5", false), -5.0);
    EXPECT_DOUBLE_EQ(AmountFromText(" 1 000.25abc", false), 1000.25);
    EXPECT_DOUBLE_EQ(AmountFromText("1.5E3", false), 1500.0);
    EXPECT_DOUBLE_EQ(AmountFromText("2e", false), 2.0);
    for (const char *none : {"abc", "", "-", "1e999"})
        EXPECT_DOUBLE_EQ(AmountFromText(none, false), 0.0) << none;
}
