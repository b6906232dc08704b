#pragma once

#include "currency.h"

#include <QString>

#include <array>
#include <cstdint>
#include <vector>

// The demo district: one fictional New York central school district, defined
// once, from which both the budget database and the fund-accounting sample
// installation are drawn. Everything here follows from DistrictOptions alone,
// so two builds with the same options are equal field for field.
namespace demo {

struct DistrictOptions {
    // Total account codes wanted; anything below the base chart (a few
    // hundred codes) keeps the base chart. Extra codes go mostly to the
    // general fund's expenditure ledger, so 10,000 gives it about 5,000.
    int accounts = 0;
    // Total account-code folders (node type "T") wanted; extra folders are
    // nested under the general fund's expenditure tree.
    int folders = 0;
    std::uint64_t seed = 0x4e6f72746866ULL;

    bool operator==(const DistrictOptions &) const = default;
};

struct Organisation {
    QString name;       // "Northfield Central School District"
    QString reportName; // the name printed on report headings
    QString address1;
    QString address2;
    QString city;
    QString state; // "NY"
    QString zipCode;
    QString areaCode;
    QString telephone;
    QString fax;
    QString sedCode; // twelve-digit state education department code
    int firstFiscalMonth = 7;
    int lastFiscalMonth = 6;

    bool operator==(const Organisation &) const = default;
};

struct CheckingAccount {
    QString id;            // "Checking ID" of the fund
    QString name;          // e.g. "General Fund Checking"
    QString bankAccount;   // fictional account number
    QString glAccountCode; // the fund's cash account, e.g. "A200"

    bool operator==(const CheckingAccount &) const = default;
};

// Codes of a fund match its masks (`#` a digit, `*` any run, else itself):
// general ledger "A###", revenue "A####*", expenditure "A####.###*".
struct Fund {
    QString id;   // "A", "C", "F", "H", "V", "TA"
    QString name; // "General Fund"
    QString glMask;
    QString rlMask;
    QString elMask;
    CheckingAccount checking;

    bool operator==(const Fund &) const = default;
};

// A balance-sheet account of a fund's general ledger (not budgeted).
struct GeneralLedgerAccount {
    QString code; // "A200"
    QString fundId;
    QString name;

    bool operator==(const GeneralLedgerAccount &) const = default;
};

// A fiscal year is named by the calendar year in which it ends; it runs from
// 1 July of the year before to 30 June.
struct FiscalYear {
    int year = 0;
    QChar status;         // BudgetYears.Status: 'H', 'C' or 'P'
    QString yearName;     // BudgetYears.YearName
    QString tableId;      // Yearlist.TableId: "FY" and the year, the fund-accounting year table
    int monthsPosted = 0; // fiscal months with actual figures: 12 closed, 0 proposed

    bool operator==(const FiscalYear &) const = default;
};

struct Building {
    QString code; // two digits, the suffix of building-specific account codes
    QString name;
    QString abbreviation; // used in account names

    bool operator==(const Building &) const = default;
};

struct Program {
    QString code;
    QString name;

    bool operator==(const Program &) const = default;
};

// A node of the summary tree (BudgetSummaryTree). Ids are unique over all
// funds, ledgers and views; sortOrder equals the id, so siblings keep the
// order in which they were defined.
struct Folder {
    int id = 0;
    QChar nodeType; // 'T' account-code folder, 'B' building, 'P' program
    QString fundId;
    QChar ledger;     // 'R' or 'E'
    int parentId = 0; // 0 at the top level
    QString name;
    int sortOrder = 0;
    bool forceNewPage = false;

    bool operator==(const Folder &) const = default;
};

// One fiscal year's figures of an account as the fund-accounting ledgers hold
// them. For a revenue account `actual` is revenue received, for an
// expenditure account payments and expenses; `encumbered` (expenditure only)
// is still outstanding at the last posted month.
struct YearFigures {
    int year = 0;
    Currency originalBudget;
    Currency adjustments;
    Currency actual;
    Currency encumbered;
    Currency adjustedBudget() const { return originalBudget + adjustments; }

