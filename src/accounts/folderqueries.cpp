#include "folderqueries.h"

#include <algorithm>

namespace {
// Deeper than any view allows; a chain longer than this loops.
constexpr int longestChain = 64;
} // namespace

FolderQueries::FolderQueries(clsTreeSummary &store, QString nodeType, QString fund, QString ledger)
    : store_(store), nodeType_(std::move(nodeType)), fund_(std::move(fund)), ledger_(std::move(ledger))
{
}

clsTreeItem FolderQueries::selector(qint64 parentId) const
{
    clsTreeItem item;
    item.NodeType = nodeType_;
    item.FundID = fund_;
    item.LedgerID = ledger_;
    item.ParentID = parentId;
    return item;
}

bool FolderQueries::children(qint64 parentId, std::vector<clsTreeItem> &folders)
{
    store_.TreeItem() = selector(parentId);
    return store_.GetChildren(folders);
}

bool FolderQueries::read(qint64 id, clsTreeItem &folder)
{
    store_.ClearTreeItem();
    store_.TreeItem().ID = id;
    if (!store_.Retrieve())
        return false;
    folder = store_.TreeItem();
    return true;
}

bool FolderQueries::subtreeLevels(qint64 id, int &levels)
{
    std::vector<clsTreeItem> below;
    if (!children(id, below))
        return false;
    levels = 1;
    for (const clsTreeItem &child : below) {
        int childLevels = 0;
        if (!subtreeLevels(child.ID, childLevels))
            return false;
        levels = std::max(levels, childLevels + 1);
    }
    return true;
}

bool FolderQueries::ancestors(qint64 id, std::vector<qint64> &chain)
{
    chain.clear();
    for (qint64 at = id; at != 0;) {
        clsTreeItem folder;
        if (!read(at, folder) || int(chain.size()) > longestChain)
            return false;
        at = folder.ParentID;
        if (at != 0)
            chain.push_back(at);
    }
    return true;
}
