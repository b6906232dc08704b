#pragma once

#include "countedstore.h"
#include "fundbalanceitem.h"

#include <vector>

// The fund balances (Bals). The single-row operations act on FundBalanceItem;
// callers group them between BeginTransaction and Endtransaction.
class clsFundBalance : public CountedStore {
public:
    clsFundBalance();

    clsFundBalanceItem &FundBalanceItem() { return item_; }
    void setFundBalanceItem(const clsFundBalanceItem &item) { item_ = item; }

    bool UpdateBatch();
    bool AddBatch();
    bool GetList(std::vector<clsFundBalanceItem> &items);
    // Loads both balances of FundBalanceItem.Fund.
    bool Retrieve();

private:
    clsFundBalanceItem item_;
};
