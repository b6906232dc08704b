#pragma once

#include <QSet>

#include "countedstore.h"
#include "proposedbudgetitem.h"

#include <QStringList>

#include <vector>

// The proposed amounts per account and proposal (ProposalBudget, and the
// general fund's components through Proposal_GenFund). The store writes the
// values it is given; the callers keep ProposedBudget equal to the sum of the
// components where an account takes part in them.
class clsProposedBudget : public CountedStore {
public:
    clsProposedBudget();

    clsProposedBudgetItem &ProposedBudgetItem() { return item_; }
    void setProposedBudgetItem(const clsProposedBudgetItem &item) { item_ = item; }

    // Rewrites one account's amounts.
    bool UpdateBatch();
    // The accounts of the item's fund and ledger that have a row in its proposal.
    bool GetList(std::vector<clsProposedBudgetItem> &items);
    // As GetList; with `restrict` set only the accounts whose code matches one
    // of the user's access-entry patterns (wildcards * ? # [list]).
    bool GetListWithSecurity(std::vector<clsProposedBudgetItem> &items, const QStringList &accessEntries,
                             bool restrict);
    // As GetList, with the components of Proposal_GenFund for fund "A", ledger "E".
    bool GetListSep(std::vector<clsProposedBudgetItem> &items);
    // Every live account of the fund and ledger, with zero amounts where the proposal has no row.
    bool GetListNew(std::vector<clsProposedBudgetItem> &items);
    // Inserts one row.
    bool Add();
    // Add, for callers that group it with other writes.
    bool AddBatch();
    // Updates the account's row, inserting it when missing.
    bool Update();
    // Loads the amounts of (ID, ProposalID).
    bool Retrieve();

    // The audit trail's view of one account's amounts in one proposal, batched
    // over the whole proposal.
    static AuditedRows auditedAmounts(std::int32_t accountId, const QString &proposalId);
    // The accounts of one proposal the coming save writes: its batch reads only
    // their rows, not the whole proposal. A write of any other account of that
    // proposal is audited on its own.
    void expectWrites(const QString &proposalId, const std::vector<std::int32_t> &accountIds);

private:
    AuditedRows auditedWrite() const;

    bool isGeneralFundExpenditure() const;
    QString insertStatement() const;
    QString updateStatement() const;
    QString selection() const;
    void stampSelection(std::vector<clsProposedBudgetItem> &items, std::size_t from) const;

    QString expectedProposal_;
    QSet<std::int32_t> expectedAccounts_;
    QStringList expectedBatch_; // their rows, a chunk of accounts per condition

    clsProposedBudgetItem item_;
};
