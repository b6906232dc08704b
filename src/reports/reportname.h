#pragma once

#include <QDate>
#include <QString>

#include <cstdint>

// One user-defined report format (table Report).
struct clsReportName {
    std::int32_t ID = 0;
    QString Name;
    QString Description;
    QString FundID;
    QString Ledger; // "E" expenditure or "R" revenue
    QDate ModifiedDate;
};
