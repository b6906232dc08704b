#pragma once

#include <QDate>
#include <QString>

#include <cstdint>

// Dates as the fund-accounting files keep them ("yyyymmdd" text) and as the
// screens show them, and the bounds of a fiscal year. The raising procedures
// throw RuntimeError 13 "Invalid date input"; code that cannot take an
// exception uses TryDateFromYYYYMMDD.

inline constexpr int invalidDateErrorNumber = 13;
inline constexpr auto invalidDateText = "Invalid date input";

// "" gives the empty (null) date; anything but eight digits of a real date throws.
QDate DateFromYYYYMMDD(const QString &text);

inline constexpr std::int32_t dateTextEmpty = -3;
inline constexpr std::int32_t dateTextInvalid = -4;
// 0 and the date stored in `date`; dateTextEmpty or dateTextInvalid leave `date` alone.
std::int32_t TryDateFromYYYYMMDD(const QString &text, QDate &date);

// These throw for a null or invalid date.
QString FormatYYYYMMDD(const QDate &date);
QString FormatMMDDYY(const QDate &date);
QString FormatMMDDYYYY(const QDate &date);

// A fiscal year is named by the calendar year it ends in, except that a
// January start puts the whole fiscal year in that year. A first month outside
// 1-12 throws.
QDate FiscalYearStart(int firstFiscalMonth, int fiscalYear);
QDate FiscalYearEnd(int firstFiscalMonth, int fiscalYear);
