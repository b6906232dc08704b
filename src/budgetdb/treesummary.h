#pragma once

#include "storebase.h"

#include <QString>

#include <vector>

// One folder of the summary tree ("T" account-code folders, "B" buildings,
// "P" programs) of a fund and ledger.
struct clsTreeItem {
    qint64 ID = 0;
    QString NodeType;
    QString FundID;
    QString LedgerID;
    qint64 ParentID = 0; // 0 at the top level
    QString Name;
    qint64 SortOrder = 0;
    bool ForceNewPage = false;
    QString KeyField;    // the screens' key for the node
    qint64 RecCount = 0; // set by GetFoldersAcctCodeCount
};

// Reads and writes the folders of BudgetSummaryTree. It is also the
// collection GetFoldersAcctCodeCount fills.
class clsTreeSummary : public StoreBase {
public:
    clsTreeSummary();

    clsTreeItem &TreeItem() { return treeItem_; }

    // The filters of GetFoldersAcctCodeCount: a code prefix, and a component
    // category ("A", "C", "P", anything else: none) when Cat is set.
    bool Cat() const { return cat_; }
    void setCat(bool cat) { cat_ = cat; }
    const QString &CompareCode() const { return compareCode_; }
    void setCompareCode(const QString &prefix) { compareCode_ = prefix; }
    const QString &Category() const { return category_; }
    void setCategory(const QString &category) { category_ = category; }

    // Gives TreeItem() a new ID (also its first SortOrder) and inserts it.
    bool Add();
    bool Update();
    // Update, for callers that group it with other writes.
    bool UpdateBatch();
    bool Delete();
    // The siblings TreeItem() selects (its type, ledger, fund and parent), in sort order.
    bool GetChildren(std::vector<clsTreeItem> &items);
    bool GetChildrenArray(std::vector<qint64> &ids);
    // Reads the node with TreeItem().ID; a miss leaves TreeItem() as it was.
    bool Retrieve();
    void ClearTreeItem() { treeItem_ = clsTreeItem(); }

    // Walks folder and its descendants, adding each to the collection with
    // RecCount = how many folders of its subtree (itself included) directly
    // hold live codes matching CompareCode and the category.
    bool GetFoldersAcctCodeCount(const clsTreeItem &folder, int depth);

    const std::vector<clsTreeItem> &Items() const { return items_; }
    const clsTreeItem &Item(size_t index) const { return items_.at(index); }
    size_t Count() const { return items_.size(); }
    std::vector<clsTreeItem>::const_iterator begin() const { return items_.begin(); }
    std::vector<clsTreeItem>::const_iterator end() const { return items_.end(); }

private:
    bool insertNewNode();
    static QString childConditions(const clsTreeItem &parentSelector);
    // The IDs of the nodes `selector` picks (its type, ledger, fund and parent), in the database's order.
    bool childIds(const clsTreeItem &selector, const QString &sub, std::vector<qint64> &ids);
    bool readNode(qint64 id, const QString &sub, clsTreeItem &item);
    QString updateStatement() const;
    QString categoryCondition() const;
    bool countFolder(const clsTreeItem &folder, int depth, std::vector<size_t> &path);
    bool folderHoldsCodes(const clsTreeItem &folder, bool &holds);

    clsTreeItem treeItem_;
    bool cat_ = false;
    QString compareCode_;
    QString category_;
    std::vector<clsTreeItem> items_;
};
