#pragma once

#include "storebase.h"

#include <QString>

#include <vector>

// One budget year: the key, its caption and whether it is historical ("H"),
// current ("C") or proposed ("P").
struct clsYearItem {
    QString ID;
    QString YearName;
    QString Status;
    QString CalendarYear; // carried for callers; not stored in BudgetYears
};

// Which years the budget works on, the fund-accounting year table of a year,
// and whether the district budgets by calendar year.
class clsYears : public StoreBase {
public:
    clsYears();

    clsYearItem &YearItem() { return yearItem_; }

    // The keys of the historical years, in the database's order.
    bool GetHistYears(std::vector<QString> &years);
    bool GetCurrentBudgetYear();
    bool GetProposedYear();
    // The fund-accounting table id of the year in YearItem().ID.
    bool GetFundYearTableId(QString &tableId);
    // True when the parameters say the budget year is a calendar year.
    bool CheckCalendarYear();

private:
    bool readYear(const QString &sql, const QString &sub, const QString &notFoundText);

    clsYearItem yearItem_;
};
