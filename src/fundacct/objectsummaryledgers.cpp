#include "objectsummaryledgers.h"

namespace {
const FundFileDef revenueFile{"SummaryRevenue", "\\SumRev.btr"};
const FundFileDef expenditureFile{"SummaryExpenditure", "\\SumExp.btr"};
const FundFileDef generalFile{"SummaryGeneral", "\\SumGen.btr"};

using R = RevenueSummaryFields;
using E = ExpenditureSummaryFields;
using G = GeneralSummaryFields;

const classObjectRLSummary::Amounts revenueAmounts{{
    {"Opening Entry", &R::OpeningEntry},
    {"Budget Adjustment", &R::BudgetAdj},
    {"Revenue Received", &R::RevenueRec},
}};
const classObjectELSummary::Amounts expenditureAmounts{{
    {"Opening Entry", &E::OpeningEntry},
    {"Budget Adjustment", &E::BudgetAdj},
    {"Encum Placed", &E::EncumPlaced},
    {"Encum Liquidated", &E::EncumLiquid},
    {"Payment Expense", &E::PaymentExp},
}};
const classObjectGLSummary::Amounts generalAmounts{{
    {"Debits", &G::Debits},
    {"Credits", &G::Credits},
}};

// Running sums in fiscal order; months before the first movement stay "".
MonthlyTexts yearToDate(const MonthlyTexts &months, int firstFiscalMonth)
{
    MonthlyTexts running;
    Currency sum;
    bool moved = false;
    const int first = firstFiscalMonth >= 1 && firstFiscalMonth <= 12 ? firstFiscalMonth : 1;
    for (const int month : fiscalMonthsThrough(first, (first + 10) % 12 + 1)) {
        const auto amount = ledgerAmountFromText(months[month - 1]);
        moved = moved || !months[month - 1].trimmed().isEmpty();
        sum += amount.value_or(Currency());
        running[month - 1] = moved ? ledgerAmountText(sum, true) : QString();
    }
    return running;
}
} // namespace

classObjectRLSummary::classObjectRLSummary() : SummaryObject(revenueFile, revenueAmounts, 0)
{
}

void classObjectRLSummary::settleTotals(const std::array<Currency, 3> &totals)
{
    TotalOpeningBalance = totals[0];
    TotalBudgetAdjustment = totals[1];
    TotalRevenueReceived = totals[2];
    TotalUnearnedBalance = TotalOpeningBalance + TotalBudgetAdjustment - TotalRevenueReceived;
    Balance = TotalUnearnedBalance;
}

classObjectELSummary::classObjectELSummary() : SummaryObject(expenditureFile, expenditureAmounts, 0)
{
}

void classObjectELSummary::settleTotals(const std::array<Currency, 5> &totals)
{
    TotalOpeningBalance = totals[0];
    TotalBudgetAdjustment = totals[1];
    TotalEncumPlaced = totals[2];
    TotalEncumLiquid = totals[3];
    TotalPaymentExpense = totals[4];
    TotalUnencumBalance =
        TotalOpeningBalance + TotalBudgetAdjustment - (TotalEncumPlaced - TotalEncumLiquid) - TotalPaymentExpense;
    Balance = TotalUnencumBalance;
}

// The general ledger has no opening entry of its own: a year's opening
// balance is posted as its first debit.
classObjectGLSummary::classObjectGLSummary() : SummaryObject(generalFile, generalAmounts, 0)
{
}

void classObjectGLSummary::settleTotals(const std::array<Currency, 2> &totals)
{
    TotalDebits = totals[0];
    TotalCredits = totals[1];
    TotalNetBalance = TotalDebits - TotalCredits;
    Balance = TotalNetBalance;
}

void classObjectGLSummary::completeRecord(GeneralSummaryFields &record)
{
    SummaryObject::completeRecord(record);
    record.YearsDebits = yearToDate(record.Debits, FirstFiscalMonth);
    record.YearsCredits = yearToDate(record.Credits, FirstFiscalMonth);
}
