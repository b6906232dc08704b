#pragma once

#include "reportdocument.h"

#include <QString>

// How a cell of a report table reads on a page: amounts "#,##0.00",
// percentages to two decimals with "%", other numbers with thousands
// separators and their own decimals; a cell that is not a number of its
// column's kind ("n/a") and text as they stand.
QString shownCell(ReportTable::Kind kind, const QString &value);

inline bool isNumericKind(ReportTable::Kind kind)
{
    return kind == ReportTable::Kind::Amount || kind == ReportTable::Kind::Percent ||
           kind == ReportTable::Kind::Number;
}
