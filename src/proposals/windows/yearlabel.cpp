#include "yearlabel.h"

namespace {
// The year number of an ID, or 0 when it is none.
int yearNumber(const QString &yearId)
{
    bool ok = false;
    const int year = yearId.trimmed().toInt(&ok);
    return ok ? year : 0;
}
} // namespace

QString budgetYearLabel(const QString &yearId, bool calendarYear)
{
    const int year = yearNumber(yearId);
    if (calendarYear || year == 0)
        return yearId.trimmed();
    return QString::number(year - 1) + u'-' + QString::number(year);
}

QString previousBudgetYearId(const QString &yearId)
{
    const int year = yearNumber(yearId);
    return year == 0 ? yearId : QString::number(year - 1);
}
