#pragma once

#include "objectsummary.h"

struct RevenueSummaryFields : SummaryAccountFields {
    MonthlyTexts OpeningEntry;
    MonthlyTexts BudgetAdj;
    MonthlyTexts RevenueRec;
};

struct ExpenditureSummaryFields : SummaryAccountFields {
    MonthlyTexts OpeningEntry;
    MonthlyTexts BudgetAdj;
    MonthlyTexts EncumPlaced;
    MonthlyTexts EncumLiquid;
    MonthlyTexts PaymentExp;
};

struct GeneralSummaryFields : SummaryAccountFields {
    MonthlyTexts Debits;
    MonthlyTexts Credits;
    // Fiscal year to date: each month holds the sum from the year's first
    // month through that month ("" before the first movement). Derived on read.
    MonthlyTexts YearsDebits;
    MonthlyTexts YearsCredits;
};

// The revenue ledger summary ("SummaryRevenue", "\SumRev.btr").
class classObjectRLSummary : public SummaryObject<RevenueSummaryFields, 3> {
public:
    classObjectRLSummary();

    Currency TotalOpeningBalance;
    Currency TotalBudgetAdjustment;
    Currency TotalRevenueReceived;
    // The estimate not yet received: opening + adjustments - received. Also Balance.
    Currency TotalUnearnedBalance;

protected:
    void settleTotals(const std::array<Currency, 3> &totals) override;
};

// The expenditure ledger summary ("SummaryExpenditure", "\SumExp.btr").
class classObjectELSummary : public SummaryObject<ExpenditureSummaryFields, 5> {
public:
    classObjectELSummary();

    Currency TotalOpeningBalance;
    Currency TotalBudgetAdjustment;
    Currency TotalEncumPlaced;
    Currency TotalEncumLiquid;
    Currency TotalPaymentExpense;
    // Opening + adjustments - open encumbrances - payments. Also Balance.
    Currency TotalUnencumBalance;

protected:
    void settleTotals(const std::array<Currency, 5> &totals) override;
};

// The general ledger summary ("SummaryGeneral", "\SumGen.btr").
class classObjectGLSummary : public SummaryObject<GeneralSummaryFields, 2> {
public:
    classObjectGLSummary();

    Currency TotalDebits;
    Currency TotalCredits;
    // Debits - credits: an asset or expense account's balance. Also Balance.
    Currency TotalNetBalance;

protected:
    void settleTotals(const std::array<Currency, 2> &totals) override;
    void completeRecord(GeneralSummaryFields &record) override;
};
