#pragma once

#include <QString>

#include <cstdint>

// What the user chose for one run of a report, whether in the selection
// dialog or on the command line.
struct ReportChoices {
    QString report;       // the chosen row's report text ("Expenditure", "Revenue", ...)
    QString ledger;       // "E" or "R"
    QString fund;         // fund ID
    QString type;         // "Report Type" column
    QString option;       // status reports: one of statusOptions()
    QString category;     // public budget: one of publicBudgetCategories(); "" for all
    QString nodeType = QStringLiteral("T"); // the account listing's view
    int records = 1;      // 1 all records, 2 compare code
    QString compareCode;  // as typed; used only with records 2
    bool percent = false; // "Show Percent Inc/Dec"
    std::int32_t formatId = 0; // generated report: the format's ID
    int orientation = 0;  // 1 portrait, 2 landscape, 0 as the definition has it
    int copies = 1;
    bool preview = false;
};
