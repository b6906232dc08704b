#pragma once

#include "currency.h"

#include <QString>

#include <cstdint>

// One account code's figures in one proposal. FundID, LedgerID and
// ProposalID also select the rows of the list operations.
struct clsProposedBudgetItem {
    // Account IDs are assigned by the database and may pass 32767, so they are
    // held in 32 bits.
    std::int32_t ID = 0;
    QString ProposalID;
    QString AccountCode;
    QString FundID;
    QString LedgerID;
    QString AccountName;
    Currency CurrentBudget;
    Currency ProposedBudget;
    Currency ProposedCatA;
    Currency ProposedCatP;
    Currency ProposedCatC;
    // Whether the account takes part in the administrative, program and capital component.
    bool CatA = false;
    bool CatC = false;
    bool CatP = false;
};
