#include "dates.h"
#include "raisednumber.h"

#include <gtest/gtest.h>

TEST(Dates, EightDigitTextConvertsOrFailsByExceptionOrStatus)
{
    EXPECT_EQ(DateFromYYYYMMDD("20040229"), QDate(2004, 2, 29));
    EXPECT_TRUE(DateFromYYYYMMDD("").isNull());
    for (const char *bad : {"20030230", "2003-2-1", "200302011", "2003O201", " 0030201", "00000000"})
        EXPECT_EQ(raisedNumber([bad] { DateFromYYYYMMDD(bad); }), 13) << bad;

    QDate date(1999, 1, 1);
    EXPECT_EQ(TryDateFromYYYYMMDD("", date), -3);
    EXPECT_EQ(TryDateFromYYYYMMDD("200313", date), -4);
    EXPECT_EQ(TryDateFromYYYYMMDD("20030230", date), -4);
    EXPECT_EQ(date, QDate(1999, 1, 1)) << "a failed conversion leaves the output alone";
    EXPECT_EQ(TryDateFromYYYYMMDD("19991231", date), 0);
    EXPECT_EQ(date, QDate(1999, 12, 31));
}

TEST(Dates, FormatsKeepLeadingZerosAndRefuseNonDates)
{
    EXPECT_EQ(FormatYYYYMMDD(QDate(2003, 7, 4)), "20030704");
    EXPECT_EQ(FormatMMDDYY(QDate(2010, 7, 4)), "07-04-10");
    EXPECT_EQ(FormatMMDDYYYY(QDate(2003, 7, 4)), "07-04-2003");
    try {
        FormatYYYYMMDD(QDate());
        ADD_FAILURE() << "a null date was formatted";
    } catch (const RuntimeError &error) {
        EXPECT_EQ(error.number(), 13);
        EXPECT_EQ(error.description(), "Invalid date input");
    }
    EXPECT_EQ(raisedNumber([] { FormatMMDDYY(QDate(2003, 2, 30)); }), 13);
}

TEST(Dates, FiscalYearsRunTwelveMonthsNamedByTheirEnd)
{
    EXPECT_EQ(FiscalYearStart(7, 2003), QDate(2002, 7, 1));
    EXPECT_EQ(FiscalYearEnd(7, 2003), QDate(2003, 6, 30));
    EXPECT_EQ(FiscalYearStart(1, 2004), QDate(2004, 1, 1));
    EXPECT_EQ(FiscalYearEnd(1, 2003), QDate(2003, 12, 31));
    EXPECT_EQ(FiscalYearEnd(3, 2004), QDate(2004, 2, 29));
    for (int month = 2; month <= 12; ++month) {
        EXPECT_EQ(FiscalYearStart(month, 2004), QDate(2003, month, 1)) << month;
        EXPECT_EQ(FiscalYearEnd(month, 2004).addDays(1), QDate(2004, month, 1)) << month;
    }
    EXPECT_EQ(raisedNumber([] { FiscalYearStart(0, 2004); }), 13);
    EXPECT_EQ(raisedNumber([] { FiscalYearEnd(13, 2004); }), 13);
}