    bool operator==(const YearFigures &) const = default;
};

// Codes fit 20 characters and names 40, the fund-accounting ledgers' widths.
// The three node ids are what the fund-accounting summary records carry as
// "Parent ID", "Building ID" and "Program ID" (year initialization copies
// them back), so they are the ids of this district's folders.
struct Account {
    QString code; // begins with its fund id: "A2110.120.02", "A1001"
    QString fundId;
    QChar ledger; // 'R' or 'E'
    QString name;
    QString stateCode;       // the state chart's code the account reports under: "A2110.12"
    int parentId = 0;        // 'T' folder id; 0 for a historical code
    int buildingId = 0;      // 'B' node id; 0 for a historical code
    int programId = 0;       // 'P' node id; 0 for a historical code
    bool historical = false; // retired from the live budget ("H")
    bool catA = false;       // administrative component (fund A, ledger E only)
    bool catP = false;       // program component
    bool catC = false;       // capital component
    // The current year's adopted budget and its split over the flagged
    // components (the parts sum to the budget for fund A, ledger E).
    Currency currentBudget;
    Currency catACurBudget;
    Currency catPCurBudget;
    Currency catCCurBudget;
    Currency projectedAmount; // expected full-year figure of the current year
    // Historical years and the current year, oldest first (none for a code
    // opened this year). The current year's actual covers its posted months.
    std::vector<YearFigures> history;

    bool operator==(const Account &) const = default;
};

// One proposal slot and its figures, parallel to District::accounts.
struct ProposalFigures {
    Currency proposedBudget;
    Currency catA;
    Currency catP;
    Currency catC;

    bool operator==(const ProposalFigures &) const = default;
};

struct Proposal {
    QString id; // "1", "2", "3"
    QString name;
    QString status; // "O" open, "C" closed, "" free
    bool active = false;
    std::vector<ProposalFigures> figures; // one per account, same index

    bool operator==(const Proposal &) const = default;
};

struct LineItem {
    QString accountCode;
    int number = 0;
    QString text;
    Currency amount;

    bool operator==(const LineItem &) const = default;
};

struct FundBalance {
    QString fundId;
    Currency current;
    Currency previous;

    bool operator==(const FundBalance &) const = default;
};

// An equalization district (town) of the school district.
struct Town {
    QString name;
    double currentRate = 0; // equalization rate, as a fraction (0.8735)
    Currency currentAssessment;
    Currency currentTaxableAssessment;
    double priorRate = 0;
    Currency priorAssessment;
    Currency priorTaxableAssessment;

    bool operator==(const Town &) const = default;
};

struct ReportFormat {
    QString name;
    QString description;
    QChar ledger; // 'E' or 'R'
    QString fundId;
    QString date;                  // yyyymmdd
    std::vector<QString> headings; // RptHeading keys in column order

    bool operator==(const ReportFormat &) const = default;
};

struct District {
    Organisation organisation;
    std::vector<Fund> funds;
    std::vector<GeneralLedgerAccount> generalLedger;
    std::vector<FiscalYear> years; // oldest first
    std::vector<Building> buildings;
    std::vector<Program> programs;
    std::vector<Folder> folders;   // parents before children
    std::vector<Account> accounts; // ordered by code
    std::vector<Proposal> proposals;
    std::vector<LineItem> lineItems;
    std::vector<FundBalance> fundBalances;
    std::vector<Town> towns;
    std::vector<ReportFormat> reportFormats;
    bool calendarYear = false; // Parms.CalenderYear: the budget year is a fiscal year

    const FiscalYear &currentYear() const;
    const FiscalYear &proposedYear() const;
    const Proposal &activeProposal() const;
    const Fund *fund(const QString &id) const;
    const Folder *folder(int id) const;
    // Index into accounts, or -1.
    int accountIndex(const QString &code) const;

    bool operator==(const District &) const = default;
};

District makeDistrict(const DistrictOptions &options = {});

} // namespace demo
