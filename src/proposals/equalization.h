#pragma once

#include "countedstore.h"
#include "equalizationitem.h"

#include <vector>

// The equalization districts (TaxRate). The single-row operations act on
// EqualizationItem; callers group them between BeginTransaction and Endtransaction.
class clsEqualization : public CountedStore {
public:
    clsEqualization();

    clsEqualizationItem &EqualizationItem() { return item_; }
    void setEqualizationItem(const clsEqualizationItem &item) { item_ = item; }

    bool DeleteBatch();
    bool UpdateBatch();
    // Inserts a district; the database assigns its ID. The prior year's two
    // assessments are stored crossed (taxable into PrevAssessment, total into
    // PrevTaxAssess), as districts have always been added.
    bool AddBatch();
    bool GetList(std::vector<clsEqualizationItem> &items);
    // By DistrickName when `byName`, else by ID.
    bool Retrieve(bool byName);

private:
    clsEqualizationItem item_;
};
