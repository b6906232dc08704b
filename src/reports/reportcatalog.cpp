#include "reportcatalog.h"

#include <array>

namespace {

QStringList statusParameters()
{
    return {"NodeType",     "LedgerID",      "FundID",     "CompareYear", "CompareYear2", "ProposalID", "CustomerName",
            "ProposedYear", "CurBudgetYear", "CompareCode", "RptType",    "Percent",      "RptOption",  "CalenderYear"};
}

const std::array<ReportInfo, 8> &reportTable()
{
    static const std::array<ReportInfo, 8> table{{
        {ReportKind::Status, "BgtStat.rpt", statusParameters()},
        {ReportKind::TaxRevenue,
         "TaxRev.rpt",
         {"NodeType", "LedgerID", "FundID", "ProposalID", "CustomerName", "ProposedYear", "CurBudgetYear",
          "CalenderYear", "CompareCode"},
         false},
        {ReportKind::PublicBudget,
         "public.rpt",
         {"NodeType", "LedgerID", "FundID", "ProposalID", "CustomerName", "ProposedYear", "CurBudgetYear",
          "CompareCode", "RptType", "Percent", "RptOption", "CalenderYear"}},
        {ReportKind::VersusProposed,
         "VsPBgt.rpt",
         {"NodeType", "LedgerID", "FundID", "Year1", "Year2", "CustomerName", "CompareCode", "ProposedYear",
          "ProposalID", "RptType", "CalendarYear"}},
        {ReportKind::Historical,
         "HistComp.rpt",
         {"NodeType", "LedgerID", "FundID", "Year1", "Year2", "Year3", "Year4", "CustomerName", "CompareCode",
          "RptType", "CalendarYear"}},
        {ReportKind::AccountCodes, "ActCodes.rpt", {"NodeType", "LedgerID", "FundID", "CustomerName"}},
        {ReportKind::Chart, "Chart.rpt", {"Ledger", "ProposalID", "ProposedYear", "CurBudgetYear"}, false},
        {ReportKind::Generated,
         "RptGen.rpt",
         {"NodeType", "LedgerID", "FundID", "PriorYear", "Prior2Year", "ProposalID", "CustomerName", "ProposedYear",
          "CurBudgetYear", "CompareCode", "RptType", "Percent", "RptOption", "CalenderYear", "FolderList",
          "ReportName"}},
    }};
    return table;
}

bool revenue(const QString &ledger)
{
    return ledger.compare(QLatin1String("R"), Qt::CaseInsensitive) == 0;
}

struct NamedReport {
    const char *name;
    ReportKind kind;
    const char *ledger;
};

constexpr NamedReport namedReports[] = {
    {"BudgetStatus", ReportKind::Status, "E"},
    {"RevenueStatus", ReportKind::Status, "R"},
    {"TaxRevenue", ReportKind::TaxRevenue, "E"},
    {"PublicBudget", ReportKind::PublicBudget, "E"},
    {"ExpenditureVsBudget", ReportKind::VersusProposed, "E"},
    {"RevenueVsBudget", ReportKind::VersusProposed, "R"},
    {"Historical", ReportKind::Historical, "E"},
    {"AccountCodes", ReportKind::AccountCodes, ""},
    {"ExpenditureChart", ReportKind::Chart, "E"},
    {"RevenueChart", ReportKind::Chart, "R"},
    {"Generator", ReportKind::Generated, ""},
};

} // namespace

const ReportInfo &reportInfo(ReportKind kind)
{
    return reportTable()[static_cast<std::size_t>(kind)];
}

QString reportCaption(ReportKind kind, const QString &ledger)
{
    switch (kind) {
    case ReportKind::Status:
        return revenue(ledger) ? QStringLiteral("Revenue Status Report") : QStringLiteral("Budget Status Report");
    case ReportKind::PublicBudget:
        return QStringLiteral("Public Budget Report");
    // The versus-proposed reports share the historical report's caption.
    case ReportKind::VersusProposed:
    case ReportKind::Historical:
        return QStringLiteral("Historical Comparison");
    case ReportKind::AccountCodes:
        return QStringLiteral("Account Codes");
    case ReportKind::Generated:
        return QStringLiteral("Report Generator");
    case ReportKind::TaxRevenue:
    case ReportKind::Chart:
        break;
    }
    return {};
}

ReportRow reportRow(ReportKind kind, const QString &ledger)
{
    const QString key = revenue(ledger) ? QStringLiteral("Revenue") : QStringLiteral("Expenditure");
    switch (kind) {
    case ReportKind::Status:
        return {key, key, 2, 1, 1, 2};
    case ReportKind::PublicBudget:
        return {QStringLiteral("PublicBudget"), QStringLiteral("Public Budget Report"), 2, 1, 1, 2};
    case ReportKind::VersusProposed:
        // The trailing blank belongs to the name.
        return {key, key + QStringLiteral(" Vs Proposed Budget "), 2, 1, 1, 2};
    case ReportKind::Historical:
        return {QStringLiteral("Expenditure"), QStringLiteral("Expenditure Historical Comparison"), 2, 1, 1, 1};
    case ReportKind::AccountCodes:
        return {QStringLiteral("AccountCodeListing"), QStringLiteral("Account Code Listing"), 2, 1, 1, 1};
    case ReportKind::Generated:
        return {QStringLiteral("Generator"), QStringLiteral("Report Generator"), 2, 1, 1, 2};
    case ReportKind::TaxRevenue:
    case ReportKind::Chart:
        break;
    }
    return {};
}

const QStringList &statusOptions()
{
    static const QStringList options{"2 years Actual",
                                     "Prior Year Actual, Current year projected",
                                     "Current Year Projected",
                                     "Current Year Actual",
                                     "Prior Year Actual, Current Year Actual",
                                     "No Expenditure Year"};
    return options;
}

const QStringList &publicBudgetCategories()
{
    static const QStringList categories{"All Components", "Administrative", "Program", "Capital",
                                        "No Category Defined"};
    return categories;
}

const QStringList &reportTypes()
{
    // The definitions print every account under its folders.
    static const QStringList types{"Detail"};
    return types;
}

bool reportByName(const QString &name, ReportKind &kind, QString &ledger)
{
    for (const NamedReport &named : namedReports) {
        if (name.compare(QLatin1String(named.name), Qt::CaseInsensitive) == 0) {
            kind = named.kind;
            ledger = QLatin1String(named.ledger);
            return true;
        }
    }
    return false;
}

QStringList reportNames()
{
    QStringList names;
    for (const NamedReport &named : namedReports)
        names << QLatin1String(named.name);
    return names;
}

QString ledgerOfReport(const QString &reportText)
{
    return reportText.startsWith(QLatin1String("Revenue"), Qt::CaseInsensitive) ? QStringLiteral("R")
                                                                                 : QStringLiteral("E");
}
