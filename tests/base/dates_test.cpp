#include "dates.h"
#include "runtimeerror.h"

#include <gtest/gtest.h>

namespace {

// Runs `call` and returns the number it raised, or -1 when it raised nothing.
template <typename Call> int raisedNumber(Call call, QString *description = nullptr)
{
    try {
        call();
    } catch (const RuntimeError &error) {
        if (description)
            *description = error.description();
        return error.number();
    }
    return -1;
}

} // namespace

TEST(Dates, EightDigitTextBecomesADateOrRaisesTypeMismatch)
{
    EXPECT_EQ(DateFromYYYYMMDD("20030701"), QDate(2003, 7, 1));
    EXPECT_EQ(DateFromYYYYMMDD("20040229"), QDate(2004, 2, 29));
    EXPECT_TRUE(DateFromYYYYMMDD("").isNull());

    QString description;
    EXPECT_EQ(raisedNumber([] { DateFromYYYYMMDD("20030230"); }, &description), 13);
    EXPECT_EQ(description, "Invalid date input");
    for (const char *bad : {"2003-2-1", "2003021", "200302011", "2003O201", " 0030201", "00000000", "20031301"})
        EXPECT_EQ(raisedNumber([bad] { DateFromYYYYMMDD(bad); }), 13) << bad;
}

TEST(Dates, TryVariantReportsEmptyAndInvalidByStatus)
{
    QDate date(1999, 1, 1);
    EXPECT_EQ(TryDateFromYYYYMMDD("", date), -3);
    EXPECT_EQ(TryDateFromYYYYMMDD("200313", date), -4);
    EXPECT_EQ(TryDateFromYYYYMMDD("20030230", date), -4);
    EXPECT_EQ(TryDateFromYYYYMMDD("2003023a", date), -4);
    EXPECT_EQ(date, QDate(1999, 1, 1)) << "a failed conversion must not touch the output";
    EXPECT_EQ(TryDateFromYYYYMMDD("19991231", date), 0);
    EXPECT_EQ(date, QDate(1999, 12, 31));
}

TEST(Dates, FormatsKeepLeadingZerosAndRefuseNonDates)
{
    const QDate date(2003, 7, 4);
    EXPECT_EQ(FormatYYYYMMDD(date), "20030704");
    EXPECT_EQ(FormatMMDDYY(date), "07-04-03");
    EXPECT_EQ(FormatMMDDYYYY(date), "07-04-2003");
    EXPECT_EQ(FormatMMDDYY(QDate(2010, 12, 31)), "12-31-10");
    EXPECT_EQ(FormatYYYYMMDD(DateFromYYYYMMDD("00010101")), "00010101");

    EXPECT_EQ(raisedNumber([] { FormatYYYYMMDD(QDate()); }), 13);
    EXPECT_EQ(raisedNumber([] { FormatMMDDYY(QDate(2003, 2, 30)); }), 13);
    EXPECT_EQ(raisedNumber([] { FormatMMDDYYYY(QDate()); }), 13);
}

TEST(Dates, FiscalYearBoundsForEveryStartMonth)
{
    EXPECT_EQ(FiscalYearStart(7, 2003), QDate(2002, 7, 1));
    EXPECT_EQ(FiscalYearEnd(7, 2003), QDate(2003, 6, 30));
    EXPECT_EQ(FiscalYearStart(1, 2003), QDate(2003, 1, 1));
    EXPECT_EQ(FiscalYearEnd(1, 2003), QDate(2003, 12, 31));
    EXPECT_EQ(FiscalYearStart(1, 2004), QDate(2004, 1, 1));
    EXPECT_EQ(FiscalYearEnd(3, 2004), QDate(2004, 2, 29));
    EXPECT_EQ(FiscalYearEnd(3, 2003), QDate(2003, 2, 28));

    // For every start month the year is exactly twelve months long.
    for (int month = 2; month <= 12; ++month) {
        const QDate start = FiscalYearStart(month, 2004);
        EXPECT_EQ(start, QDate(2003, month, 1)) << month;
        EXPECT_EQ(FiscalYearEnd(month, 2004).addDays(1), start.addYears(1)) << month;
    }
    EXPECT_EQ(raisedNumber([] { FiscalYearStart(0, 2004); }), 13);
    EXPECT_EQ(raisedNumber([] { FiscalYearEnd(13, 2004); }), 13);
}
