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

    bool UpdateBatch();
    bool AddBatch();
    // Writes LineItemAmount (the lines' total) as the account's ProposedBudget in `proposalID`.
    bool UpdateLineTotal(const QString &proposalID);
    // Removes one line; the others keep their numbers.
    bool Delete();
    // Every line of LineItem.AcctId.
    bool GetList(std::vector<clsLineItem> &items);
    bool Retrieve();

private:
    clsLineItem item_;
};
