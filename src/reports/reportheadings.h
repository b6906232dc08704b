#pragma once

#include <QString>

#include <cstdint>

// One printed column of a report format.
struct clsReportHeadings {
    std::int32_t ReportID = 0;
    QString ReportHeading;     // the column's key, e.g. "CurBudget"
    QString ReportHeadingDesc; // the heading text for the format's ledger
    QString ReportVariable;    // the report variable that supplies the column's values
};
