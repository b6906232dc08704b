#pragma once

#include "currency.h"
#include "dbconnection.h"
#include "levyapportionment.h"

#include <QStringList>

#include <vector>

// What the general fund (fund "A") must raise by the real property tax:
// its total appropriations less its revenues other than that tax. The
// appropriated fund balance is one of those revenues: the district budgets it
// as a revenue code of its own (the state's 599, A0599 in the demo district),
// so it lowers the levy like state aid does.
struct TaxLevy {
    Currency appropriations;      // ledger "E"
    Currency otherRevenues;       // ledger "R", every code but the property tax's
    Currency propertyTaxBudgeted; // ledger "R", the property tax's codes as budgeted

    Currency levy() const { return appropriations - otherRevenues; }
};

// Whether a revenue code is one of the property tax's: it begins with one of
// the configured codes, without regard to case or surrounding blanks.
bool isPropertyTaxCode(const QString &accountCode, const QStringList &propertyTaxCodes);

// The levy of one proposal, each account at its one proposed amount (the view ProposalAmount).
bool readProposedTaxLevy(DbConnection &db, const QString &proposalId, const QStringList &propertyTaxCodes,
                         TaxLevy &levy, DbError *error = nullptr);
// The levy of the current year's budget (AccountCodes.CurrentBudget).
bool readCurrentTaxLevy(DbConnection &db, const QStringList &propertyTaxCodes, TaxLevy &levy, DbError *error = nullptr);

// The equalization districts of TaxRate in the order they were entered, with
// the current year's (or the prior year's) taxable assessment and rate.
bool readLevyTowns(DbConnection &db, bool currentYear, std::vector<LevyTown> &towns, DbError *error = nullptr);
