#pragma once

#include "countedstore.h"
#include "lineitem.h"

#include <vector>

// The line items of an account (LnItem), and forwarding their total into a
// proposal. The single-row operations act on LineItem.
class clsLine : public CountedStore {
public:
    clsLine();

    clsLineItem &LineItem() { return item_; }
    void setLineItem(const clsLineItem &item) { item_ = item; }

    // For use inside BeginTransaction ... Endtransaction.
    bool UpdateBatch();
    bool AddBatch();
    // Writes LineItemAmount (the lines' total) as the account's ProposedBudget
    // in `proposalID`, in its own transaction.
    bool UpdateLineTotal(const QString &proposalID);
    // Removes one line in its own transaction; the others keep their numbers.
    bool Delete();
    // Every line of LineItem.AcctId.
    bool GetList(std::vector<clsLineItem> &items);
    bool Retrieve();

private:
    // Runs a one-row statement in a transaction of its own (or the caller's).
    bool changeOneRowAlone(const QString &sql, const QString &sub, const FailText &failText);

    clsLineItem item_;
};
