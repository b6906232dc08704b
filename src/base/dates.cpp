#include "dates.h"

#include "runtimeerror.h"

namespace {

[[noreturn]] void throwInvalidDate()
{
    throw RuntimeError(invalidDateErrorNumber, invalidDateText);
}

bool isEightDigits(const QString &text)
{
    if (text.size() != 8)
        return false;
    for (const QChar c : text) {
        if (c < u'0' || c > u'9')
            return false;
    }
    return true;
}

// The date of eight digits "yyyymmdd", or a null date when it names no day.
QDate parseEightDigits(const QString &text)
{
    if (!isEightDigits(text))
        return {};
    return QDate(text.left(4).toInt(), text.mid(4, 2).toInt(), text.mid(6, 2).toInt());
}

QString formatValid(const QDate &date, const QString &format)
{
    if (!date.isValid())
        throwInvalidDate();
    return date.toString(format);
}

// The 28th of the month before `month` (December for January) in `year`:
// every month has a 28th, so walking on from it day by day finds the first of
// the next month in at most four steps, leap years included.
QDate twentyEighthBefore(int month, int year)
{
    if (month < 1 || month > 12)
        throwInvalidDate();
    return QDate(year, month == 1 ? 12 : month - 1, 28);
}

QDate firstOfMonthAfter(QDate date, int month)
{
    while (date.month() != month)
        date = date.addDays(1);
    return date;
}

} // namespace

QDate DateFromYYYYMMDD(const QString &text)
{
    if (text.isEmpty())
        return {};
    const QDate date = parseEightDigits(text);
    if (!date.isValid())
        throwInvalidDate();
    return date;
}

std::int32_t TryDateFromYYYYMMDD(const QString &text, QDate &date)
{
    if (text.isEmpty())
        return dateTextEmpty;
    const QDate parsed = parseEightDigits(text);
    if (!parsed.isValid())
        return dateTextInvalid;
    date = parsed;
    return 0;
}

QString FormatYYYYMMDD(const QDate &date)
{
    return formatValid(date, QStringLiteral("yyyyMMdd"));
}

QString FormatMMDDYY(const QDate &date)
{
    return formatValid(date, QStringLiteral("MM-dd-yy"));
}

QString FormatMMDDYYYY(const QDate &date)
{
    return formatValid(date, QStringLiteral("MM-dd-yyyy"));
}

QDate FiscalYearStart(int firstFiscalMonth, int fiscalYear)
{
    return firstOfMonthAfter(twentyEighthBefore(firstFiscalMonth, fiscalYear - 1), firstFiscalMonth);
}

QDate FiscalYearEnd(int firstFiscalMonth, int fiscalYear)
{
    return firstOfMonthAfter(twentyEighthBefore(firstFiscalMonth, fiscalYear), firstFiscalMonth).addDays(-1);
}
