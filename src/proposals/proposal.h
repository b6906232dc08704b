#pragma once

#include "countedstore.h"
#include "proposalitem.h"

#include <vector>

// The proposal slots (table Proposal). The single-row operations act on
// ProposalItem.
class clsProposal : public CountedStore {
public:
    clsProposal();

    clsProposalItem &ProposalItem() { return item_; }
    void setProposalItem(const clsProposalItem &item) { item_ = item; }

    // Rewrites name, status and active flag.
    bool UpdateBatch();
    // Makes ProposalItem (ID and Name set) the one active, open proposal and
    // fills its amounts from `source`: "E" empty, "C" the current budget, "1"-"3"
    // a copy of that proposal. Any other source is taken as "E" and written
    // back. All or nothing.
    bool InitNewProposal(QString &source);
    // Frees the slot (the name stays; its amounts stay until the slot is reused).
    bool Delete();
    bool GetList(std::vector<clsProposalItem> &items);
    bool GetOpenList(std::vector<clsProposalItem> &items);
    bool Retrieve();
    // The first free slot's ID into ProposalItem.ID.
    bool GetAvailProposal();
    bool GetActiveProposal();

private:
    bool fillSlotAmounts(const QString &source);
    bool copyProposal(const QString &source);

    clsProposalItem item_;
};
