#pragma once

#include <QString>
#include <QStringList>

// The standard reports: how each is offered in the selection dialog, which
// definition file it runs and which parameter fields it sets. The names are
// those the definition files carry, spellings included ("CalenderYear" on the
// status, tax, public budget and generator reports, "CalendarYear" on the
// comparisons).
enum class ReportKind { Status, TaxRevenue, PublicBudget, VersusProposed, Historical, AccountCodes, Chart, Generated };

// One row of the selection dialog: the key, the name shown and the four
// frame flags, passed to the dialog as they stand.
struct ReportRow {
    QString key;
    QString name;
    int previewFlag = 0;
    int copiesFlag = 0;
    int selectionFlag = 0;
    int orientationFlag = 0;
};

struct ReportInfo {
    ReportKind kind;
    QString file;          // under <installation>/reports/budget/
    QStringList parameters; // the parameter fields the program sets, by name
    bool dialog = true;     // false: the report runs without the selection dialog
};

const ReportInfo &reportInfo(ReportKind kind);

// The dialog's caption and report row for a report on a ledger ("E" or "R").
QString reportCaption(ReportKind kind, const QString &ledger);
ReportRow reportRow(ReportKind kind, const QString &ledger);

// The "Options" column of the status reports, in the order RptOption counts them.
const QStringList &statusOptions();
// The categories of the public budget report, "All Components" first.
const QStringList &publicBudgetCategories();
// The report types offered in the "Report Type" column (passed as RptType).
const QStringList &reportTypes();

// The report a command-line name stands for ("BudgetStatus", "TaxRevenue", ...),
// with the ledger the name implies ("" when the caller chooses). False for an unknown name.
bool reportByName(const QString &name, ReportKind &kind, QString &ledger);
// The command-line names, for usage and error messages.
QStringList reportNames();

// The ledger a chosen report row stands for: "R" for the revenue rows, "E" otherwise.
QString ledgerOfReport(const QString &reportText);
