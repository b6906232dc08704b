#pragma once

#include "proposedbudgetitem.h"

// An account's proposed amount in one proposal by the one rule every report
// and total uses (docs/proposal-amounts.md); the database view ProposalAmount
// gives the same figures. In fund "A", ledger "E" an account that takes part
// in any component is proposed at the sum of the components it takes part in;
// any other account at its stored ProposedBudget.
struct ProposalAmount {
    Currency total;
    // The components counted in the total; zero outside the general fund's
    // expenditure ledger and for a component the account takes no part in.
    Currency administrative;
    Currency program;
    Currency capital;
};

// The item needs its fund, ledger, flags and all four stored figures (as GetList reads them).
ProposalAmount proposalAmount(const clsProposedBudgetItem &item);
